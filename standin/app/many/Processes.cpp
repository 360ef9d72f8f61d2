#include "many/Processes.h"

#include <sys/wait.h>

#include <chrono>
#include <csignal>
#include <exception>
#include <iterator>
#include <list>
#include <map>
#include <optional>
#include <utility>

#include "ChildProcess.h"
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

class Process {
public:
    Process(std::size_t index, const ProcessWork& work, const AwaitedSignals& signals)
        : m_index(index), m_child({m_files.out.descriptor(), m_files.err.descriptor()}, [&] {
              signals.restore();
              return statusOf([&] { return work.run(index, m_files); });
          }) {}
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process() = default;

    std::size_t index() const { return m_index; }
    void stop() const { m_child.interrupt(); }
    std::optional<ProcessOutcome> outcome() {
        if (!m_child.hasEnded()) return std::nullopt;
        const int waitStatus = m_child.reap();
        ProcessOutcome outcome;
        outcome.signal = WIFSIGNALED(waitStatus) ? WTERMSIG(waitStatus) : 0;
        outcome.status = WIFSIGNALED(waitStatus) ? kKilledBySignal + outcome.signal : WEXITSTATUS(waitStatus);
        outcome.seconds = std::chrono::duration<double>(Clock::now() - m_begin).count();
        outcome.out = m_files.out.text();
        outcome.err = m_files.err.text();
        outcome.notes = m_files.notes.text();
        return outcome;
    }

private:
    std::size_t m_index;
    ProcessFiles m_files;
    Clock::time_point m_begin = Clock::now();
    ChildProcess m_child;  // last: it begins with what stands above
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
