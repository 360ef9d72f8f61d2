#include "vexautilutil/MacroCommandProcessorAbstract.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstring>
#include <initializer_list>
#include <new>
#include <string_view>
#include <utility>

#include "vexa/InvalidArgumentException.h"
#include "vexa/OutOfMemoryException.h"
#include "vexa/Scanner.h"
#include "vexa/VexaUtil.h"

namespace vexa::vexautilutil {
namespace {

constexpr char ESCAPE_character = '\\';
const std::string SET_END_delimiter = "]";

void toUpperCase(std::string& text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
}

bool isQuote(char c) { return c == '"' || c == '\''; }

bool isOneOf(std::string_view word, std::initializer_list<std::string_view> words) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

// The host's copy of a message; null when the host has no memory for it.
char* toHostString(const std::string& message) {
    const std::size_t size = message.size() + 2;  // one more than needed: what hosts have always been asked for
    if (size > INT_MAX) return nullptr;
    char* const text = VexaUtilStringAlloc(static_cast<int>(size), "error string");
    if (text != nullptr) std::memcpy(text, message.c_str(), message.size() + 1);
    return text;
}

}  // namespace

struct MacroCommandProcessorAbstract::Impl {
    explicit Impl(MacroCommandProcessorAbstract* processor) : owner(processor) {}

    bool parseCommandString(const std::string& command) {
        scanner.reset(command);
        currentOptionName.clear();
        errorMessage.clear();
        return owner->processCommand();
    }

    // Stores what a getter found, with the option it found it in. Out of memory, the message before stays.
    void squirrelAwayError(std::string_view message) {
        try {
            std::string text = "Error: ";
            text += message;
            if (!currentOptionName.empty()) {
                text += " for command option: ";
                text += currentOptionName;
                text += '\n';
            }
            errorMessage = std::move(text);
        } catch (const std::bad_alloc&) {}
    }

    // Stores the error and returns false, for the getters to return.
    bool refuse(std::string_view message) {
        squirrelAwayError(message);
        return false;
    }

    // Returns once a character is left. At the end of the text that is never: an unterminated string hangs, and is
    // relied upon to. The volatile store keeps the compiler from assuming that the loop must end.
    void awaitChar() const {
        volatile bool asked = false;
        while (!scanner.hasNextChar()) asked = true;
        static_cast<void>(asked);
    }

    // Reads the rest of a string, up to and including its closing quote. False when the text ends after an escape.
    bool readQuoted(std::string& value, char quote, bool processEscapes) {
        while (true) {
            awaitChar();
            char c = scanner.nextChar();
            if (c == quote) return true;
            if (c == ESCAPE_character && processEscapes) {
                if (!scanner.hasNextChar()) return false;
                c = scanner.nextChar();
            }
            value += c;
        }
    }

    bool getSetValue(toolbox::Set& value) {
        value.clear();
        scanner.skipWhitespace();
        if (scanner.nextChar() != '[') return refuse("Invalid Set syntax.  Missing starting [");
        if (scanner.hasNextChar(']')) return true;  // the bracket stays unread; add-ons count on it
        if (!scanner.hasNextToken(SET_END_delimiter)) return refuse("Invalid Set syntax.  Missing ending ]");
        std::string text = "[" + scanner.nextToken(SET_END_delimiter) + "]";
        scanner.nextChar();
        try {
            value.assign(std::move(text));
        } catch (const InvalidArgumentException&) {
            return refuse("Invalid Set syntax.");
        } catch (const OutOfMemoryException&) {
            return refuse("Internal error processing Set syntax.");
        }
        return true;
    }

