#include "text/WholeNumber.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

TEST(WholeNumber, IsReadFromDecimalDigits) {
    EXPECT_EQ(wholeNumberIn("0"), 0U);
    EXPECT_EQ(wholeNumberIn("0042"), 42U);
    EXPECT_EQ(wholeNumberIn("18446744073709551615"), 18446744073709551615U);
}

TEST(WholeNumber, IsNothingElse) {
    for (const char* const text : {"", " 1", "1 ", "-1", "+1", "1.0", "0x1", "a", "18446744073709551616"})
        EXPECT_FALSE(wholeNumberIn(text)) << text;
}

}  // namespace
}  // namespace vexa::runner
