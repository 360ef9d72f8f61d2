#include "text/TextColumn.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

// Characters of 1, 2, 3 and 4 bytes.
constexpr std::string_view kLine = "a\u00F6\u20AC\U0001F600b";

struct Case {
    const char* why;
    std::size_t byte;
    std::size_t utf16;
    std::size_t utf8;
};

constexpr Case kStarts[] = {
    {"the start", 0, 0, 0},
    {"after one byte", 1, 1, 1},
    {"after two bytes", 3, 2, 3},
    {"after three bytes", 6, 3, 6},
    {"after four bytes, which are two units of UTF-16", 10, 5, 10},
    {"the end", 11, 6, 11},
};

TEST(TextColumn, CountsBytesOrUnitsOfUtf16) {
    for (const Case& c : kStarts) {
        EXPECT_EQ(columnAt(kLine, c.byte, ColumnUnit_e::Utf16), c.utf16) << c.why;
        EXPECT_EQ(columnAt(kLine, c.byte, ColumnUnit_e::Utf8), c.utf8) << c.why;
    }
}

TEST(TextColumn, FindsTheByteOfAColumn) {
    for (const Case& c : kStarts) {
        EXPECT_EQ(byteAt(kLine, c.utf16, ColumnUnit_e::Utf16), c.byte) << c.why;
        EXPECT_EQ(byteAt(kLine, c.utf8, ColumnUnit_e::Utf8), c.byte) << c.why;
    }
}

TEST(TextColumn, GoesBackToTheStartOfACharacter) {
    EXPECT_EQ(columnAt(kLine, 2, ColumnUnit_e::Utf16), 1U);
    EXPECT_EQ(columnAt(kLine, 9, ColumnUnit_e::Utf8), 6U);
    EXPECT_EQ(byteAt(kLine, 4, ColumnUnit_e::Utf16), 6U) << "between the two units of one character";
    EXPECT_EQ(byteAt(kLine, 8, ColumnUnit_e::Utf8), 6U);
}

TEST(TextColumn, StopsAtTheEndOfTheLine) {
    EXPECT_EQ(columnAt(kLine, 99, ColumnUnit_e::Utf16), 6U);
    EXPECT_EQ(byteAt(kLine, 99, ColumnUnit_e::Utf16), 11U);
    EXPECT_EQ(byteAt("", 1, ColumnUnit_e::Utf8), 0U);
}

TEST(TextColumn, SurvivesInvalidUtf8) {
    EXPECT_EQ(byteAt("\x80\x80\xFF", 1, ColumnUnit_e::Utf16), 2U);
    EXPECT_EQ(columnAt("\xF0\x9F", 1, ColumnUnit_e::Utf16), 0U);
}

}  // namespace
}  // namespace vexa::runner