    Scanner scanner;
    std::string currentOptionName;  // as written; empty until the first one of the command
    std::string errorMessage;       // what the host gets when the command fails
    MacroCommandProcessorAbstract* owner;
};

MacroCommandProcessorAbstract::MacroCommandProcessorAbstract() : m_impl(std::make_unique<Impl>(this)) {}

MacroCommandProcessorAbstract::~MacroCommandProcessorAbstract() = default;

bool MacroCommandProcessorAbstract::parseCommandString(const char* commandString, char** errMsg) {
    if (m_impl->parseCommandString(commandString)) return true;
    *errMsg = toHostString(m_impl->errorMessage);
    return false;
}

bool MacroCommandProcessorAbstract::recordMacroCommand(const char* addOnId) const {
    if (VexaUtilMacroIsRecordingActive() == 0) return true;
    if (VexaUtilStateIsProcessingJournal() != 0) return true;
    if (VexaUtilStateIsProcessingLayout() != 0) return true;
    std::string command;
    if (!composeCommandString(command)) return false;
    return VexaUtilMacroRecordExtCommand(addOnId, command.c_str()) == 1;
}

bool MacroCommandProcessorAbstract::journalMacroCommand(const char* addOnId, const char* journalData) const {
    std::string command;
    if (!composeCommandString(command)) return false;
    return VexaUtilDataSetAddJournalCommand(addOnId, command.c_str(), journalData) != 0;
}

void MacroCommandProcessorAbstract::depositErrorMessage(const std::string& message) { m_impl->errorMessage = message; }

bool MacroCommandProcessorAbstract::getCommand(std::string& command) {
    if (!m_impl->scanner.hasNextToken()) return false;
    command = m_impl->scanner.nextToken();
    toUpperCase(command);
    return true;
}

bool MacroCommandProcessorAbstract::getNextName(std::string& name) {
    Scanner& scanner = m_impl->scanner;
    if (!scanner.hasNextToken()) return false;
    name = scanner.nextToken();
    m_impl->currentOptionName = name;
    toUpperCase(name);
    scanner.skipWhitespace();
    if (!scanner.hasNextChar()) return false;
    if (scanner.nextChar() != '=') return m_impl->refuse("Missing = ");
    return true;
}

bool MacroCommandProcessorAbstract::getBooleanValue(char& value) {
    Scanner& scanner = m_impl->scanner;
    scanner.skipWhitespace();
    if (!scanner.hasNextToken()) return false;
    std::string word = scanner.nextToken();
    toUpperCase(word);
    if (isOneOf(word, {"T", "TRUE", "YES"})) {
        value = 1;
    } else if (isOneOf(word, {"F", "FALSE", "NO"})) {
        value = 0;
    } else {
        return m_impl->refuse("Invalid Boolean value");
    }
    return true;
}

bool MacroCommandProcessorAbstract::getDoubleValue(double& value) {
    if (!m_impl->scanner.hasNextDoubleToken()) return m_impl->refuse("Invalid Double value");
    value = m_impl->scanner.nextDoubleToken();
    return true;
}

bool MacroCommandProcessorAbstract::getInt32Value(int32_t& value) {
    if (!m_impl->scanner.hasNextInt64Token()) return m_impl->refuse("Invalid Int32 value");
    value = static_cast<int32_t>(m_impl->scanner.nextInt64Token());  // the low 32 bits; macros rely on it
    return true;
}

bool MacroCommandProcessorAbstract::getInt64Value(int64_t& value) {
    if (!m_impl->scanner.hasNextInt64Token()) return m_impl->refuse("Invalid Int64 value");
    value = m_impl->scanner.nextInt64Token();
    return true;
}

bool MacroCommandProcessorAbstract::getStringValue(std::string& value, bool processEscapes) {
    Scanner& scanner = m_impl->scanner;
    scanner.skipWhitespace();
    value.clear();
    if (!scanner.hasNextChar()) return false;
    const char quote = scanner.nextChar();
    if (!isQuote(quote)) return false;
    try {
        return m_impl->readQuoted(value, quote, processEscapes);
    } catch (const std::bad_alloc&) {
        return false;
    }
}

bool MacroCommandProcessorAbstract::getSetValue(toolbox::Set& value) { return m_impl->getSetValue(value); }

}  // namespace vexa::vexautilutil
