#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <thread>
#include <vector>

#include "vexa/VexaUtil.h"

namespace vexa::standin {

/// The host's lock: one thread holds it at a time, as often as it likes, under the identities of add-ons.
///
/// An identity is compared, never looked into, so any will do.
class HostLock {
public:
    /// Takes the lock once more; waits while another thread holds it.
    void start(const AddOnList_s* identity);
    /// Gives back what the calling thread took last under \p identity; nothing when there is no such.
    void finish(const AddOnList_s* identity);

    /// How often the calling thread holds the lock.
    std::size_t depth() const;
    /// Takes the lock from the calling thread until it holds it \p depth times.
    void releaseDownTo(std::size_t depth);

    /// Ends its use: who waits for it, or asks for it from now on, goes on without it.
    void endWaiting();

private:
    bool isMine() const { return m_owner == std::this_thread::get_id(); }
    void passOnWhenFree();

    mutable std::mutex m_guard;
    std::condition_variable m_free;
    std::thread::id m_owner;  // no thread's id while the lock is free
    std::vector<const AddOnList_s*> m_holds;
    bool m_hasEnded = false;
};

}  // namespace vexa::standin
