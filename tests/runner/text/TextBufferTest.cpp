#include "text/TextBuffer.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace vexa::runner {
namespace {

TEST(TextBuffer, HasAllPiecesInTheirOrder) {
    TextBuffer text;
    std::string expected;
    for (int i = 0; i != 1000; ++i) {
        text.append("number ");
        text.appendNumber(i);
        text.append('\n');
        text.append("");
        expected += "number " + std::to_string(i) + '\n';
    }
    EXPECT_EQ(text.text(), expected);
}

TEST(TextBuffer, HasRoomForEachInteger) {
    TextBuffer text;
    text.appendNumber(std::numeric_limits<std::int64_t>::min());
    text.append(' ');
    text.appendNumber(std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(text.text(), "-9223372036854775808 18446744073709551615");
}

TEST(TextBuffer, IsEmptyAfterClear) {
    TextBuffer text;
    text.append("one");
    text.clear();
    EXPECT_EQ(text.text(), "");
    text.append("two");
    EXPECT_EQ(text.text(), "two");
}

}  // namespace
}  // namespace vexa::runner
