#include <string_view>

#include "text/NumberText.h"
#include "vexautilutil/MacroCommandProcessorAbstract.h"

namespace vexa::vexautilutil {
namespace {

constexpr std::string_view kEquals = " = ";
constexpr char kQuote = '\'';
constexpr char kBlank = ' ';

// Begins an assignment whose value and what follows it take at most `room` characters.
std::string beginAssignment(const std::string& name, std::size_t room) {
    std::string text;
    text.reserve(name.size() + kEquals.size() + room);
    text += name;
    text += kEquals;
    return text;
}

template <class Number>
std::string assignNumber(const std::string& name, Number value) {
    std::string text = beginAssignment(name, kLongestNumber + 1);
    appendNumber(text, value);
    text += kBlank;
    return text;
}

}  // namespace

std::string MacroCommandProcessorAbstract::toNameValueAssignment(const std::string& name, char value) {
    std::string text = beginAssignment(name, 2);
    text += value != 0 ? 'T' : 'F';
    text += kBlank;
    return text;
}

std::string MacroCommandProcessorAbstract::toNameValueAssignment(const std::string& name, std::string value) {
    std::string text = beginAssignment(name, value.size() + 3);
    text += kQuote;
    text += value;
    text += kQuote;
    text += kBlank;
    return text;
}

std::string MacroCommandProcessorAbstract::toNameValueAssignment(const std::string& name, double value) {
    return assignNumber(name, value);
}

std::string MacroCommandProcessorAbstract::toNameValueAssignment(const std::string& name, int32_t value) {
    return assignNumber(name, int64_t{value});
}

std::string MacroCommandProcessorAbstract::toNameValueAssignment(const std::string& name, int64_t value) {
    return assignNumber(name, value);
}

std::string MacroCommandProcessorAbstract::toNameValueAssignment(const std::string& name, toolbox::Set value) {
    const std::string members = value.toString();
    std::string text = beginAssignment(name, members.size());
    text += members;
    return text;
}

}  // namespace vexa::vexautilutil
