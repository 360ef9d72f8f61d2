#pragma once

#include <atomic>
#include <cstddef>
#include <mutex>
#include <string>
#include <vector>

#include "vexastandin/Call.h"

namespace vexa::standin {

/// The calls of the host's C functions.
///
/// A call is added when it starts, so that the order is right for calls that block and for calls inside calls.
/// Threads: any thread may call the functions.
class CallLog {
public:
    /// Returns true if calls are kept.
    bool keeps() const { return m_keeps; }
    void setKeeps(bool keeps) { m_keeps = keeps; }

    /// Adds a call that starts.
    /// \return its place, for end().
    std::size_t begin(Call call);
    /// Adds the result to the call at \p place, unless clear() was called meanwhile.
    void end(std::size_t place, std::string result);

    std::vector<Call> all() const;
    /// Deletes the calls so far.
    void clear();

private:
    mutable std::mutex m_guard;
    std::vector<Call> m_calls;
    std::size_t m_forgotten = 0;  // clear() does not reset places
    std::atomic<bool> m_keeps{true};
};

}  // namespace vexa::standin
