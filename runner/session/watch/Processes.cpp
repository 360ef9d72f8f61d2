#include "session/watch/Processes.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <list>
#include <map>
#include <utility>
#include <vector>

#include "session/watch/Channel.h"
#include "session/watch/TimeSteps.h"
#include "session/watch/UncaughtErrors.h"
#include "session/watch/WatchedStacks.h"
#include "system/processes/ChildProcess.h"
#include "system/processes/OtherThreads.h"
#include "system/processes/Strays.h"

namespace vexa::runner {
namespace {

using Clock = std::chrono::steady_clock;

// ---- In the process

// Exit handlers destroy what a thread of an add-on may still use. If such a thread crashes while sanitizers look for
// leaks, the thread and the exit handlers wait for each other forever.
[[noreturn]] void leave(ProcessBox& box, const ProcessSetting& setting, int status) {
    box.report(status);
    box.allow(setting.timeToLeave);
    if (!setting.leavesAtOnce && !hasOtherThreads()) std::exit(status);
    std::fflush(nullptr);
    box.markLeft();
    _exit(status);
}

// The watching process is ready when it writes a byte.
void awaitStart(int descriptor) {
    char byte = 0;
    while (recv(descriptor, &byte, 1, 0) < 0 && errno == EINTR) {}
}

[[noreturn]] void workInProcess(std::size_t index, int descriptor, ProcessBox& box, const ProcessSetting& setting,
                                ProcessWorkInterface& work) {
    awaitStart(descriptor);
    box.owner = getpid();
    // Registered first, so it runs last.
    on_exit([](int, void* itsBox) { static_cast<ProcessBox*>(itsBox)->markLeft(); }, &box);
    Channel channel(descriptor, box.sent);
    leave(box, setting, printUncaughtErrors([&] { return work.run(index, box, channel); }));
}

// ---- In the process that watches

// One of the processes, as the watching process sees it.
class Process {
public:
    Process(std::size_t index, const ProcessSetting& setting, ProcessWorkInterface& work, const AwaitedSignals& signals,
            WatchedStacks& stacks)
        : m_index(index),
          m_setting(setting),
          m_stacks(stacks),
          m_out(setting.kept, setting.keepsEnd),
          m_err(setting.kept, setting.keepsEnd),
          m_notes(work.notesOf(index, [this] { return m_out.take(); })),
          m_child(streams(), signals.before(),
                  [&] { workInProcess(index, m_connection.childEnd.get(), *m_box, setting, work); }) {
        m_connection.childEnd.close();
        m_out.closeWriter();
        m_err.closeWriter();
        if (setting.readsStacks) m_stacks.watch(m_child.id());
        sendAll(m_connection.parentEnd.get(), "s");
    }

    std::size_t index() const { return m_index; }
    ProcessBox& box() const { return *m_box; }
    const ChildProcess& child() const { return m_child; }

    // Adds the descriptors to wait for.
    void addTo(std::vector<pollfd>& polled) const {
        for (const int descriptor : {m_isOpen ? m_connection.parentEnd.get() : -1, m_out.reader(), m_err.reader()}) {
            if (descriptor >= 0) polled.push_back({descriptor, POLLIN, 0});
        }
    }

    // Takes its notes and its output, and kills it if it has exceeded its time limit.
    void attend() {
        m_out.fetch();
        m_err.fetch();
        if (m_isOpen) m_isOpen = m_mailbox.fetch();
        while (const auto message = m_mailbox.next()) handOn(*message);
        if (m_setting.isTimed && !m_isKilled && m_box->isLate(m_setting.grace)) {
            m_isKilled = true;
            if (m_setting.readsStacks) m_stacksAtLimit = stacksOfHang(0);
            m_child.kill();
        }
    }

    bool hasEnded() const { return m_child.hasEnded(); }
    // Call this once, when it has ended.
    ProcessOutcome outcome() {
        attend();
        ProcessOutcome outcome;
        const pid_t id = m_child.id();
        outcome.waitStatus = m_child.reap();
        outcome.stacks = m_isKilled ? std::move(m_stacksAtLimit) : m_stacks.ofEnd(id, outcome.waitStatus);
        outcome.stacks.isWhole = m_setting.showsWholeStacks;
        m_stacks.forget(id);
        outcome.status = m_box->status();
        const bool hasLeft =
            m_box->hasLeft(id) && WIFEXITED(outcome.waitStatus) && WEXITSTATUS(outcome.waitStatus) == outcome.status;
        outcome.end = hasLeft ? End_e::Left : m_isKilled ? End_e::TimedOut : End_e::Died;
        outcome.areNotesWhole = m_mailbox.received() == m_box->sent;
        outcome.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - m_begin).count();
        outcome.out = m_out.take();
        outcome.err = m_err.take();
        m_connection.parentEnd.close();
        return outcome;
    }

private:
    ChildProcess::Streams streams() const {
        if (m_setting.printed == Printed_e::Inherited) return {-1, -1, m_setting.readsNothing};
        const bool isOne = m_setting.printed == Printed_e::CaughtAsOne;
        return {m_out.writer(), isOne ? m_out.writer() : m_err.writer(), true};
    }

