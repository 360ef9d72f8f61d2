#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace vexa::runner {

/// The rule about work that exceeds the time limit.
inline constexpr const char* kHangRule = "command-timeout";

/// The event at which `debug` stops a run.
enum class StopEvent_e {
    Problem,  ///< the first finding, failed command, hang or crash
    Rule,     ///< the first finding about a rule
    Call,     ///< a host call
    Command,  ///< the start of a command
    Failure,  ///< the first command that fails
    Hang,     ///< the first work that exceeds the time limit
    Crash     ///< a signal; the debugger itself notices it
};

/// The place at which `debug` stops a run.
struct StopPlace {
    StopEvent_e event = StopEvent_e::Problem;
    std::string rule = {};   ///< for StopEvent_e::Rule
    std::size_t number = 0;  ///< for StopEvent_e::Call and StopEvent_e::Command, counted from 1
};

/// Returns the place as one line, for another process: `rule unbalanced-lock`, `call 7`, `failure`.
std::string textOf(const StopPlace& place);

/// Reads the text of textOf().
/// \return nothing if \p text is another text.
std::optional<StopPlace> stopPlaceOf(const std::string& text);

}  // namespace vexa::runner
