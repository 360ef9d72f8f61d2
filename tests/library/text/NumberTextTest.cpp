#include "text/NumberText.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <sstream>

#include "support/GlobalLocale.h"

namespace vexa::vexautilutil {
namespace {

template <class Number>
std::string rendered(Number value) {
    std::string text;
    appendNumber(text, value);
    return text;
}

template <class Number>
std::string streamed(Number value) {
    std::ostringstream stream;
    stream << value;
    return stream.str();
}

TEST(AppendNumber, AppendsToWhatIsThere) {
    std::string text = "N = ";
    appendNumber(text, int64_t{12});
    EXPECT_EQ(text, "N = 12");
}

TEST(AppendNumber, WritesTheExtremeIntegers) {
    EXPECT_EQ(rendered(std::numeric_limits<int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(rendered(std::numeric_limits<int64_t>::max()), "9223372036854775807");
}

TEST(AppendNumber, WritesSpecialDoublesAsAStreamDoes) {
    using Limits = std::numeric_limits<double>;
    for (const double value : {0.0, -0.0, Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN(),
                               -Limits::quiet_NaN(), Limits::max(), Limits::lowest(), Limits::min(),
                               Limits::denorm_min(), -1.23456789e-300, 999999.5, 1e5, 1e6, 0.0001, 0.00001}) {
        EXPECT_EQ(rendered(value), streamed(value));
    }
}

RC_GTEST_PROP(AppendNumber, WritesDoublesAsAStreamDoes, (uint64_t bits)) {
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    RC_ASSERT(rendered(value) == streamed(value));
}

RC_GTEST_PROP(AppendNumber, WritesOrdinaryDoublesAsAStreamDoes, (int32_t mantissa, int8_t scale)) {
    const double value = mantissa * std::pow(10.0, scale % 12);
    RC_ASSERT(rendered(value) == streamed(value));
}

RC_GTEST_PROP(AppendNumber, WritesIntegersAsAStreamDoes, (int64_t value)) {
    RC_ASSERT(rendered(value) == streamed(value));
}

RC_GTEST_PROP(AppendNumber, WritesUnsignedIntegersAsAStreamDoes, (uint64_t value)) {
    RC_ASSERT(rendered(value) == streamed(value));
}

TEST(ReadPlainDigits, ReadsDigitsAndNothingElse) {
    uint64_t value = 7;
    for (const char* text : {"", "+1", "-1", " 1", "1 ", "1a", "0x1", "18446744073709551616"}) {
        EXPECT_FALSE(readPlainDigits(text, value)) << text;
        EXPECT_EQ(value, 7u) << text;
    }
    EXPECT_TRUE(readPlainDigits("0018446744073709551615", value));
    EXPECT_EQ(value, std::numeric_limits<uint64_t>::max());
}

TEST(ReadPlainDigits, LeavesOtherLocalesToOthers) {
    const tests::GlobalLocale locale(new tests::GroupedNumbers);
    uint64_t value = 7;
    EXPECT_FALSE(readPlainDigits("12", value));
}

TEST(AppendNumber, FollowsTheGlobalLocale) {
    const tests::GlobalLocale locale(new tests::GroupedNumbers);
    EXPECT_EQ(rendered(int64_t{-1234567}), "-1.234.567");
    EXPECT_EQ(rendered(1234.5), "1.234,5");
}

}  // namespace
}  // namespace vexa::vexautilutil