    void handOn(const Message& message) {
        if (message.isAsked && message.kind == kStacksNote) return answerStacks(message.text);
        if (m_notes == nullptr) return;
        if (message.isAsked) {
            m_mailbox.answer(m_notes->ask(message.kind, message.text));
        } else {
            m_notes->tell(message.kind, message.text);
        }
    }

    StackReport stacksOfHang(pid_t asker) {
        StackReport report = m_stacks.ofHang(m_child.id(), asker);
        report.isWhole = m_setting.showsWholeStacks;
        return report;
    }

    // The process does not use up its time while it is stopped.
    void answerStacks(const std::string& asker) {
        const Clock::time_point begin = Clock::now();
        const auto thread = static_cast<pid_t>(std::strtol(asker.c_str(), nullptr, 10));
        m_mailbox.answer(packed(stacksOfHang(thread)));
        m_box->forgive(Clock::now() - begin);
    }

    std::size_t m_index;
    const ProcessSetting& m_setting;
    WatchedStacks& m_stacks;
    StackReport m_stacksAtLimit;
    SharedMemory<ProcessBox> m_box;
    Connection m_connection;
    Mailbox m_mailbox{m_connection.parentEnd.get()};
    bool m_isOpen = true;
    Drain m_out;
    Drain m_err;
    NotesInterface* m_notes;
    std::chrono::steady_clock::time_point m_begin = std::chrono::steady_clock::now();
    bool m_isKilled = false;
    ChildProcess m_child;  // last, because the process that it starts uses the other members
};

class Pool {
public:
    Pool(const AwaitedSignals& signals, std::size_t count, const ProcessSetting& setting, ProcessWorkInterface& work)
        : m_signals(signals), m_count(count), m_setting(setting), m_work(work) {}

    std::size_t run() {
        for (;;) {
            for (; !m_isStopped && m_begun != m_count && m_running.size() < m_setting.jobs; ++m_begun) {
                m_running.emplace_back(m_begun, m_setting, m_work, m_signals, m_stacks);
            }
            if (m_running.empty()) return m_told;
            wait();
            while (const auto signal = m_signals.next()) obey(*signal);
            m_stacks.attend();
            for (Process& process : m_running) process.attend();
            collect();
        }
    }

private:
    void wait() const {
        std::vector<pollfd> polled = {{m_signals.descriptor(), POLLIN, 0}};
        for (const Process& process : m_running) process.addTo(polled);
        if (!m_setting.isTimed) {
            poll(polled.data(), polled.size(), -1);
            return;
        }
        const Clock::time_point begin = Clock::now();
        poll(polled.data(), polled.size(), static_cast<int>(kTimeStep.count()));
        const Clock::duration time = Clock::now() - begin;
        if (time > kLongestTimeStep) forgive(time - kLongestTimeStep);
    }

    void forgive(Clock::duration time) const {
        for (const Process& process : m_running) process.box().forgive(time);
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
    void suspend() {
        const Clock::time_point begin = Clock::now();
        for (const Process& process : m_running) process.child().signalGroup(SIGSTOP);
        m_stacks.attendStops();
        raise(SIGSTOP);
        forgive(Clock::now() - begin);
        for (const Process& process : m_running) process.child().signalGroup(SIGCONT);
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
    WatchedStacks m_stacks;
    std::size_t m_begun = 0;
    std::size_t m_told = 0;
    bool m_isStopped = false;
    std::list<Process> m_running;
    std::list<Process> m_over;             // ended, and not reported yet
    std::map<std::size_t, Ended> m_ended;  // not reported yet, because an earlier one still runs
};

}  // namespace

std::size_t runInProcesses(const AwaitedSignals& signals, std::size_t count, const ProcessSetting& setting,
                           ProcessWorkInterface& work) {
    return Pool(signals, count, setting, work).run();
}

}  // namespace vexa::runner
