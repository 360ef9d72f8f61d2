// Compares toNameValueAssignment() with to_chars() and append, for each type.
#include <charconv>
#include <cstdlib>
#include <string>
#include <type_traits>

#include "support/Rows.h"
#include "vexautilutil/MacroCommandProcessorAbstract.h"

namespace vexa::vexautilutil {
namespace {

template <class Number>
void appendNumber(std::string& text, Number number) {
    char digits[32];
    char* const end = digits + sizeof digits;
    if constexpr (std::is_floating_point_v<Number>) {
        text.append(digits, std::to_chars(digits, end, number, std::chars_format::general, 6).ptr);
    } else {
        text.append(digits, std::to_chars(digits, end, number).ptr);
    }
}

std::string begin(const std::string& name, std::size_t room) {
    std::string text;
    text.reserve(name.size() + 3 + room);
    text += name;
    text += " = ";
    return text;
}

std::string append(const std::string& name, char value) {
    std::string text = begin(name, 2);
    text += value != 0 ? "T " : "F ";
    return text;
}

std::string append(const std::string& name, const std::string& value) {
    std::string text = begin(name, value.size() + 3);
    text += '\'';
    text += value;
    text += "' ";
    return text;
}

template <class Number>
std::string append(const std::string& name, Number number) {
    std::string text = begin(name, 25);
    appendNumber(text, number);
    text += ' ';
    return text;
}

std::string append(const std::string& name, const toolbox::Set& set) {
    std::string text = begin(name, 64);
    char separator = '[';
    for (const toolbox::Set::Range& range : set.ranges()) {
        text += separator;
        appendNumber(text, range.first);
        if (range.last != range.first) {
            text += '-';
            appendNumber(text, range.last);
        }
        separator = ',';
    }
    text += ']';
    return text;
}

template <class Value>
void add(const std::string& row, Value value) {
    static const std::string name = "VELOCITY";
    if (append(name, value) != MacroCommandProcessorAbstract::toNameValueAssignment(name, value)) std::abort();
    bench::addCall(row + "/append", [value] { benchmark::DoNotOptimize(append(name, value).data()); });
    bench::addCall(row + "/ours", [value] {
        benchmark::DoNotOptimize(MacroCommandProcessorAbstract::toNameValueAssignment(name, value).data());
    });
}

const bool isAdded = [] {
    toolbox::Set zones;
    zones.assign("[1-3,5,100-200]");
    add("assign-boolean", char{1});
    add("assign-string", std::string("Pressure at inlet"));
    add("assign-double", 123.456);
    add("assign-int32", int32_t{-123456789});
    add("assign-int64", int64_t{-1234567890123});
    add("assign-set", zones);
    return true;
}();

}  // namespace
}  // namespace vexa::vexautilutil
