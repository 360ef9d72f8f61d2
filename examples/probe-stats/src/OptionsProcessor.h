#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "vexa/toolbox/Set.h"
#include "vexautilutil/MacroCommandProcessorAbstract.h"

namespace probestats {

/// An option of a command: its name, and the variable for its value.
struct Option {
    using Target =
        std::variant<std::optional<bool>*, std::optional<int32_t>*, std::optional<int64_t>*, std::optional<double>*,
                     std::optional<std::string>*, std::optional<vexa::toolbox::Set>*>;
    const char* name;
    Target target;
};

/// A command processor that reads and records commands by tables of their options. The class does not depend on probes,
/// so you can copy it unchanged to another add-on.
///
///     std::optional<int64_t> first;
///     if (!readOptions("WINDOW", {{"FIRST", &first}})) return false;
///     if (first && *first < 1) return refuse("FIRST must be 1 or more");
///     ... work ...
///     return recordMacroCommand("MYADDON");    // records "WINDOW FIRST = 201"
///
/// Texts are read with escapes: `\'` is a quote, `\\` a backslash.
class OptionsProcessor : public vexa::vexautilutil::MacroCommandProcessorAbstract {
public:
    /// Also keeps the text of the command.
    bool parseCommandString(const char* commandString, char** errMsg) override;
    /// The hook for commands, called by processCommand() with the command word.
    virtual bool runCommand(const std::string& word) = 0;

    bool processCommand() final;
    /// Writes the command that readOptions() read last: the given options, in the order of the table. Or writes the
    /// command of recordAs().
    bool composeCommandString(std::string& command) const override;

protected:
    /// Reads the options of \p command up to its end.
    /// \return false, with a stored message, if an option is unknown or given twice, lacks its `=` or a value of its
    /// type;
    ///         if a text or a set is empty; if a double has too many digits to be recorded; or if a closing quote is
    ///         missing, for which getStringValue() would wait forever.
    bool readOptions(const std::string& command, const std::vector<Option>& options);

    /// Returns the text after the command word, unchanged. For commands that do not use readOptions().
    std::string optionsText() const;
    /// Sets the text that composeCommandString() writes, for commands that do not use readOptions().
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

    std::string m_text;        // the command, unchanged
    std::string m_recordable;  // the command to record
};

}  // namespace probestats
