#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "vexa/toolbox/Set.h"
#include "vexautilutil/Export.h"

namespace vexa::vexautilutil {

/// Interprets the command strings that the host hands to an add-on, and records commands with the host.
///
/// Derive from it and implement two hooks: processCommand() reads the command with the getters and acts on it;
/// composeCommandString() writes a command to be recorded.
///
///     bool processCommand() override {
///         std::string word, name;
///         if (!getCommand(word) || word != "SLICE") {
///             depositErrorMessage("Unknown command " + word);
///             return false;
///         }
///         while (getNextName(name)) {
///             if (name != "COUNT" || !getInt64Value(m_count)) return false;
///             name.clear();
///         }
///         return name.empty();   // else a name stood without its `=`
///     }
///     bool composeCommandString(std::string& command) const override {
///         command = "SLICE " + toNameValueAssignment("COUNT", m_count);
///         return true;
///     }
///
/// A command is words between white space: the command word, then NAME = value for each option. Command word and
/// names are read in any letter case and delivered in upper case.
///
/// Errors: a getter that meets bad input stores one message and returns false; the last message stored before
///         processCommand() returns false is handed to the host. Each message begins with "Error: ". Once an option's
///         name has been read, " for command option: ", the name as written and a line feed follow.
/// Scanner: a getter asks the scanner whether something is left before it reads. Only getSetValue() reads the opening
///         bracket without asking; whatever the scanner returns at the end of the command, no set is read there.
/// Threads: one processor is for one thread at a time. The host is called on the caller's thread.
/// The order of the virtual operations is part of the binary contract.
class VEXAUTILUTIL_API MacroCommandProcessorAbstract {
public:
    /// Makes a processor without a command.
    MacroCommandProcessorAbstract();
    MacroCommandProcessorAbstract(const MacroCommandProcessorAbstract&) = delete;
    MacroCommandProcessorAbstract& operator=(const MacroCommandProcessorAbstract&) = delete;
    virtual ~MacroCommandProcessorAbstract();

    /// Processes one command: starts scanning it, forgets the option name and message of the one before, and calls
    /// processCommand().
    /// \param commandString the command, not null.
    /// \param errMsg        not null; untouched on success. On failure it receives a host string with the stored
    ///                      message (empty when none was stored), which the caller then owns, or null when the host
    ///                      has no memory.
    /// \return what processCommand() returned.
    /// \throws std::logic_error when \p commandString is null, before anything else happens. What processCommand()
    ///         throws passes through, and \p errMsg is untouched.
    virtual bool parseCommandString(const char* commandString, char** errMsg);

    /// Records the command that composeCommandString() writes in the host's macro, if the host records and plays
    /// back neither a journal nor a layout.
    /// \param addOnId the add-on's name, passed through to the host.
    /// \return true when it was recorded, or nothing had to be; false when the hook or the host refused.
    virtual bool recordMacroCommand(const char* addOnId) const;

    /// Adds the command that composeCommandString() writes to the host's data-set journal.
    /// \warning Unlike recordMacroCommand() it asks for no state of the host: the caller decides when a command
    ///          belongs in the journal.
    /// \param addOnId     the add-on's name, passed through to the host.
    /// \param journalData passed through to the host; may be null.
    /// \return true when it was added; false when the hook or the host refused.
    virtual bool journalMacroCommand(const char* addOnId, const char* journalData) const;

    /// Replaces the stored message by \p message, verbatim. For failures that the getters do not see. The messages
    /// of the getters do not pass through here.
    virtual void depositErrorMessage(const std::string& message);

    /// Reads the command word. Call it once, first.
    /// \param command receives the word in upper case; unchanged on failure.
    /// \return false when no word is left; no message is stored.
    virtual bool getCommand(std::string& command);

    /// Reads the next option's name and the `=` after it. Call it before each value.
    /// \param name receives the name in upper case, also when the `=` is missing.
    /// \return false with "Missing = " stored when something else follows the name; false without a message when
    ///         nothing follows it, or when no name is left: the end of the command.
    /// \warning A name is a word between white space: `COUNT=12` is one word, and its `=` is not seen.
    /// \warning The end of the command and a missing `=` both return false. They differ in \p name, which only the
    ///          latter changes: empty it before each call to tell them apart.
    virtual bool getNextName(std::string& name);

