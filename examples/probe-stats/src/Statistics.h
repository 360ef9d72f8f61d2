#pragma once

#include <cstddef>
#include <optional>
#include <vector>

namespace probestats {

/// What describes the distribution of a signal's values.
struct Summary {
    std::size_t count;
    double mean;
    double deviation;  ///< standard deviation of a sample: divided by count - 1
    double minimum;
    double maximum;
};

/// Describes \p values, of which there must be two or more.
Summary summarize(const std::vector<double>& values);

/// What is taken off a signal before its spectrum is computed.
enum class Baseline { Mean, Line };

/// The fewest values of which dominantFrequency() makes sense.
constexpr std::size_t kMinSpectrumValues = 8;

/// Finds the frequency at which a signal oscillates most.
///
/// The signal, less its baseline, is weighted with a Hann window, filled up with zeros to a power of two N, and
/// transformed; the frequency of the largest term is the result. It is a multiple of sampleRate / N. Left out are
/// frequencies of which not even one whole period fits into the signal, and those below \p minFrequency.
/// \param signal       the values, #kMinSpectrumValues or more.
/// \param sampleRate   values a second, above 0.
/// \param baseline     Line also removes a drift.
/// \param minFrequency in Hz.
/// \return the frequency in Hz; none when nothing but the baseline is there, or no frequency is left to look at.
std::optional<double> dominantFrequency(std::vector<double> signal, double sampleRate, Baseline baseline,
                                        double minFrequency);

}  // namespace probestats
