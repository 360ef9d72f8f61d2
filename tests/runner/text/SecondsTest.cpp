#include "text/Seconds.h"

#include <gtest/gtest.h>

#include <limits>

namespace vexa::runner {
namespace {

TEST(SecondsOf, ReadsANumber) {
    EXPECT_EQ(secondsOf("2")->count(), 2);
    EXPECT_EQ(secondsOf("0.25")->count(), 0.25);
    EXPECT_EQ(secondsOf("1e6")->count(), 1e6);
}

TEST(SecondsOf, RefusesWhatIsNoNumber) {
    for (const char* text : {"", "soon", "2s", " 2", "2 ", "1,5", "nan", "inf"}) EXPECT_FALSE(secondsOf(text)) << text;
}

TEST(SecondsOf, RefusesANumberOutOfBounds) {
    for (const double seconds :
         {0.0, -1.0, 1000000.5, std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        EXPECT_FALSE(secondsOf(seconds)) << seconds;
    }
}

TEST(SecondsText, HasTheUnit) {
    EXPECT_EQ(secondsText(std::chrono::seconds(1)), "1 second");
    EXPECT_EQ(secondsText(std::chrono::seconds(2)), "2 seconds");
    EXPECT_EQ(secondsText(std::chrono::milliseconds(500)), "0.5 seconds");
}

TEST(DecimalSeconds, HasAsManyDigitsAsAskedFor) {
    EXPECT_EQ(decimalSeconds(std::chrono::milliseconds(1500), 2), "1.50");
    EXPECT_EQ(decimalSeconds(std::chrono::microseconds(1234567), 3), "1.235");
}

}  // namespace
}  // namespace vexa::runner
