#include "session/watch/WatchedStacks.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "system/processes/LeakSanitizer.h"

namespace vexa::runner {
namespace {

const IsOfAddOn& madeOnce(std::optional<IsOfAddOn>& isOfAddOn) {
    if (!isOfAddOn) isOfAddOn = isNotLoadedHere();
    return *isOfAddOn;
}

bool isEmpty(const std::vector<ThreadStack>& threads) {
    return std::all_of(threads.begin(), threads.end(), [](const ThreadStack& stack) { return stack.frames.empty(); });
}

}  // namespace

WatchedStacks::WatchedStacks()
    : m_areForked(true), m_tracer([this](const ThreadTracer::Ending& ending) { keep(ending); }) {}

WatchedStacks::WatchedStacks(IsOfAddOn isOfAddOn, ThreadTracer::AtStop atStop)
    : m_areForked(false),
      m_tracer([this](const ThreadTracer::Ending& ending) { keep(ending); }, std::move(atStop)),
      m_isOfAddOn(std::move(isOfAddOn)) {}

void WatchedStacks::watch(pid_t process) {
    const std::string problem = whyNotTraced(process);
    if (!problem.empty()) m_problems[process] = problem;
}

std::string WatchedStacks::whyNotTraced(pid_t process) {
    const bool hasSanitizer = m_areForked ? hasLeakSanitizer() : hasLeakSanitizer(process);
    if (hasSanitizer) return "the leak sanitizer does not work in a traced process";
    const int error = m_tracer.trace(process, m_areForked);
    if (error == 0) return "";
    return "the system does not permit the runner to trace the process: " + std::generic_category().message(error);
}

void WatchedStacks::attendStops() {
    constexpr std::chrono::milliseconds kStep{5};
    constexpr int kSteps = 10;
    for (int step = 0; step != kSteps; ++step) {
        std::this_thread::sleep_for(kStep);
        m_tracer.attend();
    }
}

void WatchedStacks::keep(const ThreadTracer::Ending& ending) {
    if (m_ends.count(ending.process) != 0) return;  // the first signal ends it
    StackReport& report = m_ends[ending.process];
    report.signal = ending.signal.si_signo;
    report.fault = faultText(ending.signal);
    report.threads = stacksOf(ending.process, {ending.thread}, madeOnce(m_isOfAddOn));
}

StackReport WatchedStacks::ofHang(pid_t process, pid_t without) {
    StackReport report;
    m_tracer.withAllStopped(process, [&](std::vector<pid_t> threads) {
        threads.erase(std::remove(threads.begin(), threads.end(), without), threads.end());
        report.threads = stacksOf(process, threads, madeOnce(m_isOfAddOn));
    });
    if (isEmpty(report.threads)) {
        report.threads.clear();
        const auto problem = m_problems.find(process);
        report.problem = problem == m_problems.end() ? "no thread could be stopped" : problem->second;
    }
    return report;
}

StackReport WatchedStacks::ofEnd(pid_t process, int waitStatus) const {
    if (!WIFSIGNALED(waitStatus)) return {};
    const auto end = m_ends.find(process);
    if (end != m_ends.end() && end->second.signal == WTERMSIG(waitStatus)) return end->second;
    const auto problem = m_problems.find(process);
    const bool isMissed = problem != m_problems.end() && isFault(WTERMSIG(waitStatus));
    return isMissed ? StackReport{WTERMSIG(waitStatus), "", {}, problem->second} : StackReport();
}

StackReport askForStacks(NotesInterface& notes) {
    return unpackedReport(notes.ask(kStacksNote, std::to_string(gettid())));
}

void WatchedStacks::forget(pid_t process) {
    m_tracer.forget(process);
    m_ends.erase(process);
    m_problems.erase(process);
}

}  // namespace vexa::runner
