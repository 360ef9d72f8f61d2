#include "Spectrum.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace probestats {
namespace {

constexpr double kPi = 3.14159265358979323846;
// A fraction of a millisecond: often enough to stop at once, and rarely enough to cost nearly nothing.
constexpr std::size_t kValuesBetweenCheckpoints = 100000;

std::vector<double> hannWeights(std::size_t count) {
    std::vector<double> weights(count);
    const double turn = 2.0 * kPi / static_cast<double>(count);
    for (std::size_t i = 0; i < count; ++i) weights[i] = 0.5 * (1.0 - std::cos(turn * static_cast<double>(i)));
    return weights;
}

double sumOf(const std::vector<double>& values) { return std::accumulate(values.begin(), values.end(), 0.0); }

std::vector<double> weightedSection(const std::vector<double>& signal, std::size_t begin,
                                    const std::vector<double>& weights) {
    double mean = 0.0;
    for (std::size_t i = 0; i < weights.size(); ++i) mean += signal[begin + i];
    mean /= static_cast<double>(weights.size());
    std::vector<double> section(weights.size());
    for (std::size_t i = 0; i < weights.size(); ++i) section[i] = (signal[begin + i] - mean) * weights[i];
    return section;
}

// Returns the magnitude of the sum of the values. Each value is turned by `turn` radians more than the one before.
double magnitudeAt(double turn, const std::vector<double>& values) {
    const double turnCos = std::cos(turn);
    const double turnSin = std::sin(turn);
    double cos = 1.0;
    double sin = 0.0;
    double real = 0.0;
    double imaginary = 0.0;
    for (const double value : values) {
        real += value * cos;
        imaginary += value * sin;
        const double nextCos = cos * turnCos - sin * turnSin;
        sin = sin * turnCos + cos * turnSin;
        cos = nextCos;
    }
    return std::hypot(real, imaginary);
}

bool isPeak(const std::vector<double>& amplitudes, std::size_t i) {
    const bool risesTo = i == 0 || amplitudes[i - 1] < amplitudes[i];
    const bool fallsFrom = i + 1 == amplitudes.size() || amplitudes[i + 1] <= amplitudes[i];
    return risesTo && fallsFrom;
}

}  // namespace

std::vector<double> meanAmplitudes(const std::vector<double>& signal, const SpectrumPlan& plan,
                                   const SpectrumCheckpoint& checkpoint) {
    const std::vector<double> weights = hannWeights(plan.section);
    const std::size_t sections = plan.sectionCount(signal.size());
    const double scale = 2.0 / sumOf(weights) / static_cast<double>(sections);
    std::vector<double> amplitudes(plan.frequencyCount);
    std::size_t done = 0;
    for (std::size_t s = 0; s < sections; ++s) {
        const std::vector<double> section = weightedSection(signal, s * plan.step, weights);
        for (std::size_t f = 0; f < plan.frequencyCount; ++f) {
            amplitudes[f] += scale * magnitudeAt(2.0 * kPi * plan.frequency(f) / plan.sampleRate, section);
            if (++done * plan.section < kValuesBetweenCheckpoints) continue;
            checkpoint(done);
            done = 0;
        }
    }
    checkpoint(done);
    return amplitudes;
}

std::vector<Peak> strongestPeaks(const std::vector<double>& amplitudes, const SpectrumPlan& plan, std::size_t count,
                                 double noise) {
    std::vector<Peak> peaks;
    for (std::size_t i = 0; i < amplitudes.size(); ++i) {
        if (amplitudes[i] > noise && isPeak(amplitudes, i)) peaks.push_back({plan.frequency(i), amplitudes[i]});
    }
    std::stable_sort(peaks.begin(), peaks.end(),
                     [](const Peak& a, const Peak& b) { return a.amplitude > b.amplitude; });
    peaks.resize(std::min(peaks.size(), count));
    return peaks;
}

}  // namespace probestats
