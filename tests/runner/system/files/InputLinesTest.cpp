#include "system/files/InputLines.h"

#include <gtest/gtest.h>

#include <system_error>
#include <utility>
#include <vector>

#include "support/TemporaryFolder.h"

namespace vexa::runner {
namespace {

class InputLinesTest : public ::testing::Test {
protected:
    InputLines linesOf(const std::string& text) const { return InputLines(m_folder.write("text", text)); }

    static std::vector<std::string> allOf(InputLines lines) {
        std::vector<std::string> all;
        for (std::string_view line; lines.next(line);) {
            all.push_back(std::string(line) + (lines.hasLineFeed() ? "$" : ""));
        }
        return all;
    }

    const tests::TemporaryFolder m_folder;
};

TEST_F(InputLinesTest, EndAtLineFeeds) {
    EXPECT_EQ(allOf(linesOf("a\n\nb c\r\n")), std::vector<std::string>({"a$", "$", "b c\r$"}));
    EXPECT_EQ(allOf(linesOf("")), std::vector<std::string>());
}

TEST_F(InputLinesTest, TellThatTheLastOneHasNoLineFeed) {
    EXPECT_EQ(allOf(linesOf("a\nb")), std::vector<std::string>({"a$", "b"}));
}

TEST_F(InputLinesTest, OfATextEndAtLineFeeds) {
    EXPECT_EQ(allOf(InputLines::ofText("a\n\nb")), std::vector<std::string>({"a$", "$", "b"}));
    EXPECT_EQ(allOf(InputLines::ofText("")), std::vector<std::string>());
}

TEST_F(InputLinesTest, MayBeLongerThanTheBuffer) {
    std::vector<std::string> expected;
    std::string text;
    for (const std::size_t size : {262143U, 262144U, 1U, 1000000U, 0U, 262145U}) {
        expected.push_back(std::string(size, 'x') + '$');
        text += std::string(size, 'x') + '\n';
    }
    EXPECT_EQ(allOf(linesOf(text)), expected);
}

TEST_F(InputLinesTest, KnowWhetherALineIsTheLast) {
    InputLines lines = linesOf("a\nb\n");
    std::string_view line;
    ASSERT_TRUE(lines.next(line));
    EXPECT_FALSE(lines.isAtEnd());
    ASSERT_TRUE(lines.next(line));
    EXPECT_TRUE(lines.isAtEnd());
}

TEST_F(InputLinesTest, StayWhenTheyArePeekedAt) {
    InputLines lines = linesOf("abc\nd");
    EXPECT_EQ(lines.peek(2), "ab");
    EXPECT_EQ(lines.peek(99), "abc\nd") << "all there is";
    std::string_view line;
    ASSERT_TRUE(lines.next(line));
    EXPECT_EQ(line, "abc");
    EXPECT_EQ(lines.rest(), "d");
    EXPECT_FALSE(lines.next(line));
}

TEST_F(InputLinesTest, AreRefusedIfTheFileIsMissing) { EXPECT_THROW(InputLines("/missing/file"), std::system_error); }

TEST_F(InputLinesTest, CannotBeReadFromAFolder) {
    InputLines lines(m_folder.path());
    std::string_view line;
    EXPECT_THROW(lines.next(line), std::system_error);
}

}  // namespace
}  // namespace vexa::runner
