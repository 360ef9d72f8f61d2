#include "language/ValueText.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

#include "language/Diagnostic.h"
#include "text/NearNames.h"
#include "text/ShortText.h"
#include "vexa/InvalidArgumentException.h"
#include "vexa/Scanner.h"
#include "vexa/toolbox/Set.h"

namespace vexa::runner {
namespace {

using Refusal = std::optional<WrongValue>;

constexpr char kSingleQuote = '\'';
constexpr char kDoubleQuote = '"';
constexpr char kEscape = '\\';

std::string upperCase(std::string_view text) {
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    return upper;
}

Refusal unlike(const std::string& expected, std::string_view found, const char* rule = kWrongValue) {
    return WrongValue{rule, "expected " + expected + (found.empty() ? "" : ", but found " + shortText(found))};
}

Refusal whyNoBoolean(std::string_view written, CommandKind_e kind) {
    const std::string word = upperCase(written);
    const bool isProcessor = kind == CommandKind_e::Processor;
    if (word == "TRUE" || word == "FALSE") return std::nullopt;
    if (!isProcessor) return unlike("TRUE or FALSE", written);
    for (const char* const other : {"T", "F", "YES", "NO"}) {
        if (word == other) return std::nullopt;
    }
    return unlike("a Boolean: T, TRUE, YES, F, FALSE or NO", written);
}

// ---- Numbers

// As boost::lexical_cast reads an unsigned number, without a minus sign: option classes never get one.
std::optional<long double> unsignedNumberIn(std::string_view written) {
    if (written.size() > 1 && written.front() == '+') written.remove_prefix(1);
    std::uint64_t value = 0;
    const char* const end = written.data() + written.size();
    const auto [last, error] = std::from_chars(written.data(), end, value);
    if (last != end || error != std::errc()) return std::nullopt;
    return static_cast<long double>(value);
}

std::optional<long double> numberIn(std::string_view written, OptionType_e type) {
    if (written.empty()) return std::nullopt;
    if (type == OptionType_e::UInt64) return unsignedNumberIn(written);
    Scanner scanner;
    scanner.reset(std::string(written));
    if (type == OptionType_e::Double) {
        if (!scanner.hasNextDoubleToken()) return std::nullopt;
        return scanner.nextDoubleToken();
    }
    if (!scanner.hasNextInt64Token()) return std::nullopt;
    return static_cast<long double>(scanner.nextInt64Token());
}

Refusal whyOutside(long double value, const std::string& text, const OptionDescription& option) {
    if (option.min && !(value >= option.min->value)) {
        return WrongValue{kOutOfRange, text + " is less than " + option.min->text};
    }
    if (option.max && !(value <= option.max->value)) {
        return WrongValue{kOutOfRange, text + " is greater than " + option.max->text};
    }
    return std::nullopt;
}

const char* expectedNumber(OptionType_e type) {
    switch (type) {
        case OptionType_e::UInt64: return "an integer from 0 to 18446744073709551615";
        case OptionType_e::Int32: return "an Int32, such as -12";
        case OptionType_e::Int64: return "an Int64, such as -12";
        default: return "a number, such as 0.5 or 2e3";
    }
}

Refusal whyNoNumber(std::string_view written, const OptionDescription& option) {
    const std::optional<long double> value = numberIn(written, option.type);
    if (!value) return unlike(expectedNumber(option.type), written);
    const bool isTooLarge = option.type == OptionType_e::Int32 && (*value < leastOf(OptionType_e::Int32).value ||
                                                                   *value > greatestOf(OptionType_e::Int32).value);
    if (isTooLarge) {
        return WrongValue{kOutOfRange, shortText(written) + " is no Int32: the add-on uses only its low 32 bits"};
    }
    return whyOutside(*value, shortText(written), option);
}

// ---- Texts

bool isOpen(std::string_view written, bool hasEscapes) {
    for (std::size_t at = 1; at < written.size(); ++at) {
        if (written[at] == written.front()) return false;
        if (hasEscapes && written[at] == kEscape) ++at;
    }
    return true;
}

std::string unquoted(std::string_view written, bool hasEscapes) {
    std::string value;
    for (std::size_t at = 1; at + 1 < written.size(); ++at) {
        if (hasEscapes && written[at] == kEscape) ++at;
        value += written[at];
    }
    return value;
}

Refusal whyNoText(std::string_view written, const OptionDescription& option) {
    const bool isQuoted = !written.empty() && (written.front() == kSingleQuote || written.front() == kDoubleQuote);
    if (!isQuoted) return unlike("a text in quotes", written, kWrongQuote);
    if (isOpen(written, option.hasEscapes)) {
        return WrongValue{kWrongQuote, std::string("the closing ") + written.front() + " is missing"};
    }
    const std::string value = unquoted(written, option.hasEscapes);
    if (option.type == OptionType_e::String) {
        if (value.empty() && !option.mayBeEmpty) return WrongValue{kWrongValue, "the text must not be empty"};
        return std::nullopt;
    }
    const auto& values = option.values;
    if (std::find(values.begin(), values.end(), value) != values.end()) return std::nullopt;
    const std::vector<std::string> near = nearNames(value, values);
    Refusal refusal = unlike(alternatives(values), '\'' + shortText(value) + '\'');
    if (!near.empty()) refusal->reason += "; did you mean " + alternatives(near) + '?';
    return refusal;
}

// ---- Sets

Refusal whyNoSet(std::string_view written, const OptionDescription& option) {
    if (written.empty() || written.front() != '[') return unlike("a set, such as [1-3,5]", written, kWrongBracket);
    if (written.back() != ']') return WrongValue{kWrongBracket, "the closing ] is missing"};
    toolbox::Set set;
    try {
        set.assign(std::string(written));
    } catch (const InvalidArgumentException& refusal) {
        return WrongValue{kWrongValue, refusal.what()};
    }
    if (set.isEmpty() && !option.mayBeEmpty) return WrongValue{kWrongValue, "the set must not be empty"};
    for (const auto& range : set.ranges()) {
        for (const std::int64_t member : {range.first, range.last}) {
            Refusal refusal = whyOutside(static_cast<long double>(member), std::to_string(member), option);
            if (refusal) return refusal;
        }
    }
    return std::nullopt;
}

bool isSetOfProcessor(const OptionDescription& option, CommandKind_e kind) {
    return option.type == OptionType_e::Set && kind == CommandKind_e::Processor;
}

std::string escaped(const std::string& value) {
    std::string text;
    for (const char c : value) {
        if (c == kSingleQuote || c == kEscape) text += kEscape;
        text += c;
    }
    return text;
}

}  // namespace

std::optional<WrongValue> whyWrong(std::string_view written, const OptionDescription& option, CommandKind_e kind) {
    if (option.type == OptionType_e::Boolean) return whyNoBoolean(written, kind);
    if (isNumber(option.type)) return whyNoNumber(written, option);
    if (isQuoted(option.type)) return whyNoText(written, option);
    return whyNoSet(written, option);
}

std::string writtenValue(const std::string& value, const OptionDescription& option, CommandKind_e kind) {
    if (value == "[]" && isSetOfProcessor(option, kind)) return "[ ]";  // the processor leaves the ] of [] unread
    if (!isQuoted(option.type)) return value;
    if (option.hasEscapes) return kSingleQuote + escaped(value) + kSingleQuote;
    const bool isCommand = kind == CommandKind_e::Command;
    const char usual = isCommand ? kDoubleQuote : kSingleQuote;
    const char other = isCommand ? kSingleQuote : kDoubleQuote;
    const char quote = value.find(usual) == std::string::npos ? usual : other;
    return quote + value + quote;
}

std::string assignment(const std::string& name, const std::string& written, CommandKind_e kind) {
    return name + (kind == CommandKind_e::Command ? "=" : " = ") + written;
}

}  // namespace vexa::runner
