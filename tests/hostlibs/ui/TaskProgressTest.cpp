#include "vexa/ui/TaskProgress.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <limits>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "support/VirtualSlots.h"
#include "vexa/InvalidArgumentException.h"

namespace vexa::ui {
namespace {

constexpr long kLargest = std::numeric_limits<long>::max();

class RecordingBar : public ProgressBarInterface {
public:
    void start(const std::string& message) override { calls.push_back("start " + message); }
    void finish() override {
        calls.emplace_back("finish");
        if (throwsAtFinish) throw std::runtime_error("finish");
    }
    void setStatusMessage(const std::string& message) override { calls.push_back("message " + message); }
    void setPercentDone(int percent) override { percentages.push_back(percent); }
    bool isInterrupted() const override { return interrupted; }

    std::vector<std::string> calls;
    std::vector<int> percentages;
    bool interrupted = false;
    bool throwsAtFinish = false;
};

class TaskProgressTest : public testing::Test {
protected:
    std::shared_ptr<RecordingBar> m_bar = std::make_shared<RecordingBar>();
};

TEST_F(TaskProgressTest, PassesStartMessageAndFinishOn) {
    TaskProgress progress(m_bar, 10);
    progress.start("Reading");
    progress.setStatusMessage("Still reading");
    progress.finish();
    EXPECT_EQ(m_bar->calls, (std::vector<std::string>{"start Reading", "message Still reading", "finish"}));
}

TEST_F(TaskProgressTest, TellsWholePercentagesWhenTheyChange) {
    TaskProgress progress(m_bar, 200);
    for (int step = 0; step < 5; ++step) progress.advance();
    EXPECT_EQ(m_bar->percentages, (std::vector<int>{1, 2}));
}

TEST_F(TaskProgressTest, RoundsDown) {
    TaskProgress progress(m_bar, 3);
    progress.advance();
    progress.advance();
    EXPECT_EQ(m_bar->percentages, (std::vector<int>{33, 66}));
}

TEST_F(TaskProgressTest, SkipsPercentagesThatALargeStepPasses) {
    TaskProgress progress(m_bar, 100);
    progress.advance(42);
    EXPECT_EQ(m_bar->percentages, std::vector<int>{42});
}

TEST_F(TaskProgressTest, NeverPassesOneHundredPercent) {
    TaskProgress progress(m_bar, 10);
    progress.advance(11);
    progress.advance(kLargest);
    progress.advance();
    EXPECT_EQ(m_bar->percentages, std::vector<int>{100});
}

TEST_F(TaskProgressTest, IgnoresStepsThatAreNone) {
    TaskProgress progress(m_bar, 10);
    progress.advance(5);
    progress.advance(0);
    progress.advance(-3);
    progress.advance(std::numeric_limits<long>::min());
    progress.advance(1);
    EXPECT_EQ(m_bar->percentages, (std::vector<int>{50, 60}));
}

TEST_F(TaskProgressTest, TakesACountBelowOneForOne) {
    for (const long count : {0L, -1L, std::numeric_limits<long>::min()}) {
        m_bar->percentages.clear();
        TaskProgress progress(m_bar, count);
        progress.advance();
        EXPECT_EQ(m_bar->percentages, std::vector<int>{100}) << count;
    }
}

TEST_F(TaskProgressTest, CountsTheLargestTaskWithoutOverflow) {
    TaskProgress progress(m_bar, kLargest);
    progress.advance(kLargest / 2);
    progress.advance(kLargest / 2);
    progress.advance(1);
    EXPECT_EQ(m_bar->percentages, (std::vector<int>{49, 99, 100}));
}

TEST_F(TaskProgressTest, CountsStepsBeyondTheLargestTaskWithoutOverflow) {
    TaskProgress progress(m_bar, kLargest);
    progress.advance(kLargest / 2);
    progress.advance(kLargest);
    EXPECT_EQ(m_bar->percentages, (std::vector<int>{49, 100}));
}

TEST_F(TaskProgressTest, BeginsAnewWithEachStart) {
    TaskProgress progress(m_bar, 2);
    progress.start("first");
    progress.advance();
    progress.finish();
    progress.start("second");
    progress.advance();
    EXPECT_EQ(m_bar->percentages, (std::vector<int>{50, 50}));
}

TEST_F(TaskProgressTest, TellsSmallerPercentagesAgainAfterANewStart) {
    TaskProgress progress(m_bar, 4);
    progress.start("first");
    progress.advance(3);
    progress.start("second");
    progress.advance();
    EXPECT_EQ(m_bar->percentages, (std::vector<int>{75, 25}));
}

TEST_F(TaskProgressTest, TellsNothingBeforeTheFirstWholePercentageOfANewStart) {
    TaskProgress progress(m_bar, 1000);
    progress.start("Reading");
    progress.advance(9);
    EXPECT_TRUE(m_bar->percentages.empty());
    progress.advance(1);
    EXPECT_EQ(m_bar->percentages, std::vector<int>{1});
}

TEST_F(TaskProgressTest, AsksTheBarWhetherItIsInterrupted) {
    const TaskProgress progress(m_bar, 2);
    EXPECT_FALSE(progress.isInterrupted());
    m_bar->interrupted = true;
    EXPECT_TRUE(progress.isInterrupted());
}

TEST_F(TaskProgressTest, FinishesAStartedTaskWhenDestroyed) {
    { TaskProgress(m_bar, 2).start("x"); }
    EXPECT_EQ(m_bar->calls, (std::vector<std::string>{"start x", "finish"}));
}

TEST_F(TaskProgressTest, FinishesOnce) {
    {
        TaskProgress progress(m_bar, 2);
        progress.start("x");
        progress.finish();
        progress.finish();
    }
    EXPECT_EQ(m_bar->calls, (std::vector<std::string>{"start x", "finish"}));
}

TEST_F(TaskProgressTest, DoesNotFinishWhatWasNotStarted) {
    { TaskProgress(m_bar, 2).finish(); }
    EXPECT_TRUE(m_bar->calls.empty());
}

TEST_F(TaskProgressTest, ThrowsNothingFromItsDestructor) {
    m_bar->throwsAtFinish = true;
    { TaskProgress(m_bar, 2).start("x"); }
    EXPECT_EQ(m_bar->calls.back(), "finish");
}

TEST_F(TaskProgressTest, LetsTheBarsExceptionsThroughElsewhere) {
    m_bar->throwsAtFinish = true;
    TaskProgress progress(m_bar, 2);
    progress.start("x");
    EXPECT_THROW(progress.finish(), std::runtime_error);
}

TEST_F(TaskProgressTest, RefusesANullBar) {
    try {
        const TaskProgress progress(nullptr, 1);
        FAIL() << "accepted";
    } catch (const InvalidArgumentException& refusal) {
        EXPECT_EQ(refusal.message(), "Expected a progress bar, but got none");
    }
}

TEST_F(TaskProgressTest, SharesItsBar) {
    {
        const TaskProgress progress(m_bar, 1);
        EXPECT_EQ(m_bar.use_count(), 2);
    }
    EXPECT_EQ(m_bar.use_count(), 1);
}

TEST_F(TaskProgressTest, IsNotCopied) {
    static_assert(!std::is_copy_constructible_v<TaskProgress>);
    static_assert(!std::is_copy_assignable_v<TaskProgress>);
    SUCCEED();
}

RC_GTEST_PROP(TaskProgress, TellsThePercentageOfWhatIsDone, ()) {
    const auto count = *rc::gen::inRange(1L, 5000L);
    const auto steps = *rc::gen::container<std::vector<long>>(rc::gen::inRange(0L, 600L));
    const auto bar = std::make_shared<RecordingBar>();
    TaskProgress progress(bar, count);
    std::vector<int> expected;
    long done = 0;
    for (const long step : steps) {
        const int before = static_cast<int>(done * 100 / count);
        done = std::min(done + step, count);
        const int after = static_cast<int>(done * 100 / count);
        if (after != before) expected.push_back(after);
        progress.advance(step);
    }
    RC_ASSERT(bar->percentages == expected);
}

TEST(ProgressBarInterface, KeepsTheSlotOrder) {
    EXPECT_EQ(tests::slotOf(&ProgressBarInterface::start), 0);
    EXPECT_EQ(tests::slotOf(&ProgressBarInterface::finish), 1);
    EXPECT_EQ(tests::slotOf(&ProgressBarInterface::setStatusMessage), 2);
    EXPECT_EQ(tests::slotOf(&ProgressBarInterface::setPercentDone), 3);
    EXPECT_EQ(tests::slotOf(&ProgressBarInterface::isInterrupted), 4);
}

}  // namespace
}  // namespace vexa::ui
