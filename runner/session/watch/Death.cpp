#include "session/watch/Death.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "options/ExitStatus.h"
#include "terminal/Console.h"
#include "terminal/Terminal.h"
#include "text/Seconds.h"
#include "vexastandin/HostFunctions.h"

namespace vexa::runner {
namespace {

constexpr unsigned kSecondsForLastWords = 5;

volatile std::sig_atomic_t statusOfProgram = 0;  // a signal handler gets only the number of the signal

std::string lastFunctionOf(const ProcessBox& box) {
    const std::size_t function = box.calls.lastFunction;
    const bool isThere = box.calls.calls != 0 && function < standin::hostFunctions().size();
    return isThere ? standin::hostFunctions()[function].name : "";
}

// Returns the current or last work of the add-ons: `STATS MEAN ZONES = '1-3'`, `loading of ./stats.so`. Empty before
// the first work.
std::string workOf(const ProcessBox& box) {
    const std::string id = box.addOnId.text();
    return id.empty() ? box.work.text() : id + ' ' + box.work.text();
}

// The start of a message about a process: `FILE:LINE: ID` for a command, and otherwise the name of the program.
std::string placeOf(const ProcessBox& box) {
    const std::string id = box.addOnId.text();
    if (id.empty()) return kProgramName;
    const std::string place = box.place.text();
    return place.empty() ? id : place + ": " + id;
}

std::string whatItCalled(const ProcessBox& box) {
    const bool hasCalled = box.calls.calls > box.callsBefore;
    return hasCalled ? "; its last host call was " + lastFunctionOf(box) : "; it made no host call";
}

std::string deathMessage(const ProcessBox& box, const ProcessOutcome& outcome) {
    const std::string how = howItEnded(outcome.waitStatus);
    const std::string work = workOf(box);
    if (work.empty()) return "the process for the add-ons ended: " + how;
    if (box.isInAddOn) return '"' + work + "\" ended the process: " + how + whatItCalled(box);
    return "an add-on ended the process after \"" + work + "\": " + how;
}

}  // namespace

LastWords::LastWords(int status) : m_handler(SIGALRM, [](int) { _exit(statusOfProgram); }) {
    statusOfProgram = status;
    alarm(kSecondsForLastWords);
}

LastWords::~LastWords() { alarm(0); }

std::string howItEnded(int waitStatus) {
    if (WIFEXITED(waitStatus)) return "exit status " + std::to_string(WEXITSTATUS(waitStatus));
    const int number = WTERMSIG(waitStatus);
    const char* const name = sigabbrev_np(number);
    return "SIG" + (name == nullptr ? std::to_string(number) : std::string(name)) + " (" + strsignal(number) + ')';
}

std::string deathText(const ProcessBox& box, const ProcessOutcome& outcome) {
    return placeOf(box) + ": error: " + deathMessage(box, outcome) + '\n' + textOf(outcome.stacks);
}

void tellDeath(const ProcessBox& box, const ProcessOutcome& outcome) {
    tell(placeOf(box), "error: " + deathMessage(box, outcome));
    tellStacks(outcome.stacks);
}

Problem deathProblem(const ProcessBox& box, const ProcessOutcome& outcome, const std::string& file) {
    const MacroCommand work = {box.place.text(), box.addOnId.text(), box.work.text()};
    Problem problem = problemOf(work, kProcessEnded, deathMessage(box, outcome));
    if (problem.place.file.empty()) problem.place.file = file;
    addStacks(problem, outcome.stacks);
    return problem;
}

Crash crashOf(const ProcessBox& box, const ProcessOutcome& outcome) {
    return {deathMessage(box, outcome), outcome.stacks};
}

standin::Finding hangFinding(const standin::Place& last, std::size_t callsBefore, std::chrono::duration<double> limit) {
    const bool hasCalled = last.call > callsBefore;
    standin::Finding finding = hangFinding(last, limit);
    finding.message += hasCalled ? "; its last host call was " + last.function : "; it made no host call";
    if (hasCalled) finding.seen = last;
    return finding;
}

standin::Finding hangFinding(const standin::Place& work, std::chrono::duration<double> limit) {
    const bool isCommand = !work.macroLine.empty();
    standin::Finding finding;
    finding.rule = kCommandTimeout;
    finding.addOnId = isCommand ? work.command.substr(0, work.command.find(' ')) : "";
    finding.message = '"' + work.command + "\" has not returned within " + secondsText(limit);
    finding.opened = standin::Place{0, "", work.command, work.macroLine, work.thread};
    finding.seen = standin::Place{0, "", "", work.macroLine, 0};
    return finding;
}

standin::Finding lateFinding(const ProcessBox& box) {
    const standin::Place last = {box.calls.calls, lastFunctionOf(box), workOf(box), box.place.text(), 1};
    standin::Finding finding = hangFinding(last, box.callsBefore, box.limit());
    if (!box.isInAddOn) finding.message = "the process for the add-ons did not end after \"" + workOf(box) + '"';
    return finding;
}

Problem lateProblem(const ProcessBox& box, const ProcessOutcome& outcome, const std::string& file) {
    Problem problem = problemOf(lateFinding(box), file);
    addStacks(problem, outcome.stacks);
    return problem;
}

void tellStacks(const StackReport& stacks) {
    if (!stacks.isEmpty()) tellLines("", textOf(stacks));
}

// If the status line is drawn, it shows that the task is stopping.
void UserWork::stopAsked(std::size_t, const ProcessBox& box) {
    m_isStopAsked = true;
    if (!box.isStatusDrawn) tell(placeOf(box), "stop requested; a second Ctrl-C ends the program");
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

void clearStatusOf(const ProcessBox& box) {
    if (box.isStatusDrawn) std::fputs(kClearLine, stderr);
}

}  // namespace vexa::runner
