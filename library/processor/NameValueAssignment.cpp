#include <string_view>

#include "text/Assignment.h"
#include "text/Joined.h"
#include "text/NumberText.h"
#include "vexautilutil/MacroCommandProcessorAbstract.h"

namespace vexa::vexautilutil {
namespace {

constexpr std::string_view kEquals = " = ";
constexpr char kBlank = ' ';

template <class Number>
std::string assignNumber(const std::string& name, Number value) {
    std::string text = beginAssignment(name, kEquals, kLongestNumber + 1);
    appendNumber(text, value);
    text += kBlank;
    return text;
}

}  // namespace

std::string MacroCommandProcessorAbstract::toNameValueAssignment(const std::string& name, char value) {
    return joined(name, kEquals, value != 0 ? "T " : "F ");
}

std::string MacroCommandProcessorAbstract::toNameValueAssignment(const std::string& name, std::string value) {
    return joined(name, kEquals, "'", value, "' ");
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
    return joined(name, kEquals, value.toString());
}

}  // namespace vexa::vexautilutil
