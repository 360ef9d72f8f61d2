#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "Spectrum.h"

namespace probestats {

/// A signal to be analysed.
struct Signal {
    std::string label;  ///< what the status line calls it
    std::vector<double> values;
};

/// Finds the \p peakCount strongest peaks of each signal, in their order, while the host's status line shows how far
/// it has come and the user may stop it.
///
/// A thread of its own computes. The calling thread, the only one that may use the status line, shows and asks.
/// \param signals one or more, each of plan.section values or more.
/// \throws ProbeError "SPECTRUM was stopped by the user". What the host or the computation throws passes through. The
///         thread has ended and the status line is down then, as always.
std::vector<std::vector<Peak>> findPeaks(const std::vector<Signal>& signals, const SpectrumPlan& plan,
                                         std::size_t peakCount);

}  // namespace probestats
