#pragma once

#include "vexautilutil/Export.h"

struct ThreadMutex_s;

namespace vexa::vexautilutil {

/// A mutex of the host, for `std::lock_guard`, `std::unique_lock` and `std::scoped_lock` (of one mutex).
///
///     const std::lock_guard<Mutex> lock(m_mutex);
///
/// Not recursive. Destroy it unlocked.
/// Threads: lock() and unlock() may be called from any thread; the thread that locked unlocks.
class VEXAUTILUTIL_API Mutex {
public:
    /// Allocates the mutex.
    /// \throws std::bad_alloc when the host has none to give.
    Mutex();
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;
    /// Frees the mutex.
    ~Mutex();

    /// Locks the mutex. Waits while another thread holds it.
    void lock();
    /// Unlocks the mutex.
    void unlock();

private:
    ThreadMutex_s* m_handle;
};

}  // namespace vexa::vexautilutil
