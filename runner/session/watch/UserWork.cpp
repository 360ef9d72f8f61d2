#include "session/watch/UserWork.h"

#include <sys/wait.h>

#include <csignal>

#include "options/ExitStatus.h"
#include "session/watch/Death.h"
#include "session/watch/LastWords.h"

namespace vexa::runner {

// The status line says by itself that a task is to stop.
void UserWork::stopAsked(std::size_t, const ProcessBox& box) {
    m_isStopAsked = true;
    if (!box.isStatusDrawn) tellStopAsked(box);
}

void UserWork::killed(std::size_t, const ProcessBox& box, int signal) {
    const LastWords lastWords(kKilledBySignal + signal);
    clearStatusOf(box);
    tellKilled(box, signal);
}

bool UserWork::wasInterrupted(const ProcessOutcome& outcome) const {
    return m_isStopAsked && WIFSIGNALED(outcome.waitStatus) && WTERMSIG(outcome.waitStatus) == SIGINT;
}

}  // namespace vexa::runner
