#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

#include "vexa/VexaUtil.h"
#include "vexautilutil/AsciiFile.h"

namespace vexa::vexautilutil {
namespace {

constexpr std::size_t kFormattedSize = 4096;
constexpr std::string_view kFirstValue = "1$";
constexpr std::string_view kFlagsAndSizes = "-+ #'0123456789.";

bool startsWith(std::string_view text, std::string_view start) { return text.substr(0, start.size()) == start; }

// Returns true if `printf` can take `format` and one value: the format must have exactly one conversion, it must be one
// of `conversions`, and `modifier` must be before it. With any other format `printf` would read arguments that it was
// not given.
bool fitsOneValue(std::string_view format, std::string_view modifier, std::string_view conversions) {
    int found = 0;
    for (std::size_t at = format.find('%'); at != std::string_view::npos; at = format.find('%', at)) {
        format.remove_prefix(at + 1);
        at = 0;
        if (startsWith(format, "%")) {
            at = 1;
            continue;
        }
        if (startsWith(format, kFirstValue)) format.remove_prefix(kFirstValue.size());
        format.remove_prefix(std::min(format.find_first_not_of(kFlagsAndSizes), format.size()));
        if (!startsWith(format, modifier)) return false;
        format.remove_prefix(modifier.size());
        if (format.empty() || conversions.find(format.front()) == std::string_view::npos) return false;
        ++found;
    }
    return found == 1;
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"  // fitsOneValue() checks the format

// Returns the result of `printf`, cut at the end of the buffer, if the format fits one value. Returns any other format
// unchanged. Both end at their first NUL.
template <class Value>
std::string formatted(const char* format, std::string_view modifier, std::string_view conversions, Value value) {
    if (!fitsOneValue(format, modifier, conversions)) return format;
    std::array<char, kFormattedSize> text{};
    std::snprintf(text.data(), text.size(), format, value);
    return text.data();
}

#pragma GCC diagnostic pop

}  // namespace

void AsciiFile::error(const std::string& message, std::size_t lineNumber) const {
    const std::string text = message + " on line " + std::to_string(lineNumber) + " in file: " + fileName();
    VexaUtilDialogErrMsg(text.c_str());
}

void AsciiFile::error(const std::string& message) const { error(message, currentLineNumber()); }

void AsciiFile::errorWithFormattedString(const std::string& format, const std::string& value) const {
    error(formatted(format.c_str(), "", "s", value.c_str()));
}

void AsciiFile::errorWithFormattedInteger(const std::string& format, long value) const {
    error(formatted(format.c_str(), "l", "dioxXu", value));
}

}  // namespace vexa::vexautilutil
