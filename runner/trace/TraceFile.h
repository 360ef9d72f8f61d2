#pragma once

#include <mutex>
#include <new>
#include <string>

#include "system/files/LiveFile.h"

namespace vexa::runner {

/// The file of a trace, which any thread may write to until it is finished.
///
/// When memory runs out, what follows is left out: half of what belongs together would mislead.
///
/// Errors:  OutputError from construction and finish().
/// Threads: any.
class TraceFile {
public:
    explicit TraceFile(const std::string& path) : m_file(path) {}

    /// Has \p action write to the file, alone among threads; does nothing once it is finished.
    template <class Action>
    void write(const Action& action) {
        const std::lock_guard<std::mutex> lock(m_guard);
        if (!m_isFinished) attempt(action);
    }

    /// Has \p action write the end, and closes the file. To be called once.
    template <class Action>
    void finish(const Action& action) {
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

    std::mutex m_guard;
    LiveFile m_file;
    bool m_isFinished = false;
};

}  // namespace vexa::runner
