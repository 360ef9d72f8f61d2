#include "Console.h"

#include <cstdio>

#include "Printable.h"
#include "Screen.h"

namespace vexa::runner {
namespace {

constexpr std::string_view kBlanksAndLineEnds = " \t\r\n";
constexpr std::string_view kIndentation = "    ";

std::string withFollowingLinesIndented(std::string_view text) {
    std::string lines;
    for (const char c : text) {
        lines += c;
        if (c == '\n') lines += kIndentation;
    }
    return lines;
}

}  // namespace

void tell(const std::string& place, std::string_view text) { tell(place + ": " + std::string(text)); }

void tell(std::string_view message) { tellLines(withFollowingLinesIndented(withoutTrailingBlanks(message)) + '\n'); }

void tellLines(std::string_view lines) { passOn(printable(lines)); }

void passOn(const std::string& lines) {
    if (Screen* const screen = Screen::current()) return screen->tell(lines);
    // Add-ons print through the same buffer: a terminal, or a log of both outputs, shows things in their order.
    std::fflush(stdout);
    std::fputs(lines.c_str(), stderr);
}

void print(std::string_view text) { std::fputs(printable(text).c_str(), stdout); }

std::string_view withoutTrailingBlanks(std::string_view text) {
    // With no other character in the text, npos + 1 is 0.
    return text.substr(0, text.find_last_not_of(kBlanksAndLineEnds) + 1);
}

}  // namespace vexa::runner
