#pragma once

#include <unordered_map>
#include <vector>

#include "contract/FindingLog.h"
#include "contract/HandleLedger.h"
#include "contract/Moment.h"

namespace vexa::standin {

/// Remembers which thread holds which mutex from the view of the add-on: a call that the host was told to fail counts,
/// too.
class MutexHolds {
public:
    explicit MutexHolds(HandleLedger& mutexes) : m_mutexes(mutexes) {}

    void lockBegan(const void* mutex, const Moment& now, FindingLog& findings) const;
    void lockEnded(const void* mutex, const Moment& now);
    void unlockBegan(const void* mutex, const Moment& now, FindingLog& findings);
    void freeBegan(const void* mutex, const Moment& now, FindingLog& findings);
    /// Reports mutexes that the thread of the entry has locked in this entry and not unlocked.
    void endOfEntry(const Moment& now, FindingLog& findings);

private:
    const Moment* holdOf(const void* mutex, std::size_t thread) const;

    HandleLedger& m_mutexes;
    std::unordered_map<const void*, std::vector<Moment>> m_holds;  // no list is empty
};

}  // namespace vexa::standin
