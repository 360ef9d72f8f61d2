#include "Statistics.h"

#include <gtest/gtest.h>

#include <cmath>

namespace probestats {
namespace {

constexpr double kPi = 3.14159265358979323846;

std::vector<double> sine(double frequency, double sampleRate, std::size_t count, double amplitude = 1.0) {
    std::vector<double> values;
    for (std::size_t i = 0; i < count; ++i) {
        values.push_back(amplitude * std::sin(2.0 * kPi * frequency * static_cast<double>(i) / sampleRate));
    }
    return values;
}

std::vector<double> sum(std::vector<double> a, const std::vector<double>& b) {
    for (std::size_t i = 0; i < a.size(); ++i) a[i] += b[i];
    return a;
}

std::vector<double> ramp(double slope, std::size_t count) {
    std::vector<double> values;
    for (std::size_t i = 0; i < count; ++i) values.push_back(slope * static_cast<double>(i));
    return values;
}

TEST(SummaryOfValues, MatchesValuesComputedByHand) {
    // Sum 40, mean 5; squares of the differences 9+1+1+1+0+0+4+16 = 32, divided by 7.
    const Summary summary = summarize({2, 4, 4, 4, 5, 5, 7, 9});
    EXPECT_EQ(summary.count, 8u);
    EXPECT_DOUBLE_EQ(summary.mean, 5.0);
    EXPECT_DOUBLE_EQ(summary.deviation, std::sqrt(32.0 / 7.0));
    EXPECT_DOUBLE_EQ(summary.minimum, 2.0);
    EXPECT_DOUBLE_EQ(summary.maximum, 9.0);
}

TEST(SummaryOfValues, KeepsSmallDeviationsBesideLargeMeans) {
    EXPECT_DOUBLE_EQ(summarize({1e9 - 1.0, 1e9, 1e9 + 1.0}).deviation, 1.0);
}

TEST(SummaryOfValues, HasNoDeviationInAConstantSignal) { EXPECT_EQ(summarize({3, 3, 3}).deviation, 0.0); }

TEST(DominantFrequency, IsExactWhereWholePeriodsFitIntoAPowerOfTwo) {
    EXPECT_EQ(dominantFrequency(sine(12.0, 64.0, 64), 64.0, Baseline::Mean, 0.0), 12.0);
}

TEST(DominantFrequency, IsOffByLessThanTheSpacingOtherwise) {
    // 3000 values are filled up to 4096.
    const std::optional<double> frequency = dominantFrequency(sine(78.4, 2000.0, 3000), 2000.0, Baseline::Mean, 0.0);
    ASSERT_TRUE(frequency);
    EXPECT_NEAR(*frequency, 78.4, 2000.0 / 4096.0);
}

TEST(DominantFrequency, IsThatOfTheStrongerOfTwoWaves) {
    const std::vector<double> both = sum(sine(4.0, 64.0, 128, 0.9), sine(20.0, 64.0, 128, 1.1));
    EXPECT_EQ(dominantFrequency(both, 64.0, Baseline::Mean, 0.0), 20.0);
}

TEST(DominantFrequency, IsSoughtFromTheMinimumOn) {
    const std::vector<double> both = sum(sine(4.0, 64.0, 128, 2.0), sine(20.0, 64.0, 128, 0.1));
    EXPECT_EQ(dominantFrequency(both, 64.0, Baseline::Mean, 0.0), 4.0);
    EXPECT_EQ(dominantFrequency(both, 64.0, Baseline::Mean, 10.0), 20.0);
    EXPECT_EQ(dominantFrequency(both, 64.0, Baseline::Mean, 20.0), 20.0) << "the minimum itself counts";
}

TEST(DominantFrequency, IgnoresTheMean) {
    std::vector<double> lifted = sine(12.0, 64.0, 64);
    for (double& value : lifted) value += 1000.0;
    EXPECT_EQ(dominantFrequency(lifted, 64.0, Baseline::Mean, 0.0), 12.0);
}

TEST(DominantFrequency, IgnoresADriftWhenTheLineIsTakenOff) {
    const std::vector<double> drifting = sum(sine(12.0, 64.0, 64), ramp(1.0, 64));
    EXPECT_NE(dominantFrequency(drifting, 64.0, Baseline::Mean, 0.0), 12.0);
    EXPECT_EQ(dominantFrequency(drifting, 64.0, Baseline::Line, 0.0), 12.0);
}

TEST(DominantFrequency, IsNoneOfASignalThatIsAllBaseline) {
    EXPECT_EQ(dominantFrequency(std::vector<double>(30, 0.1), 64.0, Baseline::Mean, 0.0), std::nullopt);
    EXPECT_EQ(dominantFrequency(ramp(0.1, 30), 64.0, Baseline::Line, 0.0), std::nullopt);
}

TEST(DominantFrequency, IsNoneWhenNoFrequencyIsLeft) {
    EXPECT_EQ(dominantFrequency(sine(12.0, 64.0, 64), 64.0, Baseline::Mean, 32.5), std::nullopt);
}

TEST(DominantFrequency, FindsTheFastestWaveThereIs) {
    std::vector<double> alternating;
    for (int i = 0; i < 16; ++i) alternating.push_back(i % 2 == 0 ? 1.0 : -1.0);
    EXPECT_EQ(dominantFrequency(alternating, 10.0, Baseline::Mean, 0.0), 5.0);
}

}  // namespace
}  // namespace probestats
