#include "stacks/PackedStacks.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

ThreadStack someStack() {
    ThreadStack stack;
    stack.thread = 4711;
    stack.isFirst = true;
    stack.frames = {{"f(int)", "/a b/f.cpp", 3, "/lib/x.so", 0x10}, {"", "", 0, "", ~std::uintptr_t{0}}};
    stack.leftOut = 7;
    stack.isCounted = false;
    stack.ownBegin = 1;
    stack.ownEnd = 2;
    return stack;
}

void expectSame(const ThreadStack& a, const ThreadStack& b) {
    EXPECT_EQ(a.thread, b.thread);
    EXPECT_EQ(a.isFirst, b.isFirst);
    EXPECT_EQ(a.leftOut, b.leftOut);
    EXPECT_EQ(a.isCounted, b.isCounted);
    EXPECT_EQ(a.ownBegin, b.ownBegin);
    EXPECT_EQ(a.ownEnd, b.ownEnd);
    ASSERT_EQ(a.frames.size(), b.frames.size());
    for (std::size_t i = 0; i != a.frames.size(); ++i) {
        EXPECT_EQ(a.frames[i].function, b.frames[i].function);
        EXPECT_EQ(a.frames[i].file, b.frames[i].file);
        EXPECT_EQ(a.frames[i].line, b.frames[i].line);
        EXPECT_EQ(a.frames[i].object, b.frames[i].object);
        EXPECT_EQ(a.frames[i].offset, b.frames[i].offset);
    }
}

TEST(PackedStacks, KeepEveryField) {
    std::string text;
    pack(someStack(), text);
    pack(ThreadStack(), text);
    const std::vector<ThreadStack> read = unpackedStacks(text);
    ASSERT_EQ(read.size(), 2U);
    expectSame(read[0], someStack());
    expectSame(read[1], ThreadStack());
}

TEST(PackedStacks, LeaveOutAStackThatIsNotWhole) {
    std::string first;
    pack(someStack(), first);
    std::string text = first;
    pack(someStack(), text);
    for (std::size_t size = first.size(); size != text.size(); ++size) {
        EXPECT_EQ(unpackedStacks(text.substr(0, size)).size(), 1U) << size;
    }
    EXPECT_TRUE(unpackedStacks("").empty());
}

}  // namespace
}  // namespace vexa::runner
