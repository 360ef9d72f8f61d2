#include "session/watch/Process.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "session/watch/UncaughtErrors.h"

namespace vexa::runner {
namespace {

// ---- In the process

[[noreturn]] void leave(ProcessBox& box, const ProcessSetting& setting, int status) {
    box.report(status);
    box.allow(setting.timeToLeave);
    if (!setting.leavesAtOnce) std::exit(status);
    std::fflush(nullptr);
    box.markLeft();
    _exit(status);
}

[[noreturn]] void workInProcess(std::size_t index, int descriptor, ProcessBox& box, const ProcessSetting& setting,
                                ProcessWorkInterface& work) {
    box.owner = getpid();
    // Registered first, so it runs last.
    on_exit([](int, void* itsBox) { static_cast<ProcessBox*>(itsBox)->markLeft(); }, &box);
    Channel channel(descriptor, box.sent);
    leave(box, setting, printUncaughtErrors([&] { return work.run(index, box, channel); }));
}

}  // namespace

// ---- In the process that watches

Process::Process(std::size_t index, const ProcessSetting& setting, ProcessWorkInterface& work,
                 const AwaitedSignals& signals)
    : m_index(index),
      m_setting(setting),
      m_out(setting.kept, setting.keepsEnd),
      m_err(setting.kept, setting.keepsEnd),
      m_notes(work.notesOf(index, [this] { return m_out.take(); })),
      m_child(streams(), signals.before(),
              [&] { workInProcess(index, m_connection.childEnd.get(), *m_box, setting, work); }) {
    m_connection.childEnd.close();
    m_out.closeWriter();
    m_err.closeWriter();
}

void Process::addTo(std::vector<pollfd>& polled) const {
    for (const int descriptor : {m_isOpen ? m_connection.parentEnd.get() : -1, m_out.reader(), m_err.reader()}) {
        if (descriptor >= 0) polled.push_back({descriptor, POLLIN, 0});
    }
}

void Process::attend() {
    m_out.fetch();
    m_err.fetch();
    if (m_isOpen) m_isOpen = m_mailbox.fetch();
    while (const auto message = m_mailbox.next()) handOn(*message);
    if (m_setting.isTimed && !m_isKilled && m_box->isLate(m_setting.grace)) {
        m_isKilled = true;
        m_child.kill();
    }
}

ProcessOutcome Process::outcome() {
    attend();
    ProcessOutcome outcome;
    const pid_t id = m_child.id();
    outcome.waitStatus = m_child.reap();
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

ChildProcess::Streams Process::streams() const {
    if (m_setting.printed == Printed_e::Inherited) return {-1, -1, m_setting.readsNothing};
    const bool isOne = m_setting.printed == Printed_e::CaughtAsOne;
    return {m_out.writer(), isOne ? m_out.writer() : m_err.writer(), true};
}

void Process::handOn(const Message& message) {
    if (m_notes == nullptr) return;
    if (message.isAsked) {
        m_mailbox.answer(m_notes->ask(message.kind, message.text));
    } else {
        m_notes->tell(message.kind, message.text);
    }
}

}  // namespace vexa::runner
