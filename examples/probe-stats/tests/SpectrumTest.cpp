#include "Spectrum.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

namespace probestats {
namespace {

constexpr double kPi = 3.14159265358979323846;

// At 64 values a second: waves of 8 Hz and 20 Hz on a mean of 5.
std::vector<double> twoWaves(std::size_t count) {
    std::vector<double> values(count);
    for (std::size_t i = 0; i < count; ++i) {
        const double time = static_cast<double>(i) / 64.0;
        values[i] = 5.0 + std::sin(2.0 * kPi * 8.0 * time) + 0.25 * std::cos(2.0 * kPi * 20.0 * time + 1.0);
    }
    return values;
}

// Sections of a second, at whole numbers of Hz.
const SpectrumPlan kPlan{64.0, 64, 16, 1.0, 1.0, 32};

void ignore(std::size_t) {}

TEST(SpectrumPlan, CountsTheSectionsThatFit) {
    EXPECT_EQ(kPlan.sectionCount(64), 1u);
    EXPECT_EQ(kPlan.sectionCount(79), 1u);
    EXPECT_EQ(kPlan.sectionCount(80), 2u);
}

TEST(MeanAmplitudes, ShowWavesWithTheirOwnAmplitudes) {
    const std::vector<double> amplitudes = meanAmplitudes(twoWaves(160), kPlan, ignore);
    ASSERT_EQ(amplitudes.size(), 32u);
    EXPECT_NEAR(amplitudes[8 - 1], 1.0, 1e-12);
    EXPECT_NEAR(amplitudes[20 - 1], 0.25, 1e-12);
    EXPECT_NEAR(amplitudes[9 - 1], 0.5, 1e-12);  // the window spreads a wave to both sides
    EXPECT_NEAR(amplitudes[14 - 1], 0.0, 1e-12);
}

TEST(MeanAmplitudes, AreTheMeanOfTheSections) {
    std::vector<double> halfSilent = twoWaves(128);
    for (std::size_t i = 64; i < 128; ++i) halfSilent[i] = 5.0;
    SpectrumPlan plan = kPlan;
    plan.step = 64;
    EXPECT_NEAR(meanAmplitudes(halfSilent, plan, ignore)[8 - 1], 0.5, 1e-12);
}

TEST(MeanAmplitudes, TellTheCheckpointOfAllThatWasDone) {
    std::size_t done = 0;
    std::size_t calls = 0;
    meanAmplitudes(twoWaves(2048), kPlan, [&](std::size_t more) {
        done += more;
        ++calls;
    });
    EXPECT_EQ(done, kPlan.sectionCount(2048) * kPlan.frequencyCount);
    EXPECT_GT(calls, 2u);
}

TEST(MeanAmplitudes, EndWithWhatTheCheckpointThrows) {
    std::size_t calls = 0;
    const SpectrumCheckpoint stop = [&](std::size_t) {
        ++calls;
        throw std::runtime_error("stop");
    };
    EXPECT_THROW(meanAmplitudes(twoWaves(2048), kPlan, stop), std::runtime_error);
    EXPECT_EQ(calls, 1u);
}

struct StrongestPeaks : ::testing::Test {
    static std::string found(const std::vector<double>& amplitudes, std::size_t count, double noise = 0.0) {
        std::string text;
        for (const Peak& peak : strongestPeaks(amplitudes, kPlan, count, noise)) {
            text +=
                std::to_string(std::lround(peak.frequency)) + ":" + std::to_string(std::lround(peak.amplitude)) + " ";
        }
        return text;
    }
};

TEST_F(StrongestPeaks, AreTheStrongestFirst) { EXPECT_EQ(found({1, 5, 1, 9, 2, 7, 3}, 2), "4:9 6:7 "); }

TEST_F(StrongestPeaks, AreFewerWhenThereAreNoMore) { EXPECT_EQ(found({1, 5, 1}, 3), "2:5 "); }

TEST_F(StrongestPeaks, MayBeAtTheEnds) { EXPECT_EQ(found({5, 1, 6}, 3), "3:6 1:5 "); }

TEST_F(StrongestPeaks, AreOneForAPlateau) { EXPECT_EQ(found({1, 5, 5, 1}, 3), "2:5 "); }

TEST_F(StrongestPeaks, AreAboveTheNoise) {
    EXPECT_EQ(found({1, 5, 1, 9, 2}, 3, 5.0), "4:9 ");
    EXPECT_EQ(found({0, 0, 0}, 3), "");
}

}  // namespace
}  // namespace probestats
