#include "session/watch/Drain.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <string_view>

namespace vexa::runner {
namespace {

void write(const Drain& drain, std::string_view text) {
    ASSERT_EQ(::write(drain.writer(), text.data(), text.size()), static_cast<ssize_t>(text.size()));
}

TEST(Drain, HandsOutTheTextSinceTheLastTime) {
    Drain drain(100, false);
    write(drain, "one");
    EXPECT_EQ(drain.take().text, "one");
    write(drain, "two");
    EXPECT_EQ(drain.take().text, "two");
    EXPECT_EQ(drain.take().text, "");
}

TEST(Drain, KeepsTheFirstBytesAndCountsTheOthers) {
    Drain drain(4, false);
    write(drain, "123456");
    const KeptText kept = drain.take();
    EXPECT_EQ(kept.text, "1234");
    EXPECT_EQ(kept.leftOut, 2U);
}

TEST(Drain, KeepsTheLastBytesIfToldSo) {
    Drain drain(4, true);
    write(drain, "123456");
    const KeptText kept = drain.take();
    EXPECT_EQ(kept.text, "3456");
    EXPECT_EQ(kept.leftOut, 2U);
}

TEST(Drain, HasNothingToWaitForAfterTheEnd) {
    Drain drain(4, false);
    EXPECT_GE(drain.reader(), 0);
    drain.closeWriter();
    drain.fetch();
    EXPECT_LT(drain.reader(), 0);
}

}  // namespace
}  // namespace vexa::runner
