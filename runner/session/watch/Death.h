#pragma once

#include <string>

#include "session/watch/ProcessBox.h"
#include "session/watch/Processes.h"
#include "vexastandin/Finding.h"

namespace vexa::runner {

/// How a process ended that did not end as it reported: `exit status 0`, `SIGSEGV (Segmentation fault)`.
std::string howItEnded(int waitStatus);

/// What the add-ons of a process did last, and the last host call.
standin::Place lastPlaceOf(const ProcessBox& box);

/// What to tell of a process that an add-on ended: a line that names the place, the command and the last host call.
std::string deathText(const ProcessBox& box, const ProcessOutcome& outcome);

/// The finding about a process that was killed because it took longer than it may.
standin::Finding lateFinding(const ProcessBox& box);

/// Tells the user that he asked to stop, and how to end the program at once.
void tellStopAsked(const ProcessBox& box);

/// Tells the user what \p signal ended.
void tellKilled(const ProcessBox& box, int signal);

/// Clears the status line that a process which has ended left drawn.
void clearStatusOf(const ProcessBox& box);

/// `STATS MEAN ZONES = '1-3'`, `loading of ./stats.so`; empty before any add-on was entered.
std::string workOf(const ProcessBox& box);

/// `FILE:LINE: ID` for a command, and the program's name for all else: what a message begins with.
std::string placeOf(const ProcessBox& box);

}  // namespace vexa::runner
