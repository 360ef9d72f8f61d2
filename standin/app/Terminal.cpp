#include "Terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace vexa::runner {
namespace {

constexpr std::size_t kUsualColumns = 80;

std::string_view environment(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

}  // namespace

bool isTerminal(int descriptor) {
    const std::string_view kind = environment("TERM");
    return !kind.empty() && kind != "dumb" && isatty(descriptor) == 1;
}

std::size_t columnsOf(int descriptor) {
    winsize window{};
    if (ioctl(descriptor, TIOCGWINSZ, &window) != 0 || window.ws_col == 0) return kUsualColumns;
    return window.ws_col;
}

bool wantsColour() { return environment("NO_COLOR").empty(); }

}  // namespace vexa::runner
