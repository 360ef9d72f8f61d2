#pragma once

#include <map>
#include <memory>
#include <string>

#include "vexautilutil/Export.h"
#include "vexautilutil/MacroOptionInterface.h"
#include "vexautilutil/MacroOptionPerformer.h"
#include "vexautilutil/MacroTokens.h"

namespace vexa::vexautilutil {

/// Base class of an add-on's macro commands. A command has a name and any number of options with different names.
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
/// Names are compared byte for byte: Count and COUNT are two options.
///
/// Ownership: a command shares its options with every other holder of the `std::shared_ptr`.
/// Threads:   one thread at a time may use a command. name() and toString() only read, so they may run at the same
///            time.
/// The order of the virtual operations is part of the binary interface.
class VEXAUTILUTIL_API MacroCommandAbstract {
public:
    /// The options by name, in ascending byte order.
    using OptionMap = std::map<std::string, std::shared_ptr<MacroOptionInterface>>;

    /// Creates a command without options. \p name is not checked.
    explicit MacroCommandAbstract(const std::string& name);
    virtual ~MacroCommandAbstract();

    /// Runs the command. The library never calls it.
    virtual void execute() = 0;
    /// Calls perform() of every option, in ascending order of their names, including options at their default. If
    /// \p performer throws, the remaining options are not called and the exception passes through.
    virtual void forEachOption(MacroOptionPerformerInterface& performer);
    /// Returns a copy of the name.
    virtual std::string name() const;
    /// Returns the command's macro text, for example "CMD COUNT=12 ENABLED=TRUE": the name, then for each option a
    /// blank and the option's text, in ascending order of the names. Options at their default are omitted.
    virtual std::string toString() const;

    /// Adds an option under its name().
    /// \param option not null; the command becomes a co-owner.
    /// \throws MacroCommandError "Duplicate macro command option " + the name, if the command has an option of this
    ///         name. The command is then unchanged.
    void addOption(std::shared_ptr<MacroOptionInterface> option);

    /// Returns the command's own options, not a copy. A change affects toString() and forEachOption().
    OptionMap& options();

    /// Splits macro text into tokens; see MacroTokens.h.
    /// \warning The stream and its iterators refer to the characters of \p text, so \p text must outlive them. Do not
    ///          pass a temporary.
    static MacroTokenizer tokenize(const std::string& text);

protected:
    MacroCommandAbstract(const MacroCommandAbstract&) = default;
    MacroCommandAbstract& operator=(const MacroCommandAbstract&) = default;

private:
    std::string m_name;
    OptionMap m_options;
};

}  // namespace vexa::vexautilutil
