#include "terminal/Terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <optional>
#include <string_view>

#include "text/WholeNumber.h"

namespace vexa::runner {
namespace {

constexpr std::size_t kUsualColumns = 80;

std::optional<bool> theColour;

}  // namespace

std::string_view environment(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

bool isTerminal(int descriptor) {
    const std::string_view kind = environment("TERM");
    return !kind.empty() && kind != "dumb" && isatty(descriptor) == 1;
}

std::size_t columnsOf(int descriptor) {
    winsize window{};
    if (ioctl(descriptor, TIOCGWINSZ, &window) != 0 || window.ws_col == 0) return kUsualColumns;
    return window.ws_col;
}

std::size_t textColumnsOf(int descriptor) {
    if (!isTerminal(descriptor)) return kUsualColumns;
    const std::size_t told = wholeNumberIn(environment("COLUMNS")).value_or(0);
    return told != 0 ? told : columnsOf(descriptor);
}

bool wantsColour() { return theColour.value_or(environment("NO_COLOR").empty() && isTerminal(STDERR_FILENO)); }

void chooseColour(bool wanted) { theColour = wanted; }

}  // namespace vexa::runner
