#include "session/watch/Death.h"

#include <sys/wait.h>

#include <chrono>
#include <cstdio>
#include <cstring>

#include "session/Hang.h"
#include "terminal/Console.h"
#include "terminal/Terminal.h"
#include "vexastandin/HostFunctions.h"

namespace vexa::runner {
namespace {

std::string lastFunctionOf(const ProcessBox& box) {
    const std::size_t function = box.calls.lastFunction;
    const bool isThere = box.calls.calls != 0 && function < standin::hostFunctions().size();
    return isThere ? standin::hostFunctions()[function].name : "";
}

std::string whatItCalled(const ProcessBox& box) {
    const bool hasCalled = box.calls.calls > box.callsBefore;
    return hasCalled ? "; its last host call was " + lastFunctionOf(box) : "; it made no host call";
}

}  // namespace

std::string howItEnded(int waitStatus) {
    if (WIFEXITED(waitStatus)) return "exit status " + std::to_string(WEXITSTATUS(waitStatus));
    const int number = WTERMSIG(waitStatus);
    const char* const name = sigabbrev_np(number);
    return "SIG" + (name == nullptr ? std::to_string(number) : std::string(name)) + " (" + strsignal(number) + ')';
}

std::string workOf(const ProcessBox& box) {
    const std::string id = box.addOnId.text();
    return id.empty() ? box.work.text() : id + ' ' + box.work.text();
}

std::string placeOf(const ProcessBox& box) {
    const std::string id = box.addOnId.text();
    if (id.empty()) return kProgramName;
    const std::string place = box.place.text();
    return place.empty() ? id : place + ": " + id;
}

standin::Place lastPlaceOf(const ProcessBox& box) {
    return {box.calls.calls, lastFunctionOf(box), workOf(box), box.place.text(), 1};
}

std::string deathText(const ProcessBox& box, const ProcessOutcome& outcome) {
    const std::string how = howItEnded(outcome.waitStatus);
    const std::string work = workOf(box);
    if (work.empty()) return std::string(kProgramName) + ": error: the process for the add-ons ended: " + how;
    if (box.isInAddOn) {
        return placeOf(box) + ": error: \"" + work + "\" ended the process: " + how + whatItCalled(box);
    }
    return placeOf(box) + ": error: an add-on ended the process after \"" + work + "\": " + how;
}

standin::Finding lateFinding(const ProcessBox& box) {
    const std::chrono::duration<double> waited = box.limit();
    standin::Finding finding = hangFinding(lastPlaceOf(box), box.callsBefore, waited);
    if (!box.isInAddOn) finding.message = "the process for the add-ons did not end after \"" + workOf(box) + '"';
    return finding;
}

void tellStopAsked(const ProcessBox& box) {
    tell(placeOf(box), "stop was asked for; a second Ctrl-C ends the program");
}

void tellKilled(const ProcessBox& box, int signal) {
    const std::string work = box.isInAddOn ? workOf(box) : "";
    const std::string what = work.empty() ? "ended" : "ended \"" + work + '"';
    tell(placeOf(box), what + " by SIG" + sigabbrev_np(signal));
}

void clearStatusOf(const ProcessBox& box) {
    if (box.isStatusDrawn) std::fputs(kClearLine, stderr);
}

}  // namespace vexa::runner
