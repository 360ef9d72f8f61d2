#include "commands/attach/StatusCalls.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace vexa::runner {
namespace {

constexpr long kAllDone = 100;

}  // namespace

std::optional<standin::StatusLine> StatusCalls::changeBy(const standin::CallEvent& call) {
    const std::string_view function = call.function;
    standin::StatusLine line = m_line;
    if (function == "VexaUtilStatusStartPercentDone") {
        return m_line = {call.arguments, 0, true, true, true};
    }
    if (function == "VexaUtilStatusCheckPercentDone" && line.active) {
        line.percent = static_cast<int>(std::clamp(std::strtol(call.arguments.c_str(), nullptr, 10), 0L, kAllDone));
    } else if (function == "VexaUtilStatusSetPercentDoneText" && line.active) {
        line.text = call.arguments;
    } else if (function == "VexaUtilStatusFinishPercentDone") {
        line.active = false;
    }
    if (line == m_line) return std::nullopt;
    m_line = line;
    return line;
}

}  // namespace vexa::runner
