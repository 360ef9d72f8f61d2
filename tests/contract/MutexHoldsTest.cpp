#include "contract/MutexHolds.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vexa::standin {
namespace {

constexpr HandleKind kMutexes = {"mutex", "a mutex", "mutexes", "leaked-mutex"};

// A host whose mutex lets two threads in, as with a fault that makes locking fail.
class MutexHoldsTest : public testing::Test {
protected:
    MutexHoldsTest() {
        m_mutexes.allocated(&m_object, 1, by(1, HostFunction::VexaUtilThreadMutexAlloc));
        m_holds.lockEnded(&m_object, by(1, HostFunction::VexaUtilThreadMutexLock));
        m_holds.lockEnded(&m_object, by(2, HostFunction::VexaUtilThreadMutexLock));
    }

    Moment by(std::size_t thread, HostFunction function) const { return {m_entry, thread, 1, function}; }

    std::vector<std::string> unlockedBy(std::size_t thread) {
        m_holds.unlockBegan(&m_object, by(thread, HostFunction::VexaUtilThreadMutexUnlock), m_findings);
        std::vector<std::string> messages;
        for (const Finding& finding : m_findings.takeNew()) messages.push_back(finding.message);
        return messages;
    }

    using Messages = std::vector<std::string>;

    const std::shared_ptr<const Entry> m_entry = std::make_shared<Entry>();
    const int m_object = 0;  // its address stands for the mutex
    HandleLedger m_mutexes{kMutexes};
    MutexHolds m_holds{m_mutexes};
    FindingLog m_findings;
};

TEST_F(MutexHoldsTest, MutexThatTwoThreadsLockedIsHeldByTheSecondAfterTheFirstUnlocksIt) {
    EXPECT_EQ(unlockedBy(1), Messages{});
    EXPECT_EQ(unlockedBy(1), Messages{"mutex#1 was unlocked by thread 1, but thread 2 holds it"});
    EXPECT_EQ(unlockedBy(2), Messages{});
    EXPECT_EQ(unlockedBy(2), Messages{"mutex#1 was unlocked, but it was not locked"});
}

TEST_F(MutexHoldsTest, EndOfAThreadReportsOnlyTheHoldOfThisThread) {
    m_holds.endOfEntry({m_entry, 2, 0, std::nullopt}, m_findings);
    EXPECT_EQ(m_findings.takeNew().size(), 1U);
    EXPECT_EQ(unlockedBy(1), Messages{});
}

}  // namespace
}  // namespace vexa::standin
