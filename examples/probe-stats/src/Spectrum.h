#pragma once

#include <cstddef>
#include <functional>
#include <vector>

namespace probestats {

/// How to compute the spectrum of a signal: the sections of the signal, and evenly spaced frequencies.
struct SpectrumPlan {
    double sampleRate;           ///< values a second, above 0
    std::size_t section;         ///< values in a section: 2 or more, and no more than the signal has
    std::size_t step;            ///< values from the start of one section to that of the next, above 0
    double minFrequency;         ///< in Hz
    double frequencyStep;        ///< in Hz
    std::size_t frequencyCount;  ///< above 0

    /// Returns how many sections a signal of \p values values has.
    std::size_t sectionCount(std::size_t values) const { return (values - section) / step + 1; }
    double frequency(std::size_t index) const { return minFrequency + static_cast<double>(index) * frequencyStep; }
};

/// Called regularly with the work since the last call, in sections times frequencies. An exception from it ends the
/// computation.
using SpectrumCheckpoint = std::function<void(std::size_t done)>;

/// Returns the mean amplitude over all sections of \p signal, at each frequency of \p plan.
///
/// The function subtracts the mean from each section, weights the section with a Hann window, and transforms it by the
/// defining sum, which allows any frequencies. If a section has a whole number of periods of a wave, the result has the
/// amplitude of the wave.
std::vector<double> meanAmplitudes(const std::vector<double>& signal, const SpectrumPlan& plan,
                                   const SpectrumCheckpoint& checkpoint);

/// A frequency with an amplitude above both neighbours.
struct Peak {
    double frequency;
    double amplitude;
};

/// Returns at most \p count peaks of \p amplitudes, the strongest first. An amplitude of \p noise or less is not a
/// peak.
std::vector<Peak> strongestPeaks(const std::vector<double>& amplitudes, const SpectrumPlan& plan, std::size_t count,
                                 double noise);

}  // namespace probestats
