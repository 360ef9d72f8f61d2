#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <thread>
#include <vector>

#include "vexa/VexaUtil.h"

namespace vexa::standin {

/// The host's lock. One thread holds it at a time, and may take it several times, under the identities of add-ons.
///
/// Identities are compared and never dereferenced, so any value may be passed.
class HostLock {
public:
    /// Takes the lock once more; waits while another thread holds it.
    void start(const AddOnList_s* identity);
    /// Releases the lock that the calling thread took last under \p identity. Ignored if there is none.
    void finish(const AddOnList_s* identity);

    /// Returns how many times the calling thread holds the lock.
    std::size_t depth() const;
    /// Releases the lock of the calling thread until the thread holds it \p depth times.
    void releaseDownTo(std::size_t depth);

    /// Makes the lock unusable: threads that wait for it, now or later, continue without it.
    void endWaiting();

private:
    bool isMine() const { return m_owner == std::this_thread::get_id(); }
    void passOnWhenFree();

    mutable std::mutex m_guard;
    std::condition_variable m_free;
    std::thread::id m_owner;  // the default id while the lock is free
    std::vector<const AddOnList_s*> m_holds;
    bool m_hasEnded = false;
};

}  // namespace vexa::standin
