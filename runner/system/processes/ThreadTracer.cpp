#include "system/processes/ThreadTracer.h"

#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <thread>

namespace vexa::runner {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kTimeToStop{500};
constexpr int kRounds = 4;         // threads may start others until all are stopped
constexpr int kMostSignals = 500;  // of a thread, within a second
constexpr int kEventShift = 8;
constexpr int kSignalMask = 0xff;

std::string folderOf(pid_t process) { return "/proc/" + std::to_string(process); }

// Returns the number after `field` in the status of a thread; 0 if the thread has ended.
std::uint64_t statusNumber(pid_t thread, const std::string& field, int base) {
    std::ifstream status(folderOf(thread) + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.compare(0, field.size(), field) == 0) return std::strtoull(line.c_str() + field.size(), nullptr, base);
    }
    return 0;
}

std::vector<pid_t> threadsOf(pid_t process) {
    std::vector<pid_t> threads;
    std::error_code error;
    std::filesystem::directory_iterator task(folderOf(process) + "/task", error);
    for (; task != std::filesystem::directory_iterator(); task.increment(error)) {
        threads.push_back(static_cast<pid_t>(std::strtol(task->path().filename().c_str(), nullptr, 10)));
    }
    return threads;
}

bool stopsByDefault(int signal) {
    return signal == SIGSTOP || signal == SIGTSTP || signal == SIGTTIN || signal == SIGTTOU;
}

bool endsByDefault(int signal) {
    const bool isHarmless = signal == SIGCHLD || signal == SIGCONT || signal == SIGURG || signal == SIGWINCH;
    return !isHarmless && !stopsByDefault(signal);
}

// Ctrl-C, and the end of the terminal.
bool isFromTerminal(const siginfo_t& signal) {
    return signal.si_code == SI_KERNEL && (signal.si_signo == SIGINT || signal.si_signo == SIGHUP);
}

// Returns true if the process neither handles nor ignores `signal`.
bool isDefault(pid_t thread, int signal) {
    const std::uint64_t bit = std::uint64_t{1} << (signal - 1);
    return ((statusNumber(thread, "SigCgt:", 16) | statusNumber(thread, "SigIgn:", 16)) & bit) == 0;
}

unsigned long optionsFor(bool endsWithTracer) {
    constexpr unsigned long kThreads = PTRACE_O_TRACECLONE;
    return endsWithTracer ? kThreads | PTRACE_O_EXITKILL : kThreads;
}

enum class State_e { Runs, Stopped, Ended };

State_e stateOf(pid_t thread, int& report) {
    siginfo_t info{};
    const auto id = static_cast<id_t>(thread);
    if (waitid(P_PID, id, &info, WSTOPPED | WEXITED | WNOWAIT | WNOHANG | __WALL) != 0) return State_e::Ended;
    if (info.si_pid == 0) return State_e::Runs;
    if (isEnd(info)) return State_e::Ended;
    report = info.si_status;
    waitid(P_PID, id, &info, WSTOPPED | WNOHANG | __WALL);
    return State_e::Stopped;
}

// Waits for the threads that were interrupted, and adds the reports of those that stop.
void awaitStops(const std::vector<pid_t>& interrupted, Clock::time_point end, std::map<pid_t, int>& stopped) {
    for (const pid_t thread : interrupted) {
        int report = 0;
        State_e state = stateOf(thread, report);
        for (; state == State_e::Runs && Clock::now() < end; state = stateOf(thread, report)) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        if (state == State_e::Stopped) stopped[thread] = report;
    }
}

}  // namespace

int ThreadTracer::trace(pid_t process, bool endsWithTracer) {
    if (m_processes.count(process) != 0) return 0;
    if (ptrace(PTRACE_SEIZE, process, nullptr, optionsFor(endsWithTracer)) != 0) return errno;
    m_processes[process] = process;
    for (int round = 0, seized = 1; round != kRounds && seized != 0; ++round) {
        seized = 0;
        for (const pid_t thread : threadsOf(process)) {
            if (m_processes.count(thread) != 0) continue;
            if (ptrace(PTRACE_SEIZE, thread, nullptr, optionsFor(endsWithTracer)) != 0) continue;
            m_processes[thread] = process;
            ++seized;
        }
    }
    return 0;
}

void ThreadTracer::attend() {
    if (m_processes.empty()) return;
    while (attendStop()) {}
    attendEnds();
}

bool ThreadTracer::attendStop() {
    siginfo_t info{};
    if (waitid(P_ALL, 0, &info, WSTOPPED | WNOHANG | __WALL) != 0 || info.si_pid == 0) return false;
    if (info.si_code == CLD_TRAPPED) {
        goOn(info.si_pid, info.si_status);
    } else if (m_atStop) {
        m_atStop(info.si_pid);
    }
    return true;
}

// A thread that has ended stays until the tracer waits for it. A process stays, so that others can wait for it, and
// then hides the threads that ended after it.
void ThreadTracer::attendEnds() {
    for (;;) {
        siginfo_t info{};
        if (waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT | __WALL) != 0 || info.si_pid == 0) return;
        if (!isEnd(info)) {
            attendStop();
            continue;
        }
        if (!mayCollect(info.si_pid) || !collect(info.si_pid)) break;
    }
    std::vector<pid_t> processes;
    for (const auto& [thread, process] : m_processes) {
        if (thread == process) processes.push_back(process);
    }
    for (const pid_t process : processes) {
        for (const pid_t thread : threadsOf(process)) {
            if (mayCollect(thread)) collect(thread);
        }
    }
}

