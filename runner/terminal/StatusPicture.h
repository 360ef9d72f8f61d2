#pragma once

#include <chrono>
#include <cstddef>
#include <string>

#include "vexastandin/Host.h"

namespace vexa::runner {

/// What the picture shows in addition to the status line.
struct StatusFrame {
    std::chrono::seconds elapsed{0};  ///< since the task started
    bool isStopping = false;          ///< the user has asked to stop it
    bool inColour = false;
    std::size_t columns = 80;  ///< the width of the picture, at most
};

/// The status line as one line of a terminal.
///
///     Reading rows  [########            ]  42 %  0:05, 0:07 left  Ctrl-C stops
///
/// In a narrow window the least important parts are left out first; then the text is cut.
std::string pictureOf(const standin::StatusLine& line, const StatusFrame& frame);

}  // namespace vexa::runner
