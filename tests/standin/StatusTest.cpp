#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "vexa/InvalidArgumentException.h"
#include "vexa/VexaUtil.h"
#include "vexastandin/Host.h"

namespace vexa::standin {

// For the messages of failed tests.
static std::ostream& operator<<(std::ostream& out, const StatusLine& line) {
    return out << '{' << line.text << ' ' << line.percent << "% button:" << line.showStopButton
               << " bar:" << line.showBar << " active:" << line.active << '}';
}

namespace {

using History = std::vector<StatusLine>;

// ---- The status line

TEST(StatusLine, IsDownAtFirst) {
    const Host host;
    EXPECT_EQ(host.statusLine(), StatusLine());
    EXPECT_EQ(host.statusHistory(), History());
}

TEST(StatusLine, DiffersByEachOfItsParts) {
    const StatusLine line{"a", 1, false, false, false};
    EXPECT_FALSE(line != line);
    for (const StatusLine& other : {StatusLine{"b", 1, false, false, false}, StatusLine{"a", 2, false, false, false},
                                    StatusLine{"a", 1, true, false, false}, StatusLine{"a", 1, false, true, false},
                                    StatusLine{"a", 1, false, false, true}}) {
        EXPECT_TRUE(line != other) << other;
    }
}

TEST(StatusLine, FollowsTheCalls) {
    const Host host;
    VexaUtilStatusStartPercentDone("Reading", 1, 0);
    EXPECT_EQ(host.statusLine(), (StatusLine{"Reading", 0, true, false, true}));
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(40), 1);
    EXPECT_EQ(host.statusLine(), (StatusLine{"Reading", 40, true, false, true}));
    VexaUtilStatusSetPercentDoneText("Sorting");
    EXPECT_EQ(host.statusLine(), (StatusLine{"Sorting", 40, true, false, true}));
    VexaUtilStatusFinishPercentDone();
    EXPECT_EQ(host.statusLine(), (StatusLine{"Sorting", 40, true, false, false}));
}

TEST(StatusLine, ShowsTheButtonAndTheBarAsAskedFor) {
    const Host host;
    VexaUtilStatusStartPercentDone("a", 0, 1);
    EXPECT_EQ(host.statusLine(), (StatusLine{"a", 0, false, true, true}));
}

TEST(StatusLine, TakesNoTextForAnEmptyOne) {
    const Host host;
    VexaUtilStatusStartPercentDone(nullptr, 1, 1);
    EXPECT_EQ(host.statusLine().text, "");
    VexaUtilStatusSetPercentDoneText("a");
    VexaUtilStatusSetPercentDoneText(nullptr);
    EXPECT_EQ(host.statusLine().text, "");
}

TEST(StatusLine, KeepsThePercentageWithinItsLimits) {
    const Host host;
    VexaUtilStatusStartPercentDone("a", 1, 1);
    struct Case {
        int given;
        int shown;
    };
    for (const Case& c : {Case{101, 100}, Case{100, 100}, Case{1, 1}, Case{-1, 0}, Case{0, 0}}) {
        VexaUtilStatusCheckPercentDone(c.given);
        EXPECT_EQ(host.statusLine().percent, c.shown) << c.given;
    }
}

TEST(StatusLine, ChangesOnlyWhileItIsUp) {
    const Host host;
    VexaUtilStatusCheckPercentDone(40);
    VexaUtilStatusSetPercentDoneText("a");
    VexaUtilStatusFinishPercentDone();
    EXPECT_EQ(host.statusLine(), StatusLine());
    EXPECT_EQ(host.statusHistory(), History());
}

TEST(StatusLine, BeginsAnewWithEachStart) {
    const Host host;
    VexaUtilStatusStartPercentDone("a", 1, 1);
    VexaUtilStatusCheckPercentDone(40);
    VexaUtilStatusStartPercentDone("b", 0, 0);
    EXPECT_EQ(host.statusLine(), (StatusLine{"b", 0, false, false, true}));
}

TEST(StatusLine, IsLeftAloneByACallThatWasToldToFail) {
    Host host;
    VexaUtilStatusStartPercentDone("a", 1, 1);
    host.failCall("VexaUtilStatusCheckPercentDone");
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(40), 0);
    EXPECT_EQ(host.statusLine().percent, 0);
}

// ---- Its history, and showing it

TEST(StatusHistory, HoldsEachChangeInOrder) {
    const Host host;
    VexaUtilStatusStartPercentDone("a", 1, 1);
    VexaUtilStatusCheckPercentDone(0);
    VexaUtilStatusCheckPercentDone(40);
    VexaUtilStatusCheckPercentDone(40);
    VexaUtilStatusSetPercentDoneText("a");
    VexaUtilStatusSetPercentDoneText("b");
    VexaUtilStatusFinishPercentDone();
    VexaUtilStatusFinishPercentDone();
    EXPECT_EQ(host.statusHistory(), History({{"a", 0, true, true, true},
                                             {"a", 40, true, true, true},
                                             {"b", 40, true, true, true},
                                             {"b", 40, true, true, false}}));
}

