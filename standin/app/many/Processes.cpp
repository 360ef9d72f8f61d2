#include "many/Processes.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iterator>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>

#include "Console.h"
#include "ExitStatus.h"
#include "IgnoredSignal.h"

namespace vexa::runner {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kKilledBySignal = 128;

// Signals that come are taken by next(), one at a time: nothing else is interrupted by them.
class AwaitedSignals {
public:
    AwaitedSignals() {
        std::signal(SIGCHLD, SIG_DFL);  // a process whose end is ignored is gone before we can look
        sigemptyset(&m_awaited);
        sigaddset(&m_awaited, SIGCHLD);
        if (!isIgnored(SIGINT)) sigaddset(&m_awaited, SIGINT);
        sigprocmask(SIG_BLOCK, &m_awaited, &m_before);
    }
    AwaitedSignals(const AwaitedSignals&) = delete;
    AwaitedSignals& operator=(const AwaitedSignals&) = delete;
    ~AwaitedSignals() { restore(); }

    void restore() const { sigprocmask(SIG_SETMASK, &m_before, nullptr); }
    int next() const {
        int signal = -1;
        while (signal < 0) signal = sigwaitinfo(&m_awaited, nullptr);
        return signal;
    }

private:
    sigset_t m_awaited{};
    sigset_t m_before{};
};

int statusOf(const std::function<int()>& work) {
    try {
        return work();
    } catch (const std::exception& error) {
        tell(kProgramName, std::string("unexpected error: ") + error.what());
    }
    return static_cast<int>(ExitStatus_e::BadUsageOrInput);
}

[[noreturn]] void becomeProcess(pid_t parent, const ProcessFiles& files, const std::function<int()>& work) {
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(EXIT_FAILURE);
    const int nothing = open("/dev/null", O_RDONLY);
    dup2(nothing, STDIN_FILENO);
    if (nothing > STDERR_FILENO) close(nothing);
    dup2(files.out.descriptor(), STDOUT_FILENO);
    dup2(files.err.descriptor(), STDERR_FILENO);
    std::exit(statusOf(work));
}

class Process {
public:
    Process(std::size_t index, const ProcessWork& work, const AwaitedSignals& signals)
        : m_index(index), m_files(std::make_unique<ProcessFiles>()) {
        std::fflush(nullptr);  // what is not yet written would be written twice
        const pid_t parent = getpid();
        m_id = fork();
        if (m_id < 0) throw std::system_error(errno, std::generic_category(), "no other process");
        if (m_id == 0) {
            signals.restore();
            becomeProcess(parent, *m_files, [&] { return work.run(index, *m_files); });
        }
        setpgid(m_id, m_id);
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    // Only when something was thrown does it still run.
    ~Process() {
        if (m_id <= 0) return;
        signalGroup(SIGKILL);
        waitpid(m_id, nullptr, 0);
    }

    std::size_t index() const { return m_index; }
    void stop() const { signalGroup(SIGINT); }
    std::optional<ProcessOutcome> outcome() {
        int waitStatus = 0;
        if (waitpid(m_id, &waitStatus, WNOHANG) != m_id) return std::nullopt;
        signalGroup(SIGKILL);  // what it left behind
        m_id = 0;
        ProcessOutcome outcome;
        outcome.signal = WIFSIGNALED(waitStatus) ? WTERMSIG(waitStatus) : 0;
        outcome.status = WIFSIGNALED(waitStatus) ? kKilledBySignal + outcome.signal : WEXITSTATUS(waitStatus);
        outcome.seconds = std::chrono::duration<double>(Clock::now() - m_begin).count();
        outcome.out = m_files->out.text();
        outcome.err = m_files->err.text();
        outcome.notes = m_files->notes.text();
        return outcome;
    }

private:
    void signalGroup(int signal) const { kill(-m_id, signal); }

    std::size_t m_index;
    std::unique_ptr<ProcessFiles> m_files;
    Clock::time_point m_begin = Clock::now();
    pid_t m_id = 0;
};

class Pool {
public:
    Pool(std::size_t count, std::size_t jobs, const ProcessWork& work) : m_count(count), m_jobs(jobs), m_work(work) {}

    std::size_t run() {
        for (;;) {
            for (; !m_isStopped && m_begun != m_count && m_running.size() < m_jobs; ++m_begun) {
                m_running.emplace_back(m_begun, m_work, m_signals);
            }
            if (m_running.empty()) return m_told;
            if (m_signals.next() == SIGINT) stop();
            collect();
        }
    }

private:
    void stop() {
        m_isStopped = true;
        for (const Process& process : m_running) process.stop();
    }

    void collect() {
        for (auto process = m_running.begin(); process != m_running.end();) {
            auto outcome = process->outcome();
            if (outcome) m_ended.emplace(process->index(), std::move(*outcome));
            process = outcome ? m_running.erase(process) : std::next(process);
        }
        for (auto next = m_ended.find(m_told); next != m_ended.end(); next = m_ended.find(m_told)) {
            m_work.end(m_told++, next->second);
            m_ended.erase(next);
        }
    }

    const std::size_t m_count;
    const std::size_t m_jobs;
    const ProcessWork& m_work;
    const AwaitedSignals m_signals;
    std::size_t m_begun = 0;
    std::size_t m_told = 0;
    bool m_isStopped = false;
    std::list<Process> m_running;
    std::map<std::size_t, ProcessOutcome> m_ended;  // not yet told: an earlier one still runs
};

}  // namespace

std::size_t runInProcesses(std::size_t count, std::size_t jobs, const ProcessWork& work) {
    return Pool(count, jobs, work).run();
}

}  // namespace vexa::runner
