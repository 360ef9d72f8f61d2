#pragma once

#include <cstddef>
#include <functional>
#include <vector>

namespace probestats {

/// How the spectrum of a signal is taken: by sections that slide over it, at frequencies that are evenly spaced.
struct SpectrumPlan {
    double sampleRate;           ///< values a second, above 0
    std::size_t section;         ///< values in a section: 2 or more, and no more than the signal has
    std::size_t step;            ///< values from the start of one section to that of the next, above 0
    double minFrequency;         ///< in Hz
    double frequencyStep;        ///< in Hz
    std::size_t frequencyCount;  ///< above 0

    /// How many sections lie within a signal of \p values values.
    std::size_t sectionCount(std::size_t values) const { return (values - section) / step + 1; }
    double frequency(std::size_t index) const { return minFrequency + static_cast<double>(index) * frequencyStep; }
};

/// Is called now and then with what was done since it was called last, in sections times frequencies. What it throws
/// ends the computation.
using SpectrumCheckpoint = std::function<void(std::size_t done)>;

/// The mean amplitude over all sections of \p signal, at each frequency of \p plan.
///
/// Each section, less its mean, is weighted with a Hann window and transformed by the defining sum, which allows any
/// frequencies. A wave that fits a whole number of times into a section shows with its own amplitude.
std::vector<double> meanAmplitudes(const std::vector<double>& signal, const SpectrumPlan& plan,
                                   const SpectrumCheckpoint& checkpoint);

/// A frequency whose amplitude is above those beside it.
struct Peak {
    double frequency;
    double amplitude;
};

/// The \p count strongest peaks of \p amplitudes, or as many as there are, the strongest first. What is not above
/// \p noise is no peak.
std::vector<Peak> strongestPeaks(const std::vector<double>& amplitudes, const SpectrumPlan& plan, std::size_t count,
                                 double noise);

}  // namespace probestats