TEST(StatusHistory, IsNotKeptWhereCallsAreNot) {
    Host host;
    host.setKeepsCalls(false);
    VexaUtilStatusStartPercentDone("a", 1, 1);
    EXPECT_EQ(host.statusHistory(), History());
    EXPECT_EQ(host.statusLine().text, "a");
    host.setKeepsCalls(true);
    VexaUtilStatusFinishPercentDone();
    EXPECT_EQ(host.statusHistory(), History({{"a", 0, true, true, false}}));
}

TEST(OnStatus, IsCalledWithEachChangeOnTheCallingThread) {
    Host host;
    History shown;
    std::vector<std::thread::id> threads;
    host.onStatus([&](const StatusLine& line) {
        shown.push_back(line);
        threads.push_back(std::this_thread::get_id());
    });
    VexaUtilStatusStartPercentDone("a", 1, 1);
    VexaUtilStatusCheckPercentDone(0);
    std::thread caller([] { VexaUtilStatusCheckPercentDone(40); });
    const std::thread::id callersId = caller.get_id();
    caller.join();
    EXPECT_EQ(shown, host.statusHistory());
    EXPECT_EQ(threads, std::vector<std::thread::id>({std::this_thread::get_id(), callersId}));
}

TEST(OnStatus, IsCalledWhereNoHistoryIsKept) {
    Host host;
    host.setKeepsCalls(false);
    int shows = 0;
    host.onStatus([&](const StatusLine&) { ++shows; });
    VexaUtilStatusStartPercentDone("a", 1, 1);
    EXPECT_EQ(shows, 1);
}

TEST(OnStatus, MayAskTheHostAndChangeItself) {
    Host host;
    StatusLine seen;
    host.onStatus([&](const StatusLine&) {
        seen = host.statusLine();
        host.onStatus(nullptr);
        VexaUtilStatusCheckPercentDone(70);
    });
    VexaUtilStatusStartPercentDone("a", 1, 1);
    EXPECT_EQ(seen, (StatusLine{"a", 0, true, true, true}));
    EXPECT_EQ(host.statusLine().percent, 70);
}

TEST(OnStatus, MayThrowThroughTheCall) {
    Host host;
    host.onStatus([](const StatusLine& line) { throw std::runtime_error(line.text); });
    EXPECT_THROW(VexaUtilStatusStartPercentDone("a", 1, 1), std::runtime_error);
}

// ---- The stop button

TEST(StopButton, IsUpAtFirst) {
    const Host host;
    EXPECT_FALSE(host.isStopPressed());
}

TEST(StopButton, IsAnsweredUntilItIsReleased) {
    Host host;
    VexaUtilStatusStartPercentDone("a", 1, 1);
    host.pressStop();
    EXPECT_TRUE(host.isStopPressed());
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(1), 0);
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(2), 0);
    EXPECT_EQ(host.statusLine().percent, 2);
    host.releaseStop();
    EXPECT_FALSE(host.isStopPressed());
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(3), 1);
}

TEST(StopButton, StopsATaskThatDoesNotOfferIt) {
    Host host;
    VexaUtilStatusStartPercentDone("a", 0, 1);
    host.pressStop();
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(1), 0);
}

TEST(StopButton, IsThatOfOneHost) {
    Host outer;
    outer.pressStop();
    const Host inner;
    EXPECT_FALSE(inner.isStopPressed());
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(1), 1);
}

Host* signalledHost = nullptr;

TEST(StopButton, IsPressedAtACheckToCome) {
    Host host;
    VexaUtilStatusCheckPercentDone(1);
    host.pressStopAtCheck(2);
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(2), 1);
    EXPECT_FALSE(host.isStopPressed());
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(3), 0);
    EXPECT_TRUE(host.isStopPressed());
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(4), 0);
}

TEST(StopButton, CountsTheChecksToComeFromOne) {
    Host host;
    EXPECT_THROW(host.pressStopAtCheck(0), InvalidArgumentException);
    host.pressStopAtCheck(3);
    host.pressStopAtCheck(1);  // the last one asked for holds
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(1), 0);
}

TEST(StopButton, IsPressedAtAPercentage) {
    Host host;
    host.pressStopAtPercent(50);
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(49), 1);
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(50), 0);
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(10), 0);
    host.releaseStop();
    host.pressStopAtPercent(50);
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(51), 0);
}

TEST(StopButton, ForgetsWithItsReleaseWhenItWasToBePressed) {
    Host host;
    host.pressStopAtCheck(1);
    host.pressStopAtPercent(50);
    host.releaseStop();
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(100), 1);
}

TEST(StopButton, MayBePressedInASignalHandler) {
    Host host;
    signalledHost = &host;
    const auto before = std::signal(SIGUSR1, [](int) { signalledHost->pressStop(); });
    std::raise(SIGUSR1);
    std::signal(SIGUSR1, before);
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(1), 0);
}

TEST(StopButton, MayBePressedFromAnotherThread) {
    Host host;
    host.setKeepsCalls(false);
    std::thread user([&] { host.pressStop(); });
    while (VexaUtilStatusCheckPercentDone(1) == 1) std::this_thread::yield();
    user.join();
    EXPECT_TRUE(host.isStopPressed());
}

}  // namespace
}  // namespace vexa::standin
