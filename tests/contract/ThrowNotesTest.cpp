#include "contract/ThrowNotes.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <thread>

namespace vexa::standin {
namespace {

std::array<char, 32> theExceptions{};  // their addresses stand for exceptions

const void* exceptionAt(std::size_t i) { return &theExceptions[i]; }

class ThrowNotes : public testing::Test {
protected:
    ~ThrowNotes() override { forgetThrows(); }
};

TEST_F(ThrowNotes, HaveTheCallersOfAThrow) {
    noteThrow(exceptionAt(0));
    EXPECT_GT(throwerOf(exceptionAt(0)).size(), 1U);
}

TEST_F(ThrowNotes, HaveNothingOfAnotherException) {
    noteThrow(exceptionAt(0));
    EXPECT_TRUE(throwerOf(exceptionAt(1)).empty());
    EXPECT_TRUE(throwerOf(nullptr).empty());
}

TEST_F(ThrowNotes, AreOfTheLastSixteenExceptions) {
    for (std::size_t i = 0; i != 17; ++i) noteThrow(exceptionAt(i));
    EXPECT_TRUE(throwerOf(exceptionAt(0)).empty());
    EXPECT_FALSE(throwerOf(exceptionAt(1)).empty());
}

[[gnu::noinline]] void noteFromElsewhere(const void* exception) { noteThrow(exception); }

TEST_F(ThrowNotes, AreOfTheNewestExceptionAtAnAddress) {
    noteThrow(exceptionAt(0));
    const auto before = throwerOf(exceptionAt(0));
    noteFromElsewhere(exceptionAt(0));
    EXPECT_NE(throwerOf(exceptionAt(0)), before);
}

TEST_F(ThrowNotes, AreFoundByOtherThreads) {
    std::thread([] { noteThrow(exceptionAt(0)); }).join();
    EXPECT_FALSE(throwerOf(exceptionAt(0)).empty());
}

TEST_F(ThrowNotes, AreForgottenByTheirThreadOnly) {
    std::thread([] { noteThrow(exceptionAt(0)); }).join();
    noteThrow(exceptionAt(1));
    forgetThrows();
    EXPECT_FALSE(throwerOf(exceptionAt(0)).empty());
    EXPECT_TRUE(throwerOf(exceptionAt(1)).empty());
}

}  // namespace
}  // namespace vexa::standin
