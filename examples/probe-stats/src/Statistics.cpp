#include "Statistics.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numeric>
#include <utility>

namespace probestats {
namespace {

using Complex = std::complex<double>;

constexpr double kPi = 3.14159265358979323846;
// The largest rounding error of a signal without oscillation, relative to its largest value.
constexpr double kRoundingNoise = 1e-12;

double meanOf(const std::vector<double>& values) {
    return std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
}

double largestIn(const std::vector<double>& values) {
    double largest = 0.0;
    for (const double value : values) largest = std::max(largest, std::abs(value));
    return largest;
}

// Returns the slope per value of the line that fits best.
double slopeOf(const std::vector<double>& values, double mean) {
    const double middle = static_cast<double>(values.size() - 1) / 2.0;
    double products = 0.0;
    double squares = 0.0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double offset = static_cast<double>(i) - middle;
        products += offset * (values[i] - mean);
        squares += offset * offset;
    }
    return products / squares;
}

void removeBaseline(std::vector<double>& values, Baseline baseline) {
    const double mean = meanOf(values);
    const double slope = baseline == Baseline::Line ? slopeOf(values, mean) : 0.0;
    const double middle = static_cast<double>(values.size() - 1) / 2.0;
    for (std::size_t i = 0; i < values.size(); ++i) values[i] -= mean + slope * (static_cast<double>(i) - middle);
}

std::vector<Complex> weightedAndFilledUp(const std::vector<double>& values) {
    std::size_t size = 1;
    while (size < values.size()) size *= 2;
    std::vector<Complex> filled(size);
    const double turn = 2.0 * kPi / static_cast<double>(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        filled[i] = values[i] * 0.5 * (1.0 - std::cos(turn * static_cast<double>(i)));
    }
    return filled;
}

// Moves each element to the index whose bits are those of its old index in reverse order.
void reverseBits(std::vector<Complex>& values) {
    std::size_t reversed = 0;
    for (std::size_t i = 1; i < values.size(); ++i) {
        std::size_t bit = values.size() / 2;
        for (; (reversed & bit) != 0; bit /= 2) reversed ^= bit;
        reversed ^= bit;
        if (i < reversed) std::swap(values[i], values[reversed]);
    }
}

// Replaces the values by their discrete Fourier transform. Their number must be a power of two.
void transform(std::vector<Complex>& values) {
    const std::size_t size = values.size();
    std::vector<Complex> turns(size / 2);
    for (std::size_t i = 0; i < turns.size(); ++i) {
        turns[i] = std::polar(1.0, -2.0 * kPi * static_cast<double>(i) / static_cast<double>(size));
    }
    reverseBits(values);
    for (std::size_t half = 1; half < size; half *= 2) {
        for (std::size_t begin = 0; begin < size; begin += 2 * half) {
            for (std::size_t i = 0; i < half; ++i) {
                const Complex odd = turns[i * (size / (2 * half))] * values[begin + half + i];
                values[begin + half + i] = values[begin + i] - odd;
                values[begin + i] += odd;
            }
        }
    }
}

}  // namespace

Summary summarize(const std::vector<double>& values) {
    const double mean = meanOf(values);
    double squares = 0.0;
    for (const double value : values) squares += (value - mean) * (value - mean);
    const auto [minimum, maximum] = std::minmax_element(values.begin(), values.end());
    return {values.size(), mean, std::sqrt(squares / static_cast<double>(values.size() - 1)), *minimum, *maximum};
}

std::optional<double> dominantFrequency(std::vector<double> signal, double sampleRate, Baseline baseline,
                                        double minFrequency) {
    const double noise = kRoundingNoise * largestIn(signal);
    removeBaseline(signal, baseline);
    if (largestIn(signal) <= noise) return std::nullopt;

    std::vector<Complex> spectrum = weightedAndFilledUp(signal);
    transform(spectrum);
    const double spacing = sampleRate / static_cast<double>(spectrum.size());
    const double lowest = std::max(minFrequency, sampleRate / static_cast<double>(signal.size()));
    std::optional<double> frequency;
    double largest = 0.0;
    for (std::size_t i = 1; i <= spectrum.size() / 2; ++i) {
        const double candidate = static_cast<double>(i) * spacing;
        if (candidate < lowest || std::norm(spectrum[i]) <= largest) continue;
        largest = std::norm(spectrum[i]);
        frequency = candidate;
    }
    return frequency;
}

}  // namespace probestats
