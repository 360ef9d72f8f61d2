#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "vexa/toolbox/Set.h"
#include "vexautilutil/Export.h"

namespace vexa::vexautilutil {

/// Reads the command strings that the host passes to an add-on, and records commands in the host's macro or journal.
///
/// Derive from it and implement two hooks: processCommand() reads the command with the getters and runs it;
/// composeCommandString() writes the command to record.
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
///         return name.empty();   // if not empty, the last name had no `=`
///     }
///     bool composeCommandString(std::string& command) const override {
///         command = "SLICE " + toNameValueAssignment("COUNT", m_count);
///         return true;
///     }
///
/// A command is a list of words separated by white space: the command word, then NAME = value for each option. The
/// getters read the command word and names in any letter case and return them in upper case.
///
/// Errors: a getter that reads bad input stores a message and returns false. If processCommand() returns false, the
///         processor passes the last stored message to the host. A getter's message starts with "Error: ". If the
///         getter knows the option's name, the message ends with " for command option: ", the name as written, and a
///         line feed.
/// Scanner: a getter calls a `hasNext...` operation of the scanner before it reads. Only getSetValue() reads the
///          opening bracket without this call. At the end of the command getSetValue() fails, whatever the scanner
///          returns.
/// Threads: one thread at a time may use a processor. The processor calls the host on the caller's thread.
/// The order of the virtual operations is part of the binary interface.
class VEXAUTILUTIL_API MacroCommandProcessorAbstract {
public:
    /// Creates a processor without a command.
    MacroCommandProcessorAbstract();
    MacroCommandProcessorAbstract(const MacroCommandProcessorAbstract&) = delete;
    MacroCommandProcessorAbstract& operator=(const MacroCommandProcessorAbstract&) = delete;
    virtual ~MacroCommandProcessorAbstract();

    /// Processes one command: resets the scanner to it, clears the option name and the message of the previous command,
    /// and calls processCommand().
    /// \param commandString the command, not null.
    /// \param errMsg        not null; unchanged on success. On failure it receives a host string, owned by the caller,
    ///                      with the stored message (empty if none was stored), or null if the host has no memory.
    /// \return the result of processCommand().
    /// \throws std::logic_error if \p commandString is null; the processor is then unchanged. An exception of
    ///         processCommand() passes through and leaves \p errMsg unchanged; executeCommand() reports it.
    virtual bool parseCommandString(const char* commandString, char** errMsg);

    /// Records a command in the host's macro: calls composeCommandString() and passes the command to the host. While
    /// the host does not record, or plays back a journal or a layout, the function does nothing and returns true.
    /// \param addOnId the add-on's name, passed to the host unchanged.
    /// \return false if composeCommandString() or the host refused, true otherwise.
    virtual bool recordMacroCommand(const char* addOnId) const;

    /// Adds a command to the host's data-set journal: calls composeCommandString() and passes the command to the host.
    /// \warning Unlike recordMacroCommand(), it does not check the state of the host. The caller decides when a command
    ///          belongs in the journal.
    /// \param addOnId     the add-on's name, passed to the host unchanged.
    /// \param journalData passed to the host unchanged; may be null.
    /// \return true if the command was added; false if composeCommandString() or the host refused.
    virtual bool journalMacroCommand(const char* addOnId, const char* journalData) const;

    /// Replaces the stored message by \p message, unchanged. Call it for failures that the getters do not detect. The
    /// getters store their messages without calling it.
    virtual void depositErrorMessage(const std::string& message);

    /// Reads the command word. Call it once, before the other getters.
    /// \param command receives the word in upper case; unchanged on failure.
    /// \return false, and stores no message, if no word is left.
    virtual bool getCommand(std::string& command);

    /// Reads the next option's name and the `=` after it. Call it before each value.
    /// \param name receives the name in upper case, even if the `=` is missing; unchanged if no name is left.
    /// \return true if it read a name and its `=`. Otherwise false:
    ///         - with the message "Missing = " if another character follows the name;
    ///         - without a message if nothing follows the name;
    ///         - without a message if no name is left, which is the end of the command.
    /// \warning A name ends at white space: `COUNT=12` is a single word, so its `=` counts as missing.
    /// \warning It returns false for the end of the command and for a missing `=`. To distinguish them, empty \p name
    ///          before each call: at the end of the command it stays empty.
    virtual bool getNextName(std::string& name);

    /// Reads T, TRUE or YES as 1, and F, FALSE or NO as 0, in any letter case.
    /// \param value receives 1 or 0; unchanged on failure.
    /// \return false, with the message "Invalid Boolean value", if the next word is any other word. It reads that word,
    ///         too. False without a message if no word is left.
    virtual bool getBooleanValue(char& value);

