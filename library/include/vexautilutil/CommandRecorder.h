/// \file
/// Describes an add-on's commands from the add-on's own code: from option objects, and from what a processor asks for.
/// The result is the file NAME.commands.json, which the program vexa-standin reads. Everything here is inline, and adds
/// nothing to the library's binary interface.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "vexa/toolbox/Set.h"
#include "vexautilutil/BooleanMacroOption.h"
#include "vexautilutil/MacroCommandAbstract.h"
#include "vexautilutil/MacroCommandProcessorAbstract.h"
#include "vexautilutil/MacroOptionPerformer.h"
#include "vexautilutil/SetMacroOption.h"
#include "vexautilutil/StringMacroOption.h"
#include "vexautilutil/UInt64MacroOption.h"

namespace vexa::vexautilutil {

template <class Processor>
class RecordedProcessor;

/// The parts of CommandRecorder. Do not use them directly.
namespace detail {

/// Returns \p text as a JSON string, with its quotes. \p text is UTF-8.
inline std::string jsonText(const std::string& text) {
    constexpr const char* kHexDigits = "0123456789abcdef";
    std::string json = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20) {
            json += "\\u00";
            json += kHexDigits[byte / 16];
            json += kHexDigits[byte % 16];
            continue;
        }
        if (c == '"' || c == '\\') json += '\\';
        json += c;
    }
    return json + '"';
}

/// An option, with its members as JSON.
struct RecordedOption {
    std::string name;               ///< as the add-on reads it
    const char* type;               ///< a type of a description, for example "Int64"
    std::string defaultValue = {};  ///< empty if the option has none
    std::string help = {};          ///< one line
    std::string more = {};          ///< further members; empty for none
    bool hasEscapes = true;         ///< whether the processor reads a text with escapes
};

/// Returns \p option as a JSON object on one line.
inline std::string jsonOf(const RecordedOption& option) {
    std::string json = "{\"name\": " + jsonText(option.name) + ", \"type\": \"" + option.type + '"';
    if (!option.defaultValue.empty()) json += ", \"default\": " + option.defaultValue;
    if (!option.hasEscapes) json += ", \"escapes\": false";
    if (!option.more.empty()) json += ", " + option.more;
    return json + ", \"help\": " + jsonText(option.help) + '}';
}

/// A command, and its options in the order in which they were seen first.
struct RecordedCommand {
    std::string name;                          ///< the word with which the command starts
    const char* kind;                          ///< "command" or "processor"
    std::string purpose = {};                  ///< one line
    std::vector<RecordedOption> options = {};  ///< in the order in which they were seen
    std::vector<std::string> before = {};      ///< commands that have to run first
    std::vector<std::string> examples = {};    ///< commands that succeed

    /// Returns the option of this name. An unknown one is added, with \p type.
    RecordedOption& option(const std::string& optionName, const char* type) {
        for (RecordedOption& known : options) {
            if (known.name == optionName) return known;
        }
        options.push_back({optionName, type});
        return options.back();
    }
};

/// Returns a member whose value is a list, after a comma and a line end; nothing if the list is empty.
template <class Items, class Write>
std::string jsonList(const char* name, const Items& items, Write write) {
    if (items.empty()) return {};
    std::string json = ",\n      \"" + std::string(name) + "\": [";
    const char* separator = "\n        ";
    for (const auto& item : items) {
        json += separator + write(item);
        separator = ",\n        ";
    }
    return json + "\n      ]";
}

/// Returns \p command as a JSON object, with a line per option.
inline std::string jsonOf(const RecordedCommand& command) {
    return "    {\n      \"name\": " + jsonText(command.name) + ",\n      \"kind\": \"" + command.kind +
           "\",\n      \"purpose\": " + jsonText(command.purpose) +
           jsonList("options", command.options, [](const RecordedOption& option) { return jsonOf(option); }) +
           jsonList("before", command.before, jsonText) + jsonList("examples", command.examples, jsonText) + "\n    }";
}

