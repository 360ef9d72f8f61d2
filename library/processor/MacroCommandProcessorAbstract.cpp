#include "vexautilutil/MacroCommandProcessorAbstract.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstring>
#include <iterator>
#include <new>
#include <string_view>
#include <utility>

#include "vexa/InvalidArgumentException.h"
#include "vexa/OutOfMemoryException.h"
#include "vexa/Scanner.h"
#include "vexa/VexaUtil.h"

namespace vexa::vexautilutil {
namespace {

constexpr char kEscape = '\\';
const std::string SET_END_delimiter = "]";

// Converts as toupper() does in the locale of the process. It gets the C library's table once per word, because a call
// of toupper() per character is noticeably slower.
void toUpperCase(std::string& text) {
    const int32_t* const upper = *__ctype_toupper_loc();
    for (char& c : text) c = static_cast<char>(upper[static_cast<unsigned char>(c)]);
}

bool isQuote(char c) { return c == '"' || c == '\''; }

struct BooleanWord {
    std::string_view word;
    char value;
};
constexpr BooleanWord kBooleans[] = {{"T", 1}, {"F", 0}, {"TRUE", 1}, {"FALSE", 0}, {"YES", 1}, {"NO", 0}};

// Copies a message into a host string. Returns null if the host has no memory for it.
char* toHostString(const std::string& message) {
    const std::size_t size = message.size() + 2;  // one byte more than needed: hosts have always got this size
    if (size > INT_MAX) return nullptr;
    char* const text = VexaUtilStringAlloc(static_cast<int>(size), "error string");
    if (text != nullptr) std::memcpy(text, message.c_str(), message.size() + 1);
    return text;
}

}  // namespace

// The scanner may be the host maker's own, and its result at the end of the text is not defined. So each getter first
// checks that something is left.
struct MacroCommandProcessorAbstract::Impl {
    explicit Impl(MacroCommandProcessorAbstract* processor) : owner(processor) {}

    bool parseCommandString(const std::string& command) {
        scanner.reset(command);
        currentOptionName.clear();
        errorMessage.clear();
        return owner->processCommand();
    }

    // Stores a getter's message with the name of the option. If memory runs out, the previous message stays.
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

    // Stores the error and returns false, so that a getter can return the result. It is not inlined, so that the
    // getters need no stack frame on success.
    [[gnu::noinline]] bool refuse(std::string_view message) {
        squirrelAwayError(message);
        return false;
    }

    // Reads the next word in upper case. Returns false, and leaves `word` unchanged, if no word is left.
    bool readWord(std::string& word) {
        if (!scanner.hasNextToken()) return false;
        word = scanner.nextToken();
        toUpperCase(word);
        return true;
    }

    // Waits until a character is left. At the end of the text it never returns; add-ons rely on this.
    void waitForCharacter() const {
        [[maybe_unused]] volatile bool asked = false;  // without it, the compiler may assume that the loop ends
        while (!scanner.hasNextChar()) asked = true;
    }

    // Reads a string, including both quotes. Returns false if the opening quote is missing, or if the text ends after
    // the backslash of an escape.
    bool readQuoted(std::string& value, bool processEscapes) {
        if (!scanner.hasNextChar()) return false;
        const char quote = scanner.nextChar();
        if (!isQuote(quote)) return false;
        while (true) {
            waitForCharacter();
            char c = scanner.nextChar();
            if (c == quote) return true;
            if (c == kEscape && processEscapes) {
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
        if (scanner.hasNextChar(']')) return true;  // the bracket stays unread; add-ons rely on it
        if (!scanner.hasNextToken(SET_END_delimiter)) return refuse("Invalid Set syntax.  Missing ending ]");
        std::string text = '[' + scanner.nextToken(SET_END_delimiter) + ']';
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
    std::string currentOptionName;  // as written; empty before the command's first option
    std::string errorMessage;       // passed to the host if the command fails
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

bool MacroCommandProcessorAbstract::getCommand(std::string& command) { return m_impl->readWord(command); }

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
    m_impl->scanner.skipWhitespace();
    std::string word;
    if (!m_impl->readWord(word)) return false;
    const auto* const known = std::find_if(std::begin(kBooleans), std::end(kBooleans),
                                           [&](const BooleanWord& one) { return one.word == word; });
    if (known == std::end(kBooleans)) return m_impl->refuse("Invalid Boolean value");
    value = known->value;
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
    try {
        m_impl->scanner.skipWhitespace();
        value.clear();
        return m_impl->readQuoted(value, processEscapes);
    } catch (const std::bad_alloc&) {
        return false;
    }
}

bool MacroCommandProcessorAbstract::getSetValue(toolbox::Set& value) { return m_impl->getSetValue(value); }

}  // namespace vexa::vexautilutil
