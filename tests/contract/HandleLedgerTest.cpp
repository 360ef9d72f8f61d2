#include "contract/HandleLedger.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vexa::standin {
namespace {

constexpr HandleKind kSets = {"set", "a set", "sets", "leaked-set"};

bool isAny(const Entry&) { return true; }

class HandleLedgerTest : public testing::Test {
protected:
    static Moment moment(std::size_t call, std::optional<HostFunction> function) {
        return {std::make_shared<Entry>(), 1, call, function};
    }

    std::vector<std::string> findings() const {
        std::vector<std::string> texts;
        for (const Finding& finding : m_findings.kept()) texts.push_back(finding.rule + ": " + finding.message);
        return texts;
    }

    HandleLedger m_ledger{kSets};
    FindingLog m_findings;
    const Moment m_call = moment(1, HostFunction::VexaUtilSetAlloc);
    const Moment m_end = moment(0, std::nullopt);
    const int m_object = 0;  // its address stands for a handle
    const void* const m_handle = &m_object;
};

TEST_F(HandleLedgerTest, HandleOfTheAddOnHasAnotherNameThanOneThatWasLent) {
    m_ledger.allocated(m_handle, 3, m_call);
    EXPECT_EQ(m_ledger.nameOf(m_handle), "set#3");
    m_ledger.lent(m_handle, m_end);
    EXPECT_EQ(m_ledger.nameOf(m_handle), "style-set#1");
}

TEST_F(HandleLedgerTest, HandleThatWasTakenBackIsFreed) {
    m_ledger.lent(m_handle, m_end);
    m_ledger.takenBack(m_handle, m_end);
    EXPECT_FALSE(m_ledger.isLiving(m_handle));
    EXPECT_TRUE(m_ledger.isFreed(m_handle));
}

TEST_F(HandleLedgerTest, TakingBackAHandleThatWasNeverLentChangesNothing) {
    m_ledger.takenBack(m_handle, m_end);
    EXPECT_FALSE(m_ledger.isFreed(m_handle));
}

TEST_F(HandleLedgerTest, LeakIsReportedOnce) {
    m_ledger.allocated(m_handle, 1, m_call);
    m_ledger.reportLeaks(isAny, m_end, m_findings);
    m_ledger.reportLeaks(isAny, m_end, m_findings);
    EXPECT_EQ(findings(), std::vector<std::string>{"leaked-set: the command did not free a set: set#1 (call 1)"});
}

TEST_F(HandleLedgerTest, HostIsTheSubjectOfAUseOutsideOfItsFunctions) {
    m_ledger.checkUse(nullptr, m_end, m_findings);
    EXPECT_EQ(findings(), std::vector<std::string>{"null-handle: the host was given a null handle for a set"});
}

}  // namespace
}  // namespace vexa::standin