    /// Reads T, TRUE or YES as 1 and F, FALSE or NO as 0, in any letter case.
    /// \param value receives 1 or 0; unchanged on failure.
    /// \return false with "Invalid Boolean value" stored at any other word, which is then read; false without a
    ///         message when no word is left.
    virtual bool getBooleanValue(char& value);

    /// Reads a floating-point number.
    /// \param value receives the number; unchanged on failure.
    /// \return false with "Invalid Double value" stored when the next word is none; the word stays unread.
    virtual bool getDoubleValue(double& value);

    /// Reads a signed integer of 64 bits and keeps its low 32 bits.
    /// \warning There is no range check, on purpose: 4294967297 reads as 1, 2147483648 as -2147483648. Use
    ///          getInt64Value() where the range matters.
    /// \param value receives the low 32 bits; unchanged on failure.
    /// \return false with "Invalid Int32 value" stored when the next word is no integer; the word stays unread.
    virtual bool getInt32Value(int32_t& value);

    /// Reads a signed integer of 64 bits.
    /// \param value receives the integer; unchanged on failure.
    /// \return false with "Invalid Int64 value" stored when the next word is none; the word stays unread.
    virtual bool getInt64Value(int64_t& value);

    /// Reads a text between two double quotes or two single quotes. The other kind of quote may stand inside.
    /// \warning A text without its closing quote never returns: the call waits for it for ever.
    /// \warning No message is stored on failure; deposit your own.
    /// \param value          receives the characters between the quotes. It is emptied first, and holds what was read
    ///                       so far on failure.
    /// \param processEscapes whether a backslash makes the next character an ordinary one: `\"` is a double quote,
    ///                       `\\` a backslash, and `\n` the letter n. Otherwise a backslash is a character like any
    ///                       other, and the first matching quote ends the text.
    /// \return false when there is nothing, when the next character is no quote (it is then read), when the command
    ///         ends after a backslash that is processed, or when memory runs out.
    virtual bool getStringValue(std::string& value, bool processEscapes);

    /// Reads a set in brackets, see vexa::toolbox::Set.
    /// \warning After an empty set, `[]`, the `]` is left unread, on purpose: the next getNextName() meets it. Written
    ///          with a blank, `[ ]`, the empty set is read whole.
    /// \param value is emptied first, then receives the set; its virtual clear() and assign() are called.
    /// \return false with a message stored: "Invalid Set syntax.  Missing starting [" (the character met is then
    ///         read), "Invalid Set syntax.  Missing ending ]", "Invalid Set syntax." when the set refuses its text,
    ///         "Internal error processing Set syntax." when it runs out of memory.
    virtual bool getSetValue(vexa::toolbox::Set& value);

    /// Hook: reads and runs the command, called by parseCommandString().
    /// \return false when it failed; the stored message then goes to the host.
    virtual bool processCommand() = 0;

    /// Hook: writes the command to be recorded, see toNameValueAssignment().
    /// \param command empty on entry; receives the command.
    /// \return false when there is nothing to record; the host is then not called.
    virtual bool composeCommandString(std::string& command) const = 0;

    /// Writes NAME = T or NAME = F, and a blank. \p value counts as true unless it is zero.
    /// \warning A `bool` is taken for an integer. Convert it: `static_cast<char>(flag)`.
    static std::string toNameValueAssignment(const std::string& name, char value);
    /// Writes NAME = 'value' and a blank.
    /// \warning Nothing is escaped. A value with single quotes or backslashes reads back only when a backslash is put
    ///          before each of them here, and getStringValue() processes escapes there.
    static std::string toNameValueAssignment(const std::string& name, std::string value);
    /// Writes NAME = the number to six significant digits, and a blank. Numbers follow the global C++ locale; in the
    /// classic one: 0.1, 2.5e+06, 100.
    static std::string toNameValueAssignment(const std::string& name, double value);
    /// Writes NAME = the integer and a blank. Follows the global C++ locale; in the classic one: plain digits.
    static std::string toNameValueAssignment(const std::string& name, int32_t value);
    /// Writes NAME = the integer and a blank. Follows the global C++ locale; in the classic one: plain digits.
    static std::string toNameValueAssignment(const std::string& name, int64_t value);
    /// Writes NAME = the set's text.
    /// \warning No blank follows, on purpose. Add one before the next option.
    static std::string toNameValueAssignment(const std::string& name, vexa::toolbox::Set value);

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace vexa::vexautilutil
