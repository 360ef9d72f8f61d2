#include "session/watch/Processes.h"

#include <poll.h>

#include <csignal>
#include <iterator>
#include <list>
#include <map>
#include <vector>

#include "session/watch/Process.h"
#include "system/processes/Strays.h"

namespace vexa::runner {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kLookInterval = 20;  // milliseconds

class Pool {
public:
    Pool(const AwaitedSignals& signals, std::size_t count, const ProcessSetting& setting, ProcessWorkInterface& work)
        : m_signals(signals), m_count(count), m_setting(setting), m_work(work) {}

    std::size_t run() {
        for (;;) {
            for (; !m_isStopped && m_begun != m_count && m_running.size() < m_setting.jobs; ++m_begun) {
                m_running.emplace_back(m_begun, m_setting, m_work, m_signals);
            }
            if (m_running.empty()) return m_told;
            wait();
            while (const auto signal = m_signals.next()) obey(*signal);
            for (Process& process : m_running) process.attend();
            collect();
        }
    }

private:
    void wait() const {
        std::vector<pollfd> polled = {{m_signals.descriptor(), POLLIN, 0}};
        for (const Process& process : m_running) process.addTo(polled);
        poll(polled.data(), polled.size(), m_setting.isTimed ? kLookInterval : -1);
    }

    void obey(int signal) {
        if (endsProgram(signal) || (signal == SIGINT && m_isStopped)) return killAll(signal);
        if (signal == SIGINT) stop();
        if (signal == SIGTSTP) suspend();
    }

    void stop() {
        m_isStopped = true;
        for (const Process& process : m_running) {
            process.child().signalGroup(SIGINT);
            m_work.stopAsked(process.index(), process.box());
        }
    }

    // The processes are in other process groups, so the terminal does not suspend them.
    void suspend() const {
        const Clock::time_point begin = Clock::now();
        for (const Process& process : m_running) process.child().signalGroup(SIGSTOP);
        raise(SIGSTOP);
        for (const Process& process : m_running) {
            process.box().forgive(Clock::now() - begin);
            process.child().signalGroup(SIGCONT);
        }
    }

    [[noreturn]] void killAll(int signal) {
        for (Process& process : m_running) {
            process.child().kill();
            m_work.killed(process.index(), process.box(), signal);
        }
        m_running.clear();
        m_strays.kill();
        throw EndedBySignal{signal};
    }

    void collect() {
        for (auto process = m_running.begin(); process != m_running.end();) {
            const bool hasEnded = process->hasEnded();
            if (hasEnded) m_ended.emplace(process->index(), Ended{process, process->outcome()});
            const auto next = std::next(process);
            if (hasEnded) m_over.splice(m_over.end(), m_running, process);
            process = next;
        }
        if (m_running.empty()) m_strays.kill();
        for (auto next = m_ended.find(m_told); next != m_ended.end(); next = m_ended.find(m_told)) {
            m_work.end(m_told++, next->second.process->box(), next->second.outcome);
            m_over.erase(next->second.process);
            m_ended.erase(next);
        }
    }

    struct Ended {
        std::list<Process>::iterator process;
        ProcessOutcome outcome;
    };

    const AwaitedSignals& m_signals;
    const std::size_t m_count;
    const ProcessSetting& m_setting;
    ProcessWorkInterface& m_work;
    const Strays m_strays;
    std::size_t m_begun = 0;
    std::size_t m_told = 0;
    bool m_isStopped = false;
    std::list<Process> m_running;
    std::list<Process> m_over;             // ended, and not yet told
    std::map<std::size_t, Ended> m_ended;  // not yet told: an earlier one still runs
};

}  // namespace

std::size_t runInProcesses(const AwaitedSignals& signals, std::size_t count, const ProcessSetting& setting,
                           ProcessWorkInterface& work) {
    return Pool(signals, count, setting, work).run();
}

}  // namespace vexa::runner
