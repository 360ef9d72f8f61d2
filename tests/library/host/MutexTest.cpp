#include "vexautilutil/Mutex.h"

#include <gtest/gtest.h>

#include <mutex>
#include <new>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "vexa/VexaUtil.h"
#include "vexastandin/Host.h"

namespace vexa::vexautilutil {
namespace {

using Functions = std::vector<std::string>;

TEST(Mutex, AllocatesOnceAndFreesOnce) {
    const standin::Host host;
    { const Mutex mutex; }
    const auto calls = host.calls();
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0].function, "VexaUtilThreadMutexAlloc");
    EXPECT_EQ(calls[1].function, "VexaUtilThreadMutexDealloc");
    EXPECT_EQ(calls[1].arguments, calls[0].result) << "the handle that was allocated";
}

TEST(Mutex, ThrowsAndFreesNothingWhenTheHostHasNone) {
    standin::Host host;
    host.failCall("VexaUtilThreadMutexAlloc");
    EXPECT_THROW(Mutex mutex, std::bad_alloc);
    EXPECT_EQ(host.calledFunctions(), Functions{"VexaUtilThreadMutexAlloc"});
}

TEST(Mutex, LocksAndUnlocksItsHandle) {
    const standin::Host host;
    Mutex mutex;
    mutex.lock();
    mutex.unlock();
    const auto calls = host.calls();
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_EQ(calls[1].function, "VexaUtilThreadMutexLock");
    EXPECT_EQ(calls[1].arguments, calls[0].result);
    EXPECT_EQ(calls[2].function, "VexaUtilThreadMutexUnlock");
    EXPECT_EQ(calls[2].arguments, calls[0].result);
}

TEST(Mutex, WorksWithTheStandardLocks) {
    const standin::Host host;
    Mutex mutex;
    { const std::lock_guard<Mutex> lock(mutex); }
    { const std::unique_lock<Mutex> lock(mutex); }
    { const std::scoped_lock<Mutex> lock(mutex); }
    EXPECT_EQ(host.calledFunctions(),
              (Functions{"VexaUtilThreadMutexAlloc", "VexaUtilThreadMutexLock", "VexaUtilThreadMutexUnlock",
                         "VexaUtilThreadMutexLock", "VexaUtilThreadMutexUnlock", "VexaUtilThreadMutexLock",
                         "VexaUtilThreadMutexUnlock"}));
}

TEST(Mutex, KeepsThreadsApart) {
    standin::Host host;
    host.setKeepsCalls(false);
    Mutex mutex;
    int counter = 0;
    const auto count = [&] {
        for (int i = 0; i < 10000; ++i) {
            const std::lock_guard<Mutex> lock(mutex);
            ++counter;
        }
    };
    std::thread first(count);
    std::thread second(count);
    first.join();
    second.join();
    EXPECT_EQ(counter, 20000);
}

TEST(Mutex, IsNeitherCopiedNorMoved) {
    static_assert(!std::is_copy_constructible_v<Mutex>);
    static_assert(!std::is_move_constructible_v<Mutex>);
    static_assert(!std::is_copy_assignable_v<Mutex>);
    static_assert(!std::is_move_assignable_v<Mutex>);
    static_assert(std::is_nothrow_destructible_v<Mutex>);
    static_assert(sizeof(Mutex) == sizeof(ThreadMutex_s*));
    SUCCEED();
}

TEST(Mutex, EndsTheProgramWhenFreeingThrows) {
    EXPECT_DEATH(
        {
            standin::Host host;
            const Mutex mutex;
            host.throwFromCall("VexaUtilThreadMutexDealloc");
        },
        "");
}

}  // namespace
}  // namespace vexa::vexautilutil
