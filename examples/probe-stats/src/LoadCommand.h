#pragma once

#include <string>

#include "ProbeData.h"
#include "vexautilutil/MacroCommandAbstract.h"

namespace probestats {

/// The command that reads a file. It uses option classes, so options are written NAME=VALUE, without blanks around the
/// `=`, with names in upper case.
///
///     LoadCommand command("SKIPROWS=3 FILE=\"wake.txt\" HEADER=FALSE");
///     command.toString();     // "LOAD FILE=\"wake.txt\" SKIPROWS=3": in order, without options that have their
///     default command.execute(); command.data();
///
/// Errors: MacroCommandError for a text that is not an option, ProbeError for values that make no sense.
class LoadCommand : public vexa::vexautilutil::MacroCommandAbstract {
public:
    /// Reads the options from \p text, the command without its word.
    explicit LoadCommand(const std::string& text);

    /// Returns the request that the options describe.
    ProbeFileRequest request();
    /// Reads the file.
    void execute() override;
    /// Returns the data of the file. The caller may move them.
    ProbeData& data() { return m_data; }

private:
    ProbeData m_data;
};

}  // namespace probestats
