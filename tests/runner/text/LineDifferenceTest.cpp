#include "text/LineDifference.h"

#include <gtest/gtest.h>

#include <string>

namespace vexa::runner {
namespace {

std::string numberedLines(int count, int changedEvery = 0) {
    std::string text;
    for (int i = 1; i <= count; ++i) {
        const bool isChanged = changedEvery != 0 && i % changedEvery == 0;
        text += (isChanged ? "changed " : "line ") + std::to_string(i) + '\n';
    }
    return text;
}

TEST(LineDifference, OfEqualTextsIsEmpty) { EXPECT_EQ(lineDifference("a\nb\n", "a\nb\n"), ""); }

TEST(LineDifference, ShowsThreeEqualLinesOnBothSides) {
    EXPECT_EQ(lineDifference(numberedLines(9), numberedLines(9, 5)),
              "@@ line 2 @@\n  line 2\n  line 3\n  line 4\n- line 5\n+ changed 5\n  line 6\n  line 7\n  line 8\n");
}

TEST(LineDifference, SplitsChangesThatAreFarApart) {
    EXPECT_EQ(lineDifference("a\n" + numberedLines(8) + "b\n", numberedLines(8)),
              "@@ line 1 @@\n- a\n  line 1\n  line 2\n  line 3\n"
              "@@ line 7 @@\n  line 6\n  line 7\n  line 8\n- b\n");
}

TEST(LineDifference, ShowsWhatGoesBeforeWhatComes) {
    EXPECT_EQ(lineDifference("a\n", "b\nc\n"), "@@ line 1 @@\n- a\n+ b\n+ c\n");
    EXPECT_EQ(lineDifference("a\nb\n", "c\n"), "@@ line 1 @@\n- a\n- b\n+ c\n");
}

TEST(LineDifference, HasAFirstLine) {
    EXPECT_EQ(firstDifference("a\nb\nc\n", "a\nx\nc\n"), 2U);
    EXPECT_EQ(firstDifference("a\nb\n", "a\n"), 2U);
    EXPECT_EQ(firstDifference("a\nb\n", "a\nb\nc\n"), 2U);
    EXPECT_EQ(firstDifference("", "a\n"), 1U);
}

TEST(LineDifference, OfAMissingTextIsAllOfTheOther) {
    EXPECT_EQ(lineDifference("", "a\n"), "@@ line 1 @@\n+ a\n");
    EXPECT_EQ(lineDifference("a\n", ""), "@@ line 1 @@\n- a\n");
}

TEST(LineDifference, EndsEachLine) { EXPECT_EQ(lineDifference("a", "a\n"), "@@ line 1 @@\n- a\n+ a\n"); }

TEST(LineDifference, OfLargeTextsShowsOnlyTheChanges) {
    const std::string difference = lineDifference(numberedLines(10000), numberedLines(10000, 4999));
    EXPECT_LT(difference.size(), 400U) << difference.substr(0, 1000);
}

TEST(LineDifference, OfLargeTextsThatHaveNothingInCommonIsAllOfBoth) {
    const std::string difference = lineDifference(numberedLines(20000), numberedLines(20000, 1));
    const auto linesWith = [&](const std::string& start) {
        int count = 0;
        for (std::size_t at = difference.find(start); at != std::string::npos; at = difference.find(start, at + 1)) {
            ++count;
        }
        return count;
    };
    EXPECT_EQ(linesWith("\n- line "), 20000);
    EXPECT_EQ(linesWith("\n+ changed "), 20000);
}

}  // namespace
}  // namespace vexa::runner