/// Adds each option that it visits to a command.
class OptionRecorder : public MacroOptionPerformerAbstract {
public:
    /// \param command must outlive this object.
    explicit OptionRecorder(RecordedCommand& command) : MacroOptionPerformerAbstract(false), m_command(command) {}

    void action(BooleanMacroOption& option) override {
        add(option, "Boolean", [&] { return std::string(option.value() ? "true" : "false"); });
    }
    void action(StringMacroOption& option) override {
        add(option, "String", [&] { return jsonText(option.value()); });
    }
    void action(SetMacroOption& option) override {
        add(option, "Set", [&] { return option.value() ? jsonText(option.value()->toString()) : std::string(); });
    }
    void action(UInt64MacroOption& option) override {
        add(option, "UInt64", [&] { return std::to_string(option.value()); });
    }

private:
    template <class ValueOf>
    void add(const MacroOptionInterface& option, const char* type, ValueOf valueOf) {
        RecordedOption& added = m_command.option(option.name(), type);
        if (option.isDefaultValue()) added.defaultValue = valueOf();
    }

    RecordedCommand& m_command;
};

}  // namespace detail

/// Adds the texts that the code of a command does not contain, such as its purpose. Valid until CommandRecorder
/// describes another command.
class CommandNotes {
public:
    /// CommandRecorder creates the notes.
    explicit CommandNotes(detail::RecordedCommand& command) : m_command(&command) {}

    /// Sets the purpose of the command, one line of UTF-8.
    CommandNotes& purpose(const std::string& text) {
        m_command->purpose = text;
        return *this;
    }
    /// Adds a command, without the add-on's id, that has to run first.
    CommandNotes& before(const std::string& command) {
        m_command->before.push_back(command);
        return *this;
    }
    /// Adds a command, without the add-on's id, that succeeds.
    CommandNotes& example(const std::string& command) {
        auto& all = m_command->examples;
        if (std::find(all.begin(), all.end(), command) == all.end()) all.push_back(command);
        return *this;
    }
    /// Sets the help of an option, one line of UTF-8, and further members of the description as JSON.
    /// \param name an option that the command has. Other names are ignored.
    /// \param more for example `"required": true` or `"min": 1, "max": 9`; empty for none.
    CommandNotes& option(const std::string& name, const std::string& help, const std::string& more = {}) {
        for (detail::RecordedOption& known : m_command->options) {
            if (known.name != name) continue;
            known.help = help;
            known.more = more;
        }
        return *this;
    }

private:
    detail::RecordedCommand* m_command;
};

/// Describes the commands of an add-on.
///
///     CommandRecorder recorder("STATS");
///     LoadCommand load;                                    // with all its options, at their defaults
///     recorder.describe(load)
///         .purpose("Loads a file.")
///         .option("FILE", "the file to read", "\"required\": true")
///         .example("LOAD FILE=\"wake.txt\"");
///     RecordedProcessor<StatsProcessor> processor(recorder);
///     processor.parseCommandString("MEAN COLUMN = 2 TITLE = 'Wake'", &message);
///     recorder.notes("MEAN").purpose("Prints the mean of a column.");
///     std::cout << recorder.toJson();
///
/// Threads: one thread at a time.
class CommandRecorder {
public:
    /// \param addOnId the id of the add-on.
    explicit CommandRecorder(std::string addOnId) : m_addOnId(std::move(addOnId)) {}

    /// Describes a command of the command model: its name, and the names, types and defaults of its options. An option
    /// has a default in the description if its isDefaultValue() is true, so create \p command with all its options at
    /// their defaults. What the command's functions throw passes through.
    CommandNotes describe(MacroCommandAbstract& command) {
        detail::RecordedCommand& recorded = find(command.name(), "command");
        detail::OptionRecorder options(recorded);
        command.forEachOption(options);
        return CommandNotes(recorded);
    }

    /// Returns the notes of the command \p name, which describe() or a processor added. If there is no such command,
    /// adds one of the kind "processor", without options.
    CommandNotes notes(const std::string& name) { return CommandNotes(find(name, "processor")); }

