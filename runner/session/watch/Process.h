#pragma once

#include <poll.h>

#include <chrono>
#include <cstddef>
#include <vector>

#include "session/watch/Channel.h"
#include "session/watch/Drain.h"
#include "session/watch/Processes.h"
#include "system/processes/ChildProcess.h"

namespace vexa::runner {

/// One of the processes of runInProcesses(), as this process sees it.
class Process {
public:
    /// Starts it.
    /// \throws std::system_error
    Process(std::size_t index, const ProcessSetting& setting, ProcessWorkInterface& work,
            const AwaitedSignals& signals);

    std::size_t index() const { return m_index; }
    ProcessBox& box() const { return *m_box; }
    const ChildProcess& child() const { return m_child; }

    /// Adds the descriptors to wait for.
    void addTo(std::vector<pollfd>& polled) const;
    /// Takes its notes and what it printed, and kills it if it is late.
    void attend();

    bool hasEnded() const { return m_child.hasEnded(); }
    /// To be called once, when it has ended.
    ProcessOutcome outcome();

private:
    ChildProcess::Streams streams() const;
    void handOn(const Message& message);

    std::size_t m_index;
    const ProcessSetting& m_setting;
    SharedMemory<ProcessBox> m_box;
    Connection m_connection;
    Mailbox m_mailbox{m_connection.parentEnd.get()};
    bool m_isOpen = true;
    Drain m_out;
    Drain m_err;
    NotesInterface* m_notes;
    std::chrono::steady_clock::time_point m_begin = std::chrono::steady_clock::now();
    bool m_isKilled = false;
    ChildProcess m_child;  // last: its process starts with all of the above
};

}  // namespace vexa::runner
