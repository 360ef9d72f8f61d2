#include "terminal/Console.h"

#include <atomic>
#include <cstdio>
#include <utility>

#include "terminal/Terminal.h"
#include "text/Printable.h"
#include "text/StartsWith.h"

namespace vexa::runner {
namespace {

constexpr std::string_view kBlanksAndLineEnds = " \t\r\n";
constexpr std::string_view kIndentation = "    ";
constexpr std::string_view kError = "error";
constexpr std::string_view kWarning = "warning";
constexpr const char* kPlaceColour = "\033[1m";
constexpr const char* kErrorColour = "\033[1;31m";
constexpr const char* kWarningColour = "\033[1;33m";
constexpr const char* kUsualColour = "\033[0m";

// Global, because the process has only one standard error output.
std::atomic<MessageSinkInterface*> theSink{nullptr};

std::string withFollowingLinesIndented(std::string_view text) {
    std::string lines;
    for (const char c : text) {
        lines += c;
        if (c == '\n') lines += kIndentation;
    }
    return lines;
}

std::string coloured(std::string_view text, const char* colour) {
    return wantsColour() && !text.empty() ? colour + printable(text) + kUsualColour : printable(text);
}

}  // namespace

void tell(const std::string& place, std::string_view text) {
    const std::string_view shown = withoutTrailingBlanks(text);
    if (shown.empty()) return tell(place + ':');
    tellLines(withFollowingLinesIndented(place), withFollowingLinesIndented(shown) + '\n');
}

void tell(std::string_view message) {
    tellLines("", withFollowingLinesIndented(withoutTrailingBlanks(message)) + '\n');
}

void tellLines(std::string_view place, std::string_view lines) {
    std::string text = coloured(place, kPlaceColour);
    if (!place.empty()) text += ": ";
    for (const auto& [word, colour] : {std::pair{kError, kErrorColour}, std::pair{kWarning, kWarningColour}}) {
        if (!startsWith(lines, std::string(word) + ": ")) continue;
        text += coloured(word, colour);
        lines.remove_prefix(word.size());
    }
    passOn(text + printable(lines));
}

void passOn(const std::string& lines) {
    if (MessageSinkInterface* const sink = theSink) return sink->tell(lines);
    // Keeps the order of output and messages in a terminal or in a log of both outputs.
    std::fflush(stdout);
    std::fputs(lines.c_str(), stderr);
}

void setMessageSink(MessageSinkInterface* sink) { theSink = sink; }

void print(std::string_view text) { std::fputs(printable(text).c_str(), stdout); }

std::string_view withoutTrailingBlanks(std::string_view text) {
    // If the text has only such characters, npos + 1 is 0.
    return text.substr(0, text.find_last_not_of(kBlanksAndLineEnds) + 1);
}

}  // namespace vexa::runner
