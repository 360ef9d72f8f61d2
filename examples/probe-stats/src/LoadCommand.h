#pragma once

#include <string>

#include "ProbeData.h"
#include "vexautilutil/MacroCommandAbstract.h"

namespace probestats {

/// The command that reads a file, in the command model: options are written NAME=VALUE, without blanks around the
/// `=`, and by their upper-case names.
///
///     LoadCommand command("SKIPROWS=3 FILE=\"wake.txt\" HEADER=FALSE");
///     command.toString();     // "LOAD FILE=\"wake.txt\" SKIPROWS=3": in order, defaults left out
///     command.execute();
///     command.data();
///
/// Errors: MacroCommandError for what is not written as an option, ProbeError for what makes no sense.
class LoadCommand : public vexa::vexautilutil::MacroCommandAbstract {
public:
    /// Reads the options from \p text, the command without its word.
    explicit LoadCommand(const std::string& text);

    /// What the options ask for.
    ProbeFileRequest request();
    /// Reads the file.
    void execute() override;
    /// What was read; it may be moved from.
    ProbeData& data() { return m_data; }

private:
    ProbeData m_data;
};

}  // namespace probestats
