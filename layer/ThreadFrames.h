#pragma once

#include <array>
#include <cstddef>

#include "vexastandin/Observer.h"

namespace vexa::layer {

/// A call of the host, or an entry into an add-on, that a thread is in.
struct ThreadFrame {
    const void* address;       ///< of the frame in a stack; null for no frame
    standin::CallEvent* call;  ///< of a call that is traced
    std::size_t entry;         ///< the number of an entry; 0 for none
};

/// The frames of a thread, the innermost last.
///
/// The thread may leave a frame by an exception or a jump, which the layer neither catches nor sees. It finds out
/// later, by the addresses: a stack grows downwards. The thread may use several stacks.
///
/// Threads: each has its own. It has no destructor, because the program's C library would not call it.
class ThreadFrames {
public:
    static ThreadFrames& mine();

    /// \return false, with nothing done, if there are too many.
    bool push(const ThreadFrame& frame) {
        if (m_count == m_frames.size()) return false;
        m_frames[m_count++] = frame;
        return true;
    }
    /// Removes the innermost frame if the thread, which is at \p address now, must have left it.
    /// \return the removed one, if any.
    ThreadFrame popLeft(const void* address);
    /// Removes the frame at \p address.
    /// \return the removed one; no frame if it was not pushed.
    ThreadFrame pop(const void* address);

private:
    ThreadFrame popLast() { return m_frames[--m_count]; }

    std::array<ThreadFrame, 64> m_frames{};
    std::size_t m_count = 0;
};

}  // namespace vexa::layer
