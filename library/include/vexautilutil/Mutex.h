#pragma once

#include "vexautilutil/Export.h"

struct ThreadMutex_s;

namespace vexa::vexautilutil {

/// A mutex of the host. It works with `std::lock_guard`, `std::unique_lock`, and `std::scoped_lock` of a single mutex.
///
///     const std::lock_guard<Mutex> lock(m_mutex);
///
/// The mutex is not recursive. Unlock it before it is destroyed.
/// Threads: any thread may call lock(). The thread that locked the mutex must unlock it.
class VEXAUTILUTIL_API Mutex {
public:
    /// Allocates the mutex.
    /// \throws std::bad_alloc if the host cannot allocate one.
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
