#pragma once

#include <string>

#include "vexastandin/Export.h"

namespace vexa::standin {

/// The percentage of a task that is done.
inline constexpr int kAllDone = 100;

/// The host's status line, which shows the progress of a task.
struct StatusLine {
    std::string text;             ///< the add-on's text; empty if it gave none
    int percent = 0;              ///< how much of the task is done, 0 to 100; a value outside becomes 0 or 100
    bool showStopButton = false;  ///< true if the add-on asked for a stop button
    bool showBar = false;         ///< true if the add-on asked for a progress bar
    bool active = false;          ///< true while the line is shown; the other fields keep their values afterwards
};

/// Returns true if all fields are equal.
VEXASTANDIN_API bool operator==(const StatusLine& left, const StatusLine& right);
/// Returns true if a field differs.
VEXASTANDIN_API bool operator!=(const StatusLine& left, const StatusLine& right);

}  // namespace vexa::standin