    /// Returns the description as JSON, with a line end. A purpose or a help is empty if the program did not set it.
    std::string toJson() const {
        std::string json = "{\n  \"addon\": " + detail::jsonText(m_addOnId) + ",\n  \"commands\": [";
        const char* separator = "\n";
        for (const detail::RecordedCommand& command : m_commands) {
            json += separator + detail::jsonOf(command);
            separator = ",\n";
        }
        return json + (m_commands.empty() ? "]\n}\n" : "\n  ]\n}\n");
    }

private:
    template <class Processor>
    friend class RecordedProcessor;

    detail::RecordedCommand& find(const std::string& name, const char* kind) {
        for (detail::RecordedCommand& known : m_commands) {
            if (known.name == name) return known;
        }
        m_commands.push_back({name, kind});
        return m_commands.back();
    }

    std::string m_addOnId;
    std::vector<detail::RecordedCommand> m_commands;
};

/// A processor that passes to a CommandRecorder what its `processCommand` reads: the command, each option, and the type
/// of the getter that reads its value. The commands run as in \p Processor, so a host is needed. Commands that succeed
/// become examples. Options that no command used are not in the description.
/// \tparam Processor a class derived from MacroCommandProcessorAbstract, which gets its getters through virtual calls.
template <class Processor>
class RecordedProcessor : public Processor {
    static_assert(std::is_base_of<MacroCommandProcessorAbstract, Processor>::value,
                  "Processor derives from MacroCommandProcessorAbstract");

public:
    /// \param recorder  must outlive this object.
    /// \param arguments those of the constructor of \p Processor.
    template <class... Arguments>
    explicit RecordedProcessor(CommandRecorder& recorder, Arguments&&... arguments)
        : Processor(std::forward<Arguments>(arguments)...), m_recorder(recorder) {}

    /// Runs a command. If it succeeds, it becomes an example.
    bool parseCommandString(const char* commandString, char** errMsg) override {
        m_command.clear();
        m_option.clear();
        const bool isProcessed = Processor::parseCommandString(commandString, errMsg);
        if (isProcessed && !m_command.empty()) m_recorder.notes(m_command).example(commandString);
        return isProcessed;
    }
    /// Calls the operation of \p Processor, and notes the command.
    bool getCommand(std::string& command) override {
        if (!Processor::getCommand(command)) return false;
        m_command = command;
        return true;
    }
    /// Calls the operation of \p Processor, and remembers the name of the option.
    bool getNextName(std::string& name) override {
        const bool isRead = Processor::getNextName(name);
        m_option = isRead ? name : std::string();
        return isRead;
    }
    /// Calls the operation of \p Processor, and notes the type of the option.
    bool getBooleanValue(char& value) override { return noted(Processor::getBooleanValue(value), "Boolean"); }
    /// Calls the operation of \p Processor, and notes the type of the option.
    bool getDoubleValue(double& value) override { return noted(Processor::getDoubleValue(value), "Double"); }
    /// Calls the operation of \p Processor, and notes the type of the option.
    bool getInt32Value(std::int32_t& value) override { return noted(Processor::getInt32Value(value), "Int32"); }
    /// Calls the operation of \p Processor, and notes the type of the option.
    bool getInt64Value(std::int64_t& value) override { return noted(Processor::getInt64Value(value), "Int64"); }
    /// Calls the operation of \p Processor, and notes the type of the option.
    bool getStringValue(std::string& value, bool processEscapes) override {
        return noted(Processor::getStringValue(value, processEscapes), "String", processEscapes);
    }
    /// Calls the operation of \p Processor, and notes the type of the option.
    bool getSetValue(toolbox::Set& value) override { return noted(Processor::getSetValue(value), "Set"); }

private:
    // Only a value that was read counts: a refused one may belong to a name that the processor does not know.
    bool noted(bool isRead, const char* type, bool hasEscapes = true) {
        if (isRead && !m_command.empty() && !m_option.empty()) {
            m_recorder.find(m_command, "processor").option(m_option, type).hasEscapes = hasEscapes;
        }
        return isRead;
    }

    CommandRecorder& m_recorder;
    std::string m_command;
    std::string m_option;
};

}  // namespace vexa::vexautilutil
