// Tests the error reports with a format: the first line of the input is the format, the rest the value. For any format,
// the host must show one dialog, and its text must be cut at the limit.

#include <algorithm>
#include <cstring>

#include "Fuzz.h"
#include "vexastandin/Host.h"
#include "vexautilutil/AsciiFile.h"

namespace vexa::fuzz {
namespace {

constexpr std::size_t kMostShown = 4095;

void requireOneDialog(const standin::Host& host, std::size_t before, const std::string& format) {
    const std::string suffix = " on line 0 in file: ";
    const auto dialogs = host.dialogs();
    require(dialogs.size() == before + 1, "there is one dialog", format);
    const std::string& shown = dialogs.back();
    const bool endsSo =
        shown.size() >= suffix.size() && shown.compare(shown.size() - suffix.size(), suffix.size(), suffix) == 0;
    require(endsSo, "the dialog ends with line and file", shown);
    const std::size_t limit = std::max(kMostShown, format.size());  // a format that is not used is shown uncut
    require(shown.size() - suffix.size() <= limit, "the text is cut", shown);
}

}  // namespace
}  // namespace vexa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexa::fuzz;
    const std::string input = textOf(data, size);
    const std::size_t formatEnd = std::min(input.find('\n'), input.size());
    const std::string format = input.substr(0, std::min(formatEnd, std::strlen(input.c_str())));  // up to a NUL
    const std::string value = input.substr(std::min(formatEnd + 1, input.size()));
    const vexa::standin::Host host;
    const vexa::vexautilutil::AsciiFile file;
    file.errorWithFormattedString(format, value);
    requireOneDialog(host, 0, format);
    file.errorWithFormattedInteger(format, static_cast<long>(value.size()) - 8);
    requireOneDialog(host, 1, format);
    return 0;
}
