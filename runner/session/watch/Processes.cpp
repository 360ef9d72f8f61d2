#include "session/watch/Processes.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <list>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "session/UncaughtErrors.h"
#include "system/LastError.h"
#include "system/processes/ChildProcess.h"
#include "system/processes/Strays.h"

namespace vexa::runner {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kLookInterval = 20;  // milliseconds
constexpr std::size_t kMostAtOnce = std::size_t{1} << 20;

// What comes out of a pipe, of which a limited amount is kept.
class Drain {
public:
    Drain(std::size_t most, bool keepsEnd) : m_most(most), m_keepsEnd(keepsEnd) {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0) throwLastError("no pipe");
        m_in = ends[0];
        m_out = ends[1];
        fcntl(m_in, F_SETFL, O_NONBLOCK);
    }
    Drain(const Drain&) = delete;
    Drain& operator=(const Drain&) = delete;
    ~Drain() {
        if (m_in >= 0) close(m_in);
        closeWriter();
    }

    int reader() const { return m_in; }
    int writer() const { return m_out; }
    void closeWriter() {
        if (m_out >= 0) close(std::exchange(m_out, -1));
    }

    // Takes in what is there, but not for ever.
    void fetch() {
        std::array<char, 65536> bytes;
        for (std::size_t fetched = 0; m_in >= 0 && fetched < kMostAtOnce;) {
            const ssize_t count = read(m_in, bytes.data(), bytes.size());
            if (count < 0 && errno == EINTR) continue;
            if (count < 0) return;
            if (count == 0) return void(close(std::exchange(m_in, -1)));
            keep({bytes.data(), static_cast<std::size_t>(count)});
            fetched += static_cast<std::size_t>(count);
        }
    }
    KeptText take() {
        fetch();
        KeptText taken = std::exchange(m_kept, {});
        trim(taken, m_most);
        return taken;
    }

private:
    void keep(std::string_view bytes) {
        if (m_keepsEnd) {
            m_kept.text += bytes;
            if (m_kept.text.size() > 2 * m_most + kMostAtOnce) trim(m_kept, m_most);
        } else {
            const std::size_t room = m_most - m_kept.text.size();
            m_kept.text += bytes.substr(0, room);
            m_kept.leftOut += bytes.size() - std::min(bytes.size(), room);
        }
    }
    static void trim(KeptText& kept, std::size_t most) {
        if (kept.text.size() <= most) return;
        const std::size_t extra = kept.text.size() - most;
        kept.text.erase(0, extra);
        kept.leftOut += extra;
    }

    std::size_t m_most;
    bool m_keepsEnd;
    int m_in = -1;
    int m_out = -1;
    KeptText m_kept;
};

// ---- In the process

ProcessBox* boxOfThisProcess = nullptr;  // what runs at the end of a process is given nothing

void leave(ProcessBox& box, const ProcessSetting& setting, int status) {
    box.report(status);
    box.allow(setting.timeToLeave);
    if (!setting.leavesAtOnce) std::exit(status);
    std::fflush(nullptr);
    box.markLeft();
    _exit(status);
}

[[noreturn]] void workInProcess(std::size_t index, int descriptor, ProcessBox& box, const ProcessSetting& setting,
                                ProcessWorkInterface& work) {
    boxOfThisProcess = &box;
    box.owner = getpid();
    // Registered first, so it runs last.
    std::atexit([] { boxOfThisProcess->markLeft(); });
    Channel channel(descriptor, box.sent);
    leave(box, setting, printUncaughtErrors([&] { return work.run(index, box, channel); }));
    std::abort();
}

// ---- In the process that watches

class Process {
public:
    Process(std::size_t index, const ProcessSetting& setting, ProcessWorkInterface& work, const AwaitedSignals& signals)
        : m_index(index),
          m_setting(setting),
          m_out(setting.kept, setting.keepsEnd),
          m_err(setting.kept, setting.keepsEnd),
          m_notes(work.notesOf(index, [this] { return m_out.take(); })),
          m_child(streams(), signals.before(),
                  [&] { workInProcess(index, m_connection.childEnd(), *m_box, setting, work); }) {
        m_connection.closeChildEnd();
        m_out.closeWriter();
        m_err.closeWriter();
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process() = default;

    std::size_t index() const { return m_index; }
    ProcessBox& box() const { return *m_box; }
    const ChildProcess& child() const { return m_child; }

    void addTo(std::vector<pollfd>& polled) const {
        for (const int descriptor : {m_isOpen ? m_connection.parentEnd() : -1, m_out.reader(), m_err.reader()}) {
            if (descriptor >= 0) polled.push_back({descriptor, POLLIN, 0});
        }
    }

    // Takes in what it told and printed.
    void attend() {
        m_out.fetch();
        m_err.fetch();
        if (m_isOpen) m_isOpen = m_mailbox.fetch();
        while (const auto message = m_mailbox.next()) handOn(*message);
        if (m_setting.isTimed && !m_isKilled && m_box->isLate(m_setting.grace)) {
            m_isKilled = true;
            m_child.kill();
        }
    }

    bool hasEnded() const { return m_child.hasEnded(); }

    ProcessOutcome outcome() {
        attend();
        ProcessOutcome outcome;
        const pid_t id = m_child.id();
        outcome.waitStatus = m_child.reap();
        outcome.status = m_box->status();
        const bool hasLeft =
            m_box->hasLeft(id) && WIFEXITED(outcome.waitStatus) && WEXITSTATUS(outcome.waitStatus) == outcome.status;
        outcome.end = hasLeft ? End_e::Left : m_isKilled ? End_e::TimedOut : End_e::Died;
        outcome.areNotesWhole = m_mailbox.received() == m_box->sent;
        outcome.seconds = std::chrono::duration<double>(Clock::now() - m_begin).count();
        outcome.out = m_out.take();
        outcome.err = m_err.take();
        m_connection.closeParentEnd();
        return outcome;
    }

private:
    ChildProcess::Streams streams() const {
        if (m_setting.printed == Printed_e::Inherited) return {-1, -1, m_setting.readsNothing};
        const bool isOne = m_setting.printed == Printed_e::CaughtAsOne;
        return {m_out.writer(), isOne ? m_out.writer() : m_err.writer(), true};
    }

    void handOn(const Message& message) {
        if (m_notes == nullptr) return;
        if (message.isAsked) {
            m_mailbox.answer(m_notes->ask(message.kind, message.text));
        } else {
            m_notes->tell(message.kind, message.text);
        }
    }

    std::size_t m_index;
    const ProcessSetting& m_setting;
    SharedMemory<ProcessBox> m_box;
    Connection m_connection;
    Mailbox m_mailbox{m_connection.parentEnd()};
    bool m_isOpen = true;
    Drain m_out;
    Drain m_err;
    NotesInterface* m_notes;
    Clock::time_point m_begin = Clock::now();
    bool m_isKilled = false;
    ChildProcess m_child;  // last: it begins with what stands above
};

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

    // As the terminal would suspend all of them, were they in one group.
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
