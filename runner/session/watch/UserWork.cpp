#include "session/watch/UserWork.h"

#include <sys/wait.h>

#include <csignal>
#include <cstring>

#include "options/ExitStatus.h"
#include "session/watch/Death.h"
#include "terminal/Console.h"

namespace vexa::runner {

// The status line shows by itself that a task is to stop.
void UserWork::stopAsked(std::size_t, const ProcessBox& box) {
    m_isStopAsked = true;
    if (!box.isStatusDrawn) tell(placeOf(box), "stop was asked for; a second Ctrl-C ends the program");
}

void UserWork::killed(std::size_t, const ProcessBox& box, int signal) {
    const LastWords lastWords(kKilledBySignal + signal);
    clearStatusOf(box);
    const std::string work = box.isInAddOn ? workOf(box) : "";
    tell(placeOf(box), (work.empty() ? "ended" : "ended \"" + work + '"') + " by SIG" + sigabbrev_np(signal));
}

bool UserWork::wasInterrupted(const ProcessOutcome& outcome) const {
    return m_isStopAsked && WIFSIGNALED(outcome.waitStatus) && WTERMSIG(outcome.waitStatus) == SIGINT;
}

}  // namespace vexa::runner
