#include "Worker.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace probestats {
namespace {

constexpr std::chrono::milliseconds kLong{10000};

void waitUntil(const std::atomic<bool>& flag) {
    while (!flag) std::this_thread::yield();
}

TEST(Worker, HandsItsResultOver) {
    Worker<std::string> worker([](const std::atomic<bool>&) { return std::string("result"); });
    EXPECT_TRUE(worker.endsWithin(kLong));
    EXPECT_EQ(worker.result(), "result");
}

TEST(Worker, WorksOnAThreadOfItsOwn) {
    Worker<std::thread::id> worker([](const std::atomic<bool>&) { return std::this_thread::get_id(); });
    EXPECT_NE(worker.result(), std::this_thread::get_id());
}

TEST(Worker, HandsItsExceptionOver) {
    Worker<int> worker([](const std::atomic<bool>&) -> int { throw std::runtime_error("out of paper"); });
    EXPECT_TRUE(worker.endsWithin(kLong));
    try {
        worker.result();
        FAIL() << "no exception";
    } catch (const std::runtime_error& failure) {
        EXPECT_STREQ(failure.what(), "out of paper");
    }
}

TEST(Worker, TellsThatItHasNotEnded) {
    std::atomic<bool> mayEnd{false};
    Worker<int> worker([&](const std::atomic<bool>&) {
        waitUntil(mayEnd);
        return 1;
    });
    EXPECT_FALSE(worker.endsWithin(std::chrono::milliseconds(1)));
    mayEnd = true;
    EXPECT_EQ(worker.result(), 1);
}

TEST(Worker, IsStoppedAndWaitedForWhenItsOwnerFails) {
    std::atomic<bool> ended{false};
    try {
        const Worker<int> worker([&](const std::atomic<bool>& stop) {
            waitUntil(stop);
            ended = true;
            return 1;
        });
        throw std::runtime_error("the owner fails");
    } catch (const std::runtime_error&) {
        EXPECT_TRUE(ended);
    }
}

}  // namespace
}  // namespace probestats