    /// Reads a floating-point number.
    /// \param value receives the number; unchanged on failure.
    /// \return false, with the message "Invalid Double value", if no word is left or the next word is not a number. It
    ///         does not read that word.
    virtual bool getDoubleValue(double& value);

    /// Reads a signed 64-bit integer and keeps its low 32 bits.
    /// \warning It does not check the range, on purpose: 4294967297 becomes 1, and 2147483648 becomes -2147483648. If
    ///          the range matters, use getInt64Value().
    /// \param value receives the low 32 bits; unchanged on failure.
    /// \return false, with the message "Invalid Int32 value", if no word is left or the next word is not an integer. It
    ///         does not read that word.
    virtual bool getInt32Value(int32_t& value);

    /// Reads a signed 64-bit integer.
    /// \param value receives the integer; unchanged on failure.
    /// \return false, with the message "Invalid Int64 value", if no word is left or the next word is not an integer. It
    ///         does not read that word.
    virtual bool getInt64Value(int64_t& value);

    /// Reads a text in double or single quotes. The text may contain the other kind of quote.
    /// \warning If the closing quote is missing, the call never returns.
    /// \warning It stores no message on failure. Store one with depositErrorMessage().
    /// \param value          receives the characters between the quotes. The call empties it first. On failure it has
    ///                       the characters read so far.
    /// \param processEscapes true to read a backslash as an escape: the next character then has no special meaning, so
    ///                       `\"` is a double quote, `\\` a backslash, and `\n` the letter n. False to read a backslash
    ///                       like any other character; the first matching quote then ends the text.
    /// \return false if nothing is left, if the next character is not a quote (the call reads it), if the command ends
    ///         after an escape's backslash, or if memory runs out.
    virtual bool getStringValue(std::string& value, bool processEscapes);

    /// Reads a set in brackets; see vexa::toolbox::Set.
    /// \warning It does not read the `]` of an empty set `[]`, on purpose; the next getNextName() reads it as a name.
    ///          It reads the whole of `[ ]`, an empty set with a blank.
    /// \param value receives the set, by its virtual operations: first clear(), then assign().
    /// \return false with one of these messages:
    ///         - "Invalid Set syntax.  Missing starting [" if the next character is not a `[`. The call reads it.
    ///         - "Invalid Set syntax.  Missing ending ]"
    ///         - "Invalid Set syntax." if the set refuses its text.
    ///         - "Internal error processing Set syntax." if the set runs out of memory.
    virtual bool getSetValue(vexa::toolbox::Set& value);

    /// Hook: reads and runs the command. parseCommandString() calls it.
    /// \return false if the command failed. The processor then passes the stored message to the host.
    virtual bool processCommand() = 0;

    /// Hook: writes the command to record; see toNameValueAssignment(). recordMacroCommand() and journalMacroCommand()
    /// call it.
    /// \param command empty at first; receives the command.
    /// \return false if there is no command to record. The host then gets no command.
    virtual bool composeCommandString(std::string& command) const = 0;

    /// Returns NAME = T or NAME = F, and a blank. Zero is F; every other \p value is T.
    /// \warning A `bool` selects the overload for integers. Convert it: `static_cast<char>(flag)`.
    static std::string toNameValueAssignment(const std::string& name, char value);
    /// Returns NAME = 'value' and a blank.
    /// \warning It escapes nothing. If a value can contain single quotes or backslashes, write a backslash before each
    ///          of them, and read the value by getStringValue() with escapes.
    static std::string toNameValueAssignment(const std::string& name, std::string value);
    /// Returns NAME = the number with six significant digits, and a blank. The number's format follows the global C++
    /// locale; in the classic locale: 0.1, 2.5e+06, 100.
    static std::string toNameValueAssignment(const std::string& name, double value);
    /// Returns NAME = the integer, and a blank. Digit grouping follows the global C++ locale; the classic locale has
    /// none.
    static std::string toNameValueAssignment(const std::string& name, int32_t value);
    /// Returns NAME = the integer, and a blank. Digit grouping follows the global C++ locale; the classic locale has
    /// none.
    static std::string toNameValueAssignment(const std::string& name, int64_t value);
    /// Returns NAME = the set's text.
    /// \warning No blank follows the text, on purpose. Add one before the next option.
    static std::string toNameValueAssignment(const std::string& name, vexa::toolbox::Set value);

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace vexa::vexautilutil
