#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace vexa::runner {

/// The message for a text or number that secondsOf() refuses.
inline constexpr char kExpectedSeconds[] = "expected seconds, more than 0 and at most 1000000";

/// Reads a time limit as users write it, in seconds: `2`, `0.5`.
/// \return nothing if \p text is not a number, or if the number is out of bounds.
std::optional<std::chrono::duration<double>> secondsOf(const std::string& text);
std::optional<std::chrono::duration<double>> secondsOf(double seconds);

/// Returns a time for users: `2 seconds`, `0.5 seconds`, `1 second`.
std::string secondsText(std::chrono::duration<double> time);

/// Returns the number of seconds with \p digits digits after the point: `0.50`.
std::string decimalSeconds(std::chrono::duration<double> time, int digits);

}  // namespace vexa::runner
