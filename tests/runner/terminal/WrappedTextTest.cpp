#include "terminal/WrappedText.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

TEST(WrappedText, BreaksAtBlanks) { EXPECT_EQ(wrapped("one two three", 7), "one two\nthree\n"); }

TEST(WrappedText, FillsALineToItsLastColumn) {
    EXPECT_EQ(wrapped("one two", 7), "one two\n");
    EXPECT_EQ(wrapped("one two", 6), "one\ntwo\n");
}

TEST(WrappedText, LeavesALongWordWhole) {
    EXPECT_EQ(wrapped("a longword b", 4), "a\nlongword\nb\n");
    EXPECT_EQ(wrapped("longword", 4), "longword\n");
}

TEST(WrappedText, IndentsTheLinesAfterTheFirst) { EXPECT_EQ(wrapped("one two", 6, "- "), "- one\n  two\n"); }

TEST(WrappedText, OfNoWordIsAnEmptyLine) { EXPECT_EQ(wrapped("", 10), "\n"); }

}  // namespace
}  // namespace vexa::runner
