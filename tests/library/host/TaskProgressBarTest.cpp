#include "vexautilutil/TaskProgressBar.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/FailingAllocator.h"
#include "vexastandin/Host.h"

namespace vexa::vexautilutil {
namespace {

using Calls = std::vector<std::string>;

class TaskProgressBar : public testing::Test {
protected:
    // Returns the status calls so far in a short form: "start text 1 1", "check 40", "text x", "finish".
    Calls statusCalls() const {
        Calls calls;
        for (const standin::Call& call : m_host.calls()) {
            if (call.function == "VexaUtilStatusStartPercentDone") calls.push_back("start " + call.arguments);
            if (call.function == "VexaUtilStatusCheckPercentDone") calls.push_back("check " + call.arguments);
            if (call.function == "VexaUtilStatusSetPercentDoneText") calls.push_back("text " + call.arguments);
            if (call.function == "VexaUtilStatusFinishPercentDone") calls.push_back("finish");
        }
        return calls;
    }

    standin::Host m_host;
};

TEST_F(TaskProgressBar, AsksForBatchModeOnceWhenMade) {
    const auto progress = createTaskProgressBar(10);
    progress->start("x");
    progress->advance();
    EXPECT_EQ(m_host.calledFunctions(), (Calls{"VexaUtilMacroIsBatchModeActive", "VexaUtilStatusStartPercentDone",
                                               "VexaUtilStatusCheckPercentDone"}));
}

TEST_F(TaskProgressBar, StartsWithTextStopButtonAndBar) {
    const auto progress = createTaskProgressBar(10);
    progress->start("Reading rows");
    EXPECT_EQ(statusCalls(), Calls{"start \"Reading rows\", 1, 1"});
}

TEST_F(TaskProgressBar, ShowsEachPercentageOnce) {
    const auto progress = createTaskProgressBar(4);
    progress->start("x");
    for (int step = 0; step < 4; ++step) progress->advance();
    EXPECT_EQ(statusCalls(), (Calls{"start \"x\", 1, 1", "check 25", "check 50", "check 75", "check 100"}));
}

TEST_F(TaskProgressBar, DoesNotSendZeroPercent) {
    const auto progress = createTaskProgressBar(1000);
    progress->start("x");
    progress->advance();
    EXPECT_EQ(statusCalls(), Calls{"start \"x\", 1, 1"});
}

TEST_F(TaskProgressBar, FinishesWithOneHundredPercentFirst) {
    const auto progress = createTaskProgressBar(10);
    progress->start("x");
    progress->advance(4);
    progress->finish();
    EXPECT_EQ(statusCalls(), (Calls{"start \"x\", 1, 1", "check 40", "check 100", "finish"}));
}

TEST_F(TaskProgressBar, FinishesAtOnceWhenAlreadyAtOneHundred) {
    const auto progress = createTaskProgressBar(1);
    progress->start("x");
    progress->advance();
    progress->finish();
    EXPECT_EQ(statusCalls(), (Calls{"start \"x\", 1, 1", "check 100", "finish"}));
}

TEST_F(TaskProgressBar, FinishesAStartedTaskWhenDestroyed) {
    createTaskProgressBar(1)->start("x");
    EXPECT_EQ(statusCalls(), (Calls{"start \"x\", 1, 1", "check 100", "finish"}));
}

TEST_F(TaskProgressBar, LeavesTheStatusLineAloneWhenNeverStarted) {
    createTaskProgressBar(1);
    EXPECT_TRUE(statusCalls().empty());
}

TEST_F(TaskProgressBar, KeepsItsPercentageOverANewStart) {
    const auto progress = createTaskProgressBar(1);
    progress->start("x");
    progress->finish();
    progress->start("y");
    progress->advance();
    progress->finish();
    EXPECT_EQ(statusCalls(), (Calls{"start \"x\", 1, 1", "check 100", "finish", "start \"y\", 1, 1", "finish"}));
}

TEST_F(TaskProgressBar, SendsATextOnlyWhenItChanges) {
    const auto progress = createTaskProgressBar(1);
    progress->setStatusMessage("");
    progress->start("x");
    progress->setStatusMessage("x");
    progress->setStatusMessage("y");
    progress->setStatusMessage("y");
    progress->setStatusMessage("");
    EXPECT_EQ(statusCalls(), (Calls{"start \"x\", 1, 1", "text \"y\"", "text \"\""}));
}

TEST_F(TaskProgressBar, IsInterruptedExactlyWhenTheHostAnswersFalse) {
    const auto progress = createTaskProgressBar(1);
    EXPECT_FALSE(progress->isInterrupted());
    m_host.failCall("VexaUtilStatusCheckPercentDone", 1, 0);
    EXPECT_TRUE(progress->isInterrupted());
    m_host.failCall("VexaUtilStatusCheckPercentDone", 1, 2);
    EXPECT_FALSE(progress->isInterrupted());
}

TEST_F(TaskProgressBar, AsksWithThePercentageLastShown) {
    const auto progress = createTaskProgressBar(10);
    progress->start("x");
    progress->isInterrupted();
    progress->advance(4);
    progress->isInterrupted();
    EXPECT_EQ(statusCalls(), (Calls{"start \"x\", 1, 1", "check 0", "check 40", "check 40"}));
}

TEST_F(TaskProgressBar, IgnoresTheAnswerToANewPercentage) {
    m_host.failCall("VexaUtilStatusCheckPercentDone", 1, 0);
    const auto progress = createTaskProgressBar(1);
    progress->start("x");
    progress->advance();
    EXPECT_FALSE(progress->isInterrupted());
}

TEST_F(TaskProgressBar, MakesNoStatusCallInBatchMode) {
    m_host.setBatchMode(true);
    const auto progress = createTaskProgressBar(2);
    progress->start("x");
    progress->setStatusMessage("y");
    progress->advance();
    EXPECT_FALSE(progress->isInterrupted());
    progress->finish();
    EXPECT_EQ(m_host.calledFunctions(), Calls{"VexaUtilMacroIsBatchModeActive"});
}

TEST_F(TaskProgressBar, StaysSilentWhenBatchModeEndsLater) {
    m_host.setBatchMode(true);
    const auto progress = createTaskProgressBar(2);
    m_host.setBatchMode(false);
    progress->start("x");
    EXPECT_TRUE(statusCalls().empty());
}

TEST_F(TaskProgressBar, StaysActiveWhenBatchModeBeginsLater) {
    const auto progress = createTaskProgressBar(2);
    m_host.setBatchMode(true);
    progress->start("x");
    EXPECT_EQ(statusCalls(), Calls{"start \"x\", 1, 1"});
}

TEST_F(TaskProgressBar, TakesOnlyExactlyOneForBatchMode) {
    m_host.failCall("VexaUtilMacroIsBatchModeActive", 1, 2);
    const auto progress = createTaskProgressBar(2);
    progress->start("x");
    EXPECT_EQ(statusCalls(), Calls{"start \"x\", 1, 1"});
}

TEST_F(TaskProgressBar, LetsOtherExceptionsThanALackOfMemoryThrough) {
    const auto progress = createTaskProgressBar(2);
    m_host.throwFromCall("VexaUtilStatusStartPercentDone");
    EXPECT_THROW(progress->start("x"), std::runtime_error);
    m_host.throwFromCall("VexaUtilStatusSetPercentDoneText");
    EXPECT_THROW(progress->setStatusMessage("x"), std::runtime_error);
}

TEST_F(TaskProgressBar, DoesNotTakeAPercentageForShownWhenTheHostThrows) {
    const auto progress = createTaskProgressBar(2);
    m_host.throwFromCall("VexaUtilStatusCheckPercentDone");
    EXPECT_THROW(progress->advance(), std::runtime_error);
    m_host.clearCalls();
    progress->isInterrupted();
    EXPECT_EQ(statusCalls(), Calls{"check 0"});
}

TEST_F(TaskProgressBar, TakesTheLineDownWhenTheHostThrowsFromTheLastPercentage) {
    const auto progress = createTaskProgressBar(2);
    progress->start("x");
    m_host.throwFromCall("VexaUtilStatusCheckPercentDone");
    EXPECT_THROW(progress->finish(), std::runtime_error);
    EXPECT_FALSE(m_host.statusLine().active);
}

TEST_F(TaskProgressBar, DoesNotTakeATextForShownWhenTheHostThrows) {
    const auto progress = createTaskProgressBar(2);
    m_host.throwFromCall("VexaUtilStatusStartPercentDone");
    EXPECT_THROW(progress->start("x"), std::runtime_error);
    m_host.throwFromCall("VexaUtilStatusSetPercentDoneText");
    EXPECT_THROW(progress->setStatusMessage("x"), std::runtime_error);
    m_host.clearCalls();
    progress->setStatusMessage("x");
    EXPECT_EQ(statusCalls(), Calls{"text \"x\""});
}

TEST_F(TaskProgressBar, SwallowsALackOfMemoryForItsText) {
    const std::string message = "a message that is too long to be kept without an allocation";
    m_host.setKeepsCalls(false);  // so that the host itself does not allocate
    const auto progress = createTaskProgressBar(2);
    bool failed = false;
    {
        const tests::FailingAllocator failing(0, tests::Failing::EverAfter);
        progress->start(message);
        failed = tests::FailingAllocator::hasFailed();
    }
    EXPECT_TRUE(failed);
    m_host.setKeepsCalls(true);
    progress->setStatusMessage(message);
    EXPECT_EQ(statusCalls().size(), 1u) << "the message was not kept, so it counts as new";
    progress->setStatusMessage(message);
    EXPECT_EQ(statusCalls().size(), 1u);
}

TEST_F(TaskProgressBar, SendsATextAgainThatItHadNoMemoryToKeep) {
    const std::string message = "a message that is too long to be kept without an allocation";
    m_host.setKeepsCalls(false);  // so that the host itself does not allocate
    const auto progress = createTaskProgressBar(2);
    bool failed = false;
    {
        const tests::FailingAllocator failing(0, tests::Failing::EverAfter);
        progress->setStatusMessage(message);
        failed = tests::FailingAllocator::hasFailed();
    }
    EXPECT_TRUE(failed);
    m_host.setKeepsCalls(true);
    progress->setStatusMessage(message);
    EXPECT_EQ(statusCalls().size(), 1u);
}

TEST_F(TaskProgressBar, ReleasesEverythingWhenMakingItFails) {
    for (const auto failing : {tests::Failing::Once, tests::Failing::EverAfter}) {
        m_host.setKeepsCalls(false);
        const long before = tests::FailingAllocator::liveBlocks();
        const long points = tests::sweepAllocations(failing, [](long allowed, tests::Failing how) {
            bool refused = false;
            const tests::FailingAllocator allocator(allowed, how);
            try {
                createTaskProgressBar(2);
                createNoopTaskProgressBar();
            } catch (const std::bad_alloc&) {
                refused = true;
            }
            return refused;
        });
        EXPECT_GT(points, 0);
        EXPECT_EQ(tests::FailingAllocator::liveBlocks(), before);
    }
}

TEST_F(TaskProgressBar, PassesItsCountOn) {
    const auto progress = createTaskProgressBar(200);
    progress->start("x");
    progress->advance();
    EXPECT_EQ(statusCalls().size(), 1u) << "one of 200 is no whole percentage";
    progress->advance();
    EXPECT_EQ(statusCalls().back(), "check 1");
}

TEST_F(TaskProgressBar, OfNothingCallsNobody) {
    const auto progress = createNoopTaskProgressBar();
    progress->start("x");
    progress->setStatusMessage("y");
    progress->advance(50);
    EXPECT_FALSE(progress->isInterrupted());
    progress->finish();
    EXPECT_TRUE(m_host.calls().empty());
}

}  // namespace
}  // namespace vexa::vexautilutil
