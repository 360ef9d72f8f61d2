#pragma once

#include <mutex>
#include <new>
#include <string>

#include "system/files/LiveFile.h"
#include "system/processes/OwnProcess.h"

namespace vexa::runner {

/// The file of a trace. Any thread may write to it until it is finished. A process that was forked writes nothing: its
/// calls would mix with those of this process.
///
/// If memory runs out, nothing more is written, because a trace with gaps would mislead.
///
/// Errors:  OutputError from construction and finish().
/// Threads: any.
class TraceFile {
public:
    TraceFile(const std::string& path, Append_e how) : m_file(path, how) {}

    /// Calls \p action, which writes to the file, in one thread at a time. Does nothing after finish().
    template <class Action>
    void write(const Action& action) {
        if (!m_process.isThis()) return;  // first, because another thread may have held the lock during the fork
        const std::lock_guard<std::mutex> lock(m_guard);
        if (!m_isFinished) attempt(action);
    }

    /// Calls \p action, which writes the end, and closes the file. Call it once.
    template <class Action>
    void finish(const Action& action) {
        if (!m_process.isThis()) return;
        const std::lock_guard<std::mutex> lock(m_guard);
        attempt(action);
        m_isFinished = true;
        m_file.close();
    }

private:
    template <class Action>
    void attempt(const Action& action) {
        try {
            action(m_file);
        } catch (const std::bad_alloc&) {
            m_file.giveUp("out of memory");
        }
    }

    OwnProcess m_process;
    std::mutex m_guard;
    LiveFile m_file;
    bool m_isFinished = false;
};

}  // namespace vexa::runner
