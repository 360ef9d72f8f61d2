#include "text/Lines.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

TEST(AddLine, SeparatesLines) {
    std::string lines;
    addLine(lines, "a");
    addLine(lines, "b");
    EXPECT_EQ(lines, "a\nb");
}

TEST(AddLine, AddsNoEmptyLine) {
    std::string lines = "a";
    addLine(lines, "");
    EXPECT_EQ(lines, "a");
}

TEST(LinesOf, KeepsEmptyLinesAndALastOneWithoutItsEnd) {
    EXPECT_EQ(linesOf("a\n\nb"), (std::vector<std::string>{"a", "", "b"}));
}

TEST(LinesOf, HasNoLineAfterTheLastLineFeed) { EXPECT_EQ(linesOf("a\n"), std::vector<std::string>{"a"}); }

TEST(JoinedLines, PutsABlankForEachLineFeed) { EXPECT_EQ(joinedLines("a\nb\n\nc"), "a b  c"); }

}  // namespace
}  // namespace vexa::runner
