#pragma once

#include <cstddef>
#include <optional>
#include <vector>

namespace probestats {

/// Statistics of the values of a signal.
struct Summary {
    std::size_t count;
    double mean;
    double deviation;  ///< standard deviation of a sample: divided by count - 1
    double minimum;
    double maximum;
};

/// Returns the statistics of two or more \p values.
Summary summarize(const std::vector<double>& values);

/// The baseline to subtract from a signal before its spectrum is computed.
enum class Baseline { Mean, Line };

/// The minimum number of values for dominantFrequency().
constexpr std::size_t kMinSpectrumValues = 8;

/// Finds the frequency at which a signal oscillates most.
///
/// The function subtracts the baseline from the signal, weights it with a Hann window, appends zeros up to a power of
/// two N, and transforms it. The result is the frequency of the largest term, a multiple of sampleRate / N. It ignores
/// frequencies without a whole period in the signal, and those below \p minFrequency. \param signal       the values,
/// #kMinSpectrumValues or more. \param sampleRate   values per second, above 0. \param baseline     Line also removes a
/// drift. \param minFrequency in Hz. \return the frequency in Hz; nothing if the signal is only a baseline, or if all
/// frequencies are ignored.
std::optional<double> dominantFrequency(std::vector<double> signal, double sampleRate, Baseline baseline,
                                        double minFrequency);

}  // namespace probestats
