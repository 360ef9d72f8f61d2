#pragma once

#include <unordered_map>
#include <vector>

#include "contract/FindingLog.h"
#include "contract/HandleLedger.h"
#include "contract/Moment.h"

namespace vexa::standin {

/// Which threads hold which mutexes, as far as the threads can tell: what the host was told to fail at counts as done.
class MutexHolds {
public:
    explicit MutexHolds(HandleLedger& mutexes) : m_mutexes(mutexes) {}

    void lockBegan(const void* mutex, const Moment& now, FindingLog& findings) const;
    void lockEnded(const void* mutex, const Moment& now);
    void unlockBegan(const void* mutex, const Moment& now, FindingLog& findings);
    void freeBegan(const void* mutex, const Moment& now, FindingLog& findings);
    /// Judges what the thread that was entered holds at the end, of what it locked on the way.
    void endOfEntry(const Moment& now, FindingLog& findings);

private:
    const Moment* holdOf(const void* mutex, std::size_t thread) const;

    HandleLedger& m_mutexes;
    std::unordered_map<const void*, std::vector<Moment>> m_holds;  // none of them empty
};

}  // namespace vexa::standin
