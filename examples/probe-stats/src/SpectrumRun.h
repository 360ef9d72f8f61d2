#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "Spectrum.h"

namespace probestats {

/// A signal to analyse.
struct Signal {
    std::string label;  ///< its name in the status line
    std::vector<double> values;
};

/// Returns the \p peakCount strongest peaks of each signal, in the order of the signals. The host's status line shows
/// the progress, and the user can stop the function.
///
/// A second thread computes. The calling thread shows the progress and checks the stop button, because no other thread
/// may use the status line. \param signals one or more, each of plan.section values or more. \throws ProbeError
/// "SPECTRUM was stopped by the user". Exceptions of the host and of the computation pass through. In each
///         case the second thread has ended, and the status line is removed.
std::vector<std::vector<Peak>> findPeaks(const std::vector<Signal>& signals, const SpectrumPlan& plan,
                                         std::size_t peakCount);

}  // namespace probestats
