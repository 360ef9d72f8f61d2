#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "vexa/toolbox/Set.h"
#include "vexautilutil/MacroCommandProcessorAbstract.h"

namespace probestats {

/// One option of a command: its name, and where its value goes when the command gives it.
struct Option {
    using Target =
        std::variant<std::optional<bool>*, std::optional<int32_t>*, std::optional<int64_t>*, std::optional<double>*,
                     std::optional<std::string>*, std::optional<vexa::toolbox::Set>*>;
    const char* name;
    Target target;
};

/// A command processor that reads and records commands by tables of their options. Nothing in it is about probes:
/// take it to another add-on as it is.
///
///     std::optional<int64_t> first;
///     if (!readOptions("WINDOW", {{"FIRST", &first}})) return false;
///     if (first && *first < 1) return refuse("FIRST must be 1 or more");
///     ... act ...
///     return recordMacroCommand("MYADDON");    // records "WINDOW FIRST = 201"
///
/// Texts are read with escapes: `\'` is a quote, `\\` a backslash.
class OptionsProcessor : public vexa::vexautilutil::MacroCommandProcessorAbstract {
public:
    /// Keeps the command's text, too.
    bool parseCommandString(const char* commandString, char** errMsg) override;
    /// The hook for commands, called by processCommand() with the command word.
    virtual bool runCommand(const std::string& word) = 0;

    bool processCommand() final;
    /// Writes the command that readOptions() read last: the options given, in the order of the table. Or the one of
    /// recordAs().
    bool composeCommandString(std::string& command) const override;

protected:
    /// Reads the options of \p command up to its end.
    /// \return false, with a message stored, when an option is unknown, given twice, without `=` or without a value of
    ///         its kind; when a text or set is empty; when a double would be recorded as another one; when a quoted
    ///         text is never closed, which getStringValue() would wait for, for ever.
    bool readOptions(const std::string& command, const std::vector<Option>& options);

    /// The text after the command word, as it came. For commands that are read in another way.
    std::string optionsText() const;
    /// Has \p command recorded, for such commands.
    void recordAs(const std::string& command) { m_recordable = command; }

    /// Stores "Error: " and \p reason for the host, and returns false.
    bool refuse(const std::string& reason);

private:
    bool nextName(std::string& name);
    bool read(const std::string& name, std::optional<bool>& target);
    bool read(const std::string& name, std::optional<int32_t>& target);
    bool read(const std::string& name, std::optional<int64_t>& target);
    bool read(const std::string& name, std::optional<double>& target);
    bool read(const std::string& name, std::optional<std::string>& target);
    bool read(const std::string& name, std::optional<vexa::toolbox::Set>& target);

    std::string m_text;        // the command as it came
    std::string m_recordable;  // the command as it is recorded
};

}  // namespace probestats
