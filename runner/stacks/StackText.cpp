#include "stacks/StackText.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <string_view>

#include "system/files/PathFromHere.h"

namespace vexa::runner {
namespace {

constexpr std::string_view kAnonymous = "(anonymous namespace)";
constexpr std::string_view kOperator = "operator";
constexpr std::string_view kConst = " const";

std::string hex(std::uintptr_t number) {
    std::array<char, 24> text{};
    std::snprintf(text.data(), text.size(), "0x%zx", static_cast<std::size_t>(number));
    return text.data();
}

std::string fileName(const std::string& path) { return std::filesystem::path(path).filename().string(); }

bool endsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

// Returns the index after the parenthesis that closes the one at `begin`.
std::size_t closingEnd(std::string_view text, std::size_t begin) {
    std::size_t depth = 0;
    for (std::size_t i = begin; i != text.size(); ++i) {
        if (text[i] == '(') ++depth;
        if (text[i] == ')' && --depth == 0) return i + 1;
    }
    return text.size();
}

// Returns where the name goes on after the parameters at `begin`: at the name of something within the function, or
// nowhere.
std::size_t parametersEnd(std::string_view text, std::size_t begin) {
    std::size_t end = closingEnd(text, begin);
    if (text.substr(end, kConst.size()) == kConst) end += kConst.size();
    return text.substr(end, 2) == "::" ? end : text.size();
}

// Returns how many characters belong together at the start of `text`.
std::size_t keptSize(std::string_view text, bool isOperator) {
    if (text.substr(0, kAnonymous.size()) == kAnonymous) return kAnonymous.size();
    return isOperator && text.substr(0, 2) == "()" ? 2 : 1;
}

}  // namespace

std::string withoutParameters(const std::string& function) {
    const std::string_view text = function;
    std::string name;
    std::size_t depth = 0;  // of template arguments and names of lambdas, which may contain parentheses
    for (std::size_t i = 0; i < text.size();) {
        const bool isOperator = endsWith(name, kOperator);
        const std::size_t kept = keptSize(text.substr(i), isOperator);
        if (depth == 0 && text[i] == '(' && kept == 1) {
            i = parametersEnd(text, i);
            continue;
        }
        if (!isOperator && (text[i] == '<' || text[i] == '{')) ++depth;
        if (!isOperator && (text[i] == '>' || text[i] == '}') && depth != 0) --depth;
        name += text.substr(i, kept);
        i += kept;
    }
    return name;
}

std::string textOf(const Frame& frame) {
    if (frame.line != 0) {
        const std::string place = pathFromHere(frame.file) + ':' + std::to_string(frame.line);
        return frame.function.empty() ? place : place + ", in " + withoutParameters(frame.function);
    }
    const std::string offset = hex(frame.offset);
    const std::string place = frame.function.empty() ? offset : withoutParameters(frame.function) + '+' + offset;
    return frame.object.empty() ? place : place + " in " + fileName(frame.object);
}

std::string textOf(const Stack& stack) {
    std::string text;
    for (std::size_t i = 0; i != stack.size(); ++i) {
        text += '#' + std::to_string(i) + (i < 10 ? "  " : " ") + textOf(stack[i]) + '\n';
    }
    return text;
}

}  // namespace vexa::runner
