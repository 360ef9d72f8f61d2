#include "OptionsProcessor.h"

#include <algorithm>
#include <cmath>

#include "vexa/Scanner.h"

namespace probestats {
namespace {

using Processor = vexa::vexautilutil::MacroCommandProcessorAbstract;
using vexa::toolbox::Set;

constexpr char kEscape = '\\';
constexpr char kSingleQuote = '\'';
constexpr const char* kQuotes = "'\"";
constexpr const char* kWhiteSpace = " \t\n\r\v\f";

// Returns the start of a quoted text without its closing quote; npos if there is none.
std::size_t openQuote(const std::string& text) {
    std::size_t open = text.find_first_of(kQuotes);
    while (open != std::string::npos) {
        std::size_t close = open + 1;
        while (close < text.size() && text[close] != text[open]) close += text[close] == kEscape ? 2 : 1;
        if (close >= text.size()) return open;
        open = text.find_first_of(kQuotes, close + 1);
    }
    return std::string::npos;
}

std::string lastWord(const std::string& text) {
    const std::size_t last = text.find_last_not_of(kWhiteSpace);
    if (last == std::string::npos) return {};
    const std::size_t before = text.find_last_of(kWhiteSpace, last);
    const std::size_t first = before == std::string::npos ? 0 : before + 1;
    return text.substr(first, last - first + 1);
}

std::string namesOf(const std::vector<Option>& options) {
    std::string names;
    for (const Option& option : options) names += (names.empty() ? "" : ", ") + std::string(option.name);
    return names;
}

std::string unknownOption(const std::string& command, const std::string& name, const std::vector<Option>& options) {
    return "Unknown option of " + command + ": " + name + "; known are " + namesOf(options);
}

std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c == kSingleQuote || c == kEscape) result += kEscape;
        result += c;
    }
    return result;
}

// These functions end with a blank, as toNameValueAssignment() does for all types except sets.
std::string assignment(const std::string& name, bool value) {
    return Processor::toNameValueAssignment(name, static_cast<char>(value));
}
std::string assignment(const std::string& name, const std::string& value) {
    return Processor::toNameValueAssignment(name, escaped(value));
}
std::string assignment(const std::string& name, const Set& value) {
    return Processor::toNameValueAssignment(name, value) + ' ';
}
template <typename Number>
std::string assignment(const std::string& name, Number value) {
    return Processor::toNameValueAssignment(name, value);
}

std::string composed(const std::string& command, const std::vector<Option>& options) {
    std::string text = command + ' ';
    for (const Option& option : options) {
        std::visit(
            [&](const auto* value) {
                if (*value) text += assignment(option.name, **value);
            },
            option.target);
    }
    text.pop_back();
    return text;
}

// Doubles are recorded with six significant digits.
bool survivesRecording(double value) {
    vexa::Scanner recorded;
    recorded.reset(assignment("NAME", value));
    recorded.nextToken();
    recorded.nextToken();
    return recorded.hasNextDoubleToken() && recorded.nextDoubleToken() == value;
}

}  // namespace

bool OptionsProcessor::parseCommandString(const char* commandString, char** errMsg) {
    m_text = std::string(commandString);
    return MacroCommandProcessorAbstract::parseCommandString(commandString, errMsg);
}

bool OptionsProcessor::processCommand() {
    std::string word;
    getCommand(word);
    return runCommand(word);
}

bool OptionsProcessor::composeCommandString(std::string& command) const {
    command = m_recordable;
    return true;
}

bool OptionsProcessor::readOptions(const std::string& command, const std::vector<Option>& options) {
    const std::size_t open = openQuote(m_text);
    if (open != std::string::npos) return refuse("Missing closing quote of: " + m_text.substr(open));
    std::string name;
    while (nextName(name)) {
        const auto option =
            std::find_if(options.begin(), options.end(), [&](const Option& o) { return name == o.name; });
        if (option == options.end()) {
            return refuse(unknownOption(command, name, options));
        }
        if (std::visit([](const auto* value) { return value->has_value(); }, option->target)) {
            return refuse("Command option given twice: " + name);
        }
        if (!std::visit([&](auto* value) { return read(name, *value); }, option->target)) return false;
    }
    if (!name.empty()) return false;
    m_recordable = composed(command, options);
    return true;
}

std::string OptionsProcessor::optionsText() const {
    const std::size_t word = m_text.find_first_not_of(kWhiteSpace);
    const std::size_t wordEnd = m_text.find_first_of(kWhiteSpace, word);
    const std::size_t options = m_text.find_first_not_of(kWhiteSpace, wordEnd);
    return options == std::string::npos ? std::string() : m_text.substr(options);
}

bool OptionsProcessor::refuse(const std::string& reason) {
    depositErrorMessage("Error: " + reason);
    return false;
}

// Returns false with an empty name at the end of the command, and false with the name if its `=` is missing. If another
// character is in the place of the `=`, getNextName() stores a message. If the command ends there, it stores none, so
// the message that is deposited here remains.
bool OptionsProcessor::nextName(std::string& name) {
    name.clear();
    depositErrorMessage("Error: Missing = and value for command option: " + lastWord(m_text));
    return getNextName(name);
}

bool OptionsProcessor::read(const std::string& name, std::optional<bool>& target) {
    char value = 0;
    // This message remains if the command ends here, because the getter then stores none.
    depositErrorMessage("Error: Missing Boolean value for command option: " + name);
    if (!getBooleanValue(value)) return false;
    target = value != 0;
    return true;
}

bool OptionsProcessor::read(const std::string&, std::optional<int32_t>& target) {
    int32_t value = 0;
    if (!getInt32Value(value)) return false;
    target = value;
    return true;
}

bool OptionsProcessor::read(const std::string&, std::optional<int64_t>& target) {
    int64_t value = 0;
    if (!getInt64Value(value)) return false;
    target = value;
    return true;
}

bool OptionsProcessor::read(const std::string& name, std::optional<double>& target) {
    double value = 0.0;
    if (!getDoubleValue(value)) return false;
    if (!std::isfinite(value)) return refuse("Expected a finite number for command option: " + name);
    if (!survivesRecording(value)) {
        return refuse("Expected at most six significant digits, which is what can be recorded, for command option: " +
                      name);
    }
    target = value;
    return true;
}

bool OptionsProcessor::read(const std::string& name, std::optional<std::string>& target) {
    std::string value;
    if (!getStringValue(value, true)) return refuse("Expected a quoted text for command option: " + name);
    if (value.empty()) return refuse("Empty text for command option: " + name);
    // A line of a macro file could not hold the recorded command.
    if (value.find('\n') != std::string::npos) return refuse("Line break in the text for command option: " + name);
    target = value;
    return true;
}

bool OptionsProcessor::read(const std::string& name, std::optional<Set>& target) {
    Set value;
    if (!getSetValue(value)) return false;
    if (value.isEmpty()) return refuse("Empty set for command option: " + name);
    target = value;
    return true;
}

}  // namespace probestats
