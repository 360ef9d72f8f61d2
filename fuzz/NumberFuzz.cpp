// Reads a text as each kind of number, and compares with strtoull(), strtoll() and strtod(). A number that the library
// writes must be the one that printf() writes.

#include <cerrno>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

#include "Fuzz.h"
#include "vexa/VexaUtil.h"
#include "vexastandin/Host.h"
#include "vexautilutil/MacroCommandAbstract.h"
#include "vexautilutil/MacroCommandError.h"
#include "vexautilutil/MacroCommandProcessorAbstract.h"
#include "vexautilutil/UInt64MacroOption.h"

namespace vexa::fuzz {
namespace {

using namespace vexautilutil;

constexpr const char* kDigits = "0123456789";

bool hasOnly(const std::string& text, const std::string& characters) {
    return text.find_first_not_of(characters) == std::string::npos;
}

// ---- What the C library reads

template <class Number>
using Reader = Number (*)(const char*, char**);

// Returns the number if it is the whole text and fits its type.
template <class Number>
std::optional<Number> wholeNumber(const std::string& text, Reader<Number> read) {
    char* end = nullptr;
    errno = 0;
    const Number number = read(text.c_str(), &end);
    const bool isWhole = end != text.c_str() && end == text.c_str() + text.size();
    return isWhole && errno != ERANGE ? std::optional<Number>(number) : std::nullopt;
}

unsigned long long decimalUnsigned(const char* text, char** end) { return std::strtoull(text, end, 10); }
long long decimal(const char* text, char** end) { return std::strtoll(text, end, 10); }
double real(const char* text, char** end) { return std::strtod(text, end); }

// strtoull() also takes white space and a minus sign.
std::optional<std::uint64_t> plainUnsigned(const std::string& token) {
    if (!hasOnly(token, std::string("+") + kDigits)) return std::nullopt;
    return wholeNumber<unsigned long long>(token, decimalUnsigned);
}

std::optional<std::int64_t> plainInteger(const std::string& token) {
    if (!hasOnly(token, std::string("+-") + kDigits)) return std::nullopt;
    return wholeNumber<long long>(token, decimal);
}

// strtod() also takes hexadecimal numbers and nan(...). It sets ERANGE for numbers that are too small, too: these are
// read as zero or as the nearest small number.
std::optional<double> plainDouble(const std::string& token) {
    if (!hasOnly(token, std::string("+-.eEinfatyINFATY") + kDigits)) return std::nullopt;
    char* end = nullptr;
    const double number = real(token.c_str(), &end);
    if (end == token.c_str() || end != token.c_str() + token.size()) return std::nullopt;
    const bool isTooLarge = std::isinf(number) && token.find_first_of("iI") == std::string::npos;
    return isTooLarge ? std::nullopt : std::optional<double>(number);
}

std::string upTo(const std::string& text, const char* delimiters) {
    return text.substr(0, text.find_first_of(delimiters));
}

// ---- The option class

std::optional<std::uint64_t> readByOption(const std::string& text) {
    const std::string option = "N=" + text;  // the tokens refer to it
    const MacroTokenizer tokens = MacroCommandAbstract::tokenize(option);
    MacroTokenIterator current = tokens.begin();
    try {
        return UInt64MacroOption(current, tokens.end(), nullptr).value();
    } catch (const MacroCommandError&) {
        return std::nullopt;
    }
}

void tryOption(const std::string& text) {
    constexpr const char* kDelimiters = " =\"'-,[]";
    const bool startsWithDelimiter = !text.empty() && std::strchr(kDelimiters, text.front()) != nullptr;
    const auto expected = startsWithDelimiter ? std::nullopt : plainUnsigned(upTo(text, kDelimiters));
    require(readByOption(text) == expected, "an option reads what strtoull() reads", text);
}

// ---- The processor

class Processor : public MacroCommandProcessorAbstract {
public:
    bool processCommand() override {
        std::string name;
        const bool isNamed = getCommand(name) && getNextName(name);
        switch (kind) {
            case 'D': return isNamed && getDoubleValue(number);
            case 'I': return isNamed && getInt32Value(small);
            default: return isNamed && getInt64Value(large);
        }
    }
    bool composeCommandString(std::string&) const override { return false; }

    // Returns an empty text if the command is read, and the host's message otherwise.
    std::string messageOf(char kindOfNumber, const std::string& command) {
        kind = kindOfNumber;
        char* message = nullptr;
        if (parseCommandString(command.c_str(), &message)) return "";
        std::string text = message;
        VexaUtilStringDealloc(&message);
        return text;
    }

    template <class Number>
    std::string assignmentOf(Number value) const {
        return toNameValueAssignment("N", value);
    }

    char kind = 'D';
    double number = 0;
    std::int32_t small = 0;
    std::int64_t large = 0;
};

void requireMessage(const std::string& message, bool isRead, const std::string& expected, const std::string& text) {
    if (isRead) return require(message.empty(), "the processor reads what the C library reads", text + ": " + message);
    require(message.find(expected) != std::string::npos, "the processor refuses what is no number", text + message);
}

bool isSame(double a, double b) { return std::isnan(a) ? std::isnan(b) : a == b && std::signbit(a) == std::signbit(b); }

std::string printed(double number) {
    char text[64];
    std::snprintf(text, sizeof text, "%g", number);
    return text;
}

void requireWritten(const std::string& written, const std::string& number) {
    require(written == "N = " + number + ' ', "a number is written as printf() does", written);
}

void tryProcessor(const std::string& text) {
    const std::string command = "C N = " + text;
    const std::string token = upTo(text, " \t\n\v\f\r");
    Processor processor;

    const auto number = plainDouble(token);
    requireMessage(processor.messageOf('D', command), number.has_value(), "Invalid Double value", text);
    if (number) {
        require(isSame(processor.number, *number), "a double is that of strtod()", text);
        requireWritten(processor.assignmentOf(*number), printed(*number));
    }

    const auto integer = plainInteger(token);
    requireMessage(processor.messageOf('L', command), integer.has_value(), "Invalid Int64 value", text);
    requireMessage(processor.messageOf('I', command), integer.has_value(), "Invalid Int32 value", text);
    if (!integer) return;
    require(processor.large == *integer, "an integer is that of strtoll()", text);
    require(static_cast<std::uint32_t>(processor.small) == static_cast<std::uint32_t>(*integer),
            "an Int32 has the low 32 bits", text);
    requireWritten(processor.assignmentOf(processor.large), std::to_string(*integer));
}

// Keeps the strings of the messages.
class QuietHost : public standin::Host {
public:
    QuietHost() { setKeepsCalls(false); }
};

}  // namespace
}  // namespace vexa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexa::fuzz;
    const std::string input = textOf(data, size);
    const std::string text = input.substr(0, input.find('\0'));  // commands are C strings, which end at a NUL
    static const QuietHost host;
    tryOption(text);
    const bool startsWithBlank = !text.empty() && std::strchr(" \t\n\v\f\r", text.front()) != nullptr;
    if (!startsWithBlank) tryProcessor(text);
    return 0;
}
