#include "text/Seconds.h"

#include <array>
#include <cstdio>
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
    return isNumber ? secondsOf(seconds) : std::nullopt;
}

std::optional<std::chrono::duration<double>> secondsOf(double seconds) {
    if (!(seconds > 0 && seconds <= kMost)) return std::nullopt;  // also for NaN
    return std::chrono::duration<double>(seconds);
}

std::string secondsText(std::chrono::duration<double> time) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%g", time.count());
    return std::string(text.data()) + (time.count() == 1 ? " second" : " seconds");
}

std::string decimalSeconds(std::chrono::duration<double> time, int digits) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.*f", digits, time.count());
    return text.data();
}

}  // namespace vexa::runner
