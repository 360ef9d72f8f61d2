#include "objects/HostLock.h"

#include <algorithm>
#include <iterator>

namespace vexa::standin {

void HostLock::start(const AddOnList_s* identity) {
    std::unique_lock<std::mutex> lock(m_guard);
    m_free.wait(lock, [this] { return m_hasEnded || m_holds.empty() || isMine(); });
    if (m_hasEnded) return;
    m_holds.push_back(identity);
    m_owner = std::this_thread::get_id();
}

void HostLock::finish(const AddOnList_s* identity) {
    const std::lock_guard<std::mutex> lock(m_guard);
    if (!isMine()) return;
    const auto last = std::find(m_holds.rbegin(), m_holds.rend(), identity);
    if (last == m_holds.rend()) return;
    m_holds.erase(std::next(last).base());
    passOnWhenFree();
}

std::size_t HostLock::depth() const {
    const std::lock_guard<std::mutex> lock(m_guard);
    return isMine() ? m_holds.size() : 0;
}

void HostLock::releaseDownTo(std::size_t depth) {
    const std::lock_guard<std::mutex> lock(m_guard);
    if (!isMine() || m_holds.size() <= depth) return;
    m_holds.resize(depth);
    passOnWhenFree();
}

void HostLock::endWaiting() {
    const std::lock_guard<std::mutex> lock(m_guard);
    m_hasEnded = true;
    m_free.notify_all();
}

void HostLock::passOnWhenFree() {
    if (!m_holds.empty()) return;
    m_owner = std::thread::id();
    m_free.notify_one();
}

}  // namespace vexa::standin
