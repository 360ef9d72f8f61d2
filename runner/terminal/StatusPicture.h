#pragma once

#include <chrono>
#include <cstddef>
#include <string>

#include "vexastandin/Host.h"

namespace vexa::runner {

/// What a picture of the status line shows beside the line itself.
struct StatusFrame {
    std::chrono::seconds elapsed{0};  ///< since the task began
    bool isStopping = false;          ///< the user has asked to stop it
    bool inColour = false;
    std::size_t columns = 80;  ///< how many the picture may take
};

/// The status line as one line of a terminal.
///
///     Reading rows  [########            ]  42 %  0:05, 0:07 left  Ctrl-C stops
///
/// What does not fit a narrow window is left out, the least important part first; then the text is cut.
std::string pictureOf(const standin::StatusLine& line, const StatusFrame& frame);

}  // namespace vexa::runner
