#pragma once

#include <map>
#include <memory>
#include <string>

#include "vexautilutil/Export.h"
#include "vexautilutil/MacroOptionInterface.h"
#include "vexautilutil/MacroOptionPerformer.h"
#include "vexautilutil/MacroTokens.h"

namespace vexa::vexautilutil {

/// A macro command: a name, and named options, at most one a name. Base of the commands of an add-on.
///
///     class Slice : public MacroCommandAbstract {
///     public:
///         Slice() : MacroCommandAbstract("SLICE") {
///             const bool capped = false;
///             addOption(std::make_shared<BooleanMacroOption>("CAPPED", true, &capped));
///         }
///         void execute() override;
///     };
///     Slice().toString();   // "SLICE CAPPED=TRUE"
///
/// Names are kept as written and compared byte for byte: Count and COUNT are two options.
///
/// Ownership: options are shared with whoever else holds them.
/// Threads:   a command is for one thread at a time; name() and toString() only read.
/// The order of the virtual operations is part of the binary contract.
class VEXAUTILUTIL_API MacroCommandAbstract {
public:
    /// The options by name, in ascending byte order.
    using OptionMap = std::map<std::string, std::shared_ptr<MacroOptionInterface>>;

    /// Makes a command without options. \p name is kept verbatim; it is not checked.
    explicit MacroCommandAbstract(const std::string& name);
    virtual ~MacroCommandAbstract();

    /// Does what the command is for. The library never calls it.
    virtual void execute() = 0;
    /// Calls perform() of every option, in ascending order of their names, default-valued ones included. What
    /// \p performer throws ends the walk and passes through.
    virtual void forEachOption(MacroOptionPerformerInterface& performer);
    /// A copy of the name.
    virtual std::string name() const;
    /// The name, then a blank and the text of each option that is not at its default, in ascending order of their
    /// names: "CMD COUNT=12 ENABLED=TRUE".
    virtual std::string toString() const;

    /// Adds an option under its name().
    /// \param option not null; the command becomes a co-owner.
    /// \throws MacroCommandError "Duplicate macro command option " + the name, when the name is taken; the command
    ///         stays as it was.
    void addOption(std::shared_ptr<MacroOptionInterface> option);

    /// The command's options themselves, not a copy: a change is seen by toString() and forEachOption().
    OptionMap& options();

    /// Cuts macro text into tokens, see MacroTokens.h.
    /// \warning \p text must outlive the stream and its iterators, which refer to its characters. Never keep the
    ///          stream of a temporary.
    static MacroTokenizer tokenize(const std::string& text);

protected:
    MacroCommandAbstract(const MacroCommandAbstract&) = default;
    MacroCommandAbstract& operator=(const MacroCommandAbstract&) = default;

private:
    std::string m_name;
    OptionMap m_options;
};

}  // namespace vexa::vexautilutil