// The parent of a process learns that the process has ended when the tracer has waited for it. Here the owner of a
// child process waits for it. If the system does not tell whose the process is, it may be ours.
bool ThreadTracer::mayCollect(pid_t thread) {
    const pid_t process = processOf(thread);
    if (process == 0 || thread != process) return process != 0;
    const auto parent = static_cast<pid_t>(statusNumber(process, "PPid:", 10));
    return m_processes.count(process) != 0 && parent != 0 && parent != getpid();
}

bool ThreadTracer::collect(pid_t thread) {
    siginfo_t info{};
    const auto id = static_cast<id_t>(thread);
    const bool hasEnded = waitid(P_PID, id, &info, WEXITED | WNOHANG | WNOWAIT | __WALL) == 0 && isEnd(info);
    if (!hasEnded) return false;
    waitid(P_PID, id, &info, WEXITED | WNOHANG | __WALL);
    m_processes.erase(thread);
    return true;
}

void ThreadTracer::goOn(pid_t thread, Report report) {
    const int signal = report & kSignalMask;
    const bool isEvent = report >> kEventShift != 0;
    const pid_t process = processOf(thread);
    if (isEvent && stopsByDefault(signal)) {
        ptrace(PTRACE_LISTEN, thread, nullptr, nullptr);
        if (thread == process && m_atStop) m_atStop(process);
    } else if (isEvent) {
        ptrace(PTRACE_CONT, thread, nullptr, nullptr);
    } else {
        deliver(thread, signal);
    }
}

// Each signal costs a traced thread so much time that a fast timer would leave it none.
bool ThreadTracer::isFlooded(pid_t thread) {
    auto& [since, count] = m_signals[thread];
    const Clock::time_point now = Clock::now();
    if (now - since > std::chrono::seconds(1)) {
        since = now;
        count = 0;
    }
    return ++count > kMostSignals;
}

// A signal from another process, such as SIGTERM, is nothing that the thread did, unless it is sent to see a fault.
void ThreadTracer::deliver(pid_t thread, int signal) {
    if (isFlooded(thread)) {
        ptrace(PTRACE_DETACH, thread, nullptr, static_cast<long>(signal));
        m_processes.erase(thread);
        m_signals.erase(thread);
        return;
    }
    Ending ending{processOf(thread), thread, {}};
    const bool mayEnd = endsByDefault(signal) && ptrace(PTRACE_GETSIGINFO, thread, nullptr, &ending.signal) == 0;
    const bool isSent =
        isFromTerminal(ending.signal) || (ending.signal.si_code <= 0 && ending.signal.si_pid != ending.process);
    if (mayEnd && (!isSent || isFault(signal)) && isDefault(thread, signal)) m_atEnding(ending);
    ptrace(PTRACE_CONT, thread, nullptr, static_cast<long>(signal));
}

// A new thread is traced before anybody has reported it.
pid_t ThreadTracer::processOf(pid_t thread) {
    const auto known = m_processes.find(thread);
    if (known != m_processes.end()) return known->second;
    const pid_t process = processOfThread(thread);
    if (m_processes.count(process) != 0) m_processes[thread] = process;
    return process;
}

bool ThreadTracer::interrupt(pid_t process, pid_t thread) {
    if (m_processes.count(thread) == 0) {
        if (ptrace(PTRACE_SEIZE, thread, nullptr, optionsFor(false)) != 0) return false;
        m_processes[thread] = process;
    }
    return ptrace(PTRACE_INTERRUPT, thread, nullptr, nullptr) == 0;
}

void ThreadTracer::withAllStopped(pid_t process, const std::function<void(const std::vector<pid_t>&)>& use) {
    const Clock::time_point end = Clock::now() + kTimeToStop;
    std::map<pid_t, Report> stopped;
    std::map<pid_t, bool> isInterrupted;
    for (int round = 0; round != kRounds; ++round) {
        std::vector<pid_t> interrupted;
        for (const pid_t thread : threadsOf(process)) {
            if (isInterrupted.emplace(thread, true).second && interrupt(process, thread)) interrupted.push_back(thread);
        }
        if (interrupted.empty()) break;
        awaitStops(interrupted, end, stopped);
    }
    std::vector<pid_t> threads;
    threads.reserve(stopped.size());
    for (const auto& [thread, report] : stopped) threads.push_back(thread);
    use(threads);
    for (const auto& [thread, report] : stopped) goOn(thread, report);
}

void ThreadTracer::forget(pid_t process) {
    for (auto thread = m_processes.begin(); thread != m_processes.end();) {
        thread = thread->second == process ? m_processes.erase(thread) : std::next(thread);
    }
}

pid_t processOfThread(pid_t thread) { return static_cast<pid_t>(statusNumber(thread, "Tgid:", 10)); }

bool isFault(int signal) {
    constexpr std::array<int, 8> kFaults = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGSYS, SIGTRAP, SIGQUIT};
    return std::find(kFaults.begin(), kFaults.end(), signal) != kFaults.end();
}

bool isEnd(const siginfo_t& info) {
    return info.si_pid != 0 && (info.si_code == CLD_EXITED || info.si_code == CLD_KILLED || info.si_code == CLD_DUMPED);
}

void collectThreadsOf(pid_t process) {
    for (bool hasCollected = true; hasCollected;) {
        hasCollected = false;
        for (const pid_t thread : threadsOf(process)) {
            if (thread == process) continue;
            int waited = 0;
            siginfo_t info{};
            const auto id = static_cast<id_t>(thread);
            do {
                waited = waitid(P_PID, id, &info, WEXITED | __WALL);
            } while (waited == 0 ? !isEnd(info) : errno == EINTR);
            hasCollected = hasCollected || waited == 0;
        }
    }
}

}  // namespace vexa::runner
