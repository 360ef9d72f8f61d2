#include "contract/MutexHolds.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>

namespace vexa::standin {

void MutexHolds::lockBegan(const void* mutex, const Moment& now, FindingLog& findings) const {
    if (!m_mutexes.isLiving(mutex)) return;
    if (const Moment* const hold = holdOf(mutex, now.thread)) {
        findings.add("mutex-locked-twice",
                     "thread " + std::to_string(now.thread) + " locked " + m_mutexes.labelOf(mutex) +
                         ", which it already holds; a real host would wait forever",
                     now, hold);
    }
}

void MutexHolds::lockEnded(const void* mutex, const Moment& now) {
    if (m_mutexes.isLiving(mutex) && holdOf(mutex, now.thread) == nullptr) m_holds[mutex].push_back(now.withStack());
}

void MutexHolds::unlockBegan(const void* mutex, const Moment& now, FindingLog& findings) {
    if (!m_mutexes.isLiving(mutex)) return;
    const auto found = m_holds.find(mutex);
    if (found == m_holds.end()) {
        findings.add("mutex-not-held", m_mutexes.labelOf(mutex) + " was unlocked, but it was not locked", now,
                     &m_mutexes.originOf(mutex));
        return;
    }
    std::vector<Moment>& holds = found->second;
    const auto mine =
        std::find_if(holds.begin(), holds.end(), [&](const Moment& hold) { return hold.thread == now.thread; });
    if (mine == holds.end()) {
        findings.add("mutex-not-held",
                     m_mutexes.labelOf(mutex) + " was unlocked by thread " + std::to_string(now.thread) +
                         ", but thread " + std::to_string(holds.front().thread) + " holds it",
                     now, &holds.front());
        return;
    }
    holds.erase(mine);
    if (holds.empty()) m_holds.erase(found);
}

void MutexHolds::freeBegan(const void* mutex, const Moment& now, FindingLog& findings) {
    const auto found = m_holds.find(mutex);
    if (found == m_holds.end()) return;
    findings.add("mutex-freed-locked", m_mutexes.labelOf(mutex) + " was freed while it was locked", now,
                 &found->second.front());
    m_holds.erase(found);
}

void MutexHolds::endOfEntry(const Moment& now, FindingLog& findings) {
    for (auto entry = m_holds.begin(); entry != m_holds.end();) {
        std::vector<Moment>& holds = entry->second;
        const auto left = std::find_if(holds.begin(), holds.end(), [&](const Moment& hold) {
            return hold.thread == now.thread && hold.entry == now.entry;
        });
        if (left != holds.end()) {
            findings.add("mutex-left-locked", nameOf(*now.entry) + " did not unlock " + m_mutexes.labelOf(entry->first),
                         now, &*left);
            holds.erase(left);
        }
        entry = holds.empty() ? m_holds.erase(entry) : std::next(entry);
    }
}

const Moment* MutexHolds::holdOf(const void* mutex, std::size_t thread) const {
    const auto found = m_holds.find(mutex);
    if (found == m_holds.end()) return nullptr;
    for (const Moment& hold : found->second) {
        if (hold.thread == thread) return &hold;
    }
    return nullptr;
}

}  // namespace vexa::standin
