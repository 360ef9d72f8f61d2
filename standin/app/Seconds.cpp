#include "Seconds.h"

#include <locale>
#include <sstream>

namespace vexa::runner {
namespace {

constexpr double kMost = 1e6;

}  // namespace

std::optional<std::chrono::duration<double>> secondsOf(const std::string& text) {
    std::istringstream in(text);
    in.imbue(std::locale::classic());
    double seconds = 0;
    const bool isNumber = in >> std::noskipws >> seconds && in.peek() == std::istringstream::traits_type::eof();
    if (!isNumber || seconds <= 0 || seconds > kMost) return std::nullopt;
    return std::chrono::duration<double>(seconds);
}

}  // namespace vexa::runner
