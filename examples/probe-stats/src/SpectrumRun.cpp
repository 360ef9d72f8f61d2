#include "SpectrumRun.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <mutex>

#include "ProbeError.h"
#include "Worker.h"
#include "vexautilutil/Mutex.h"
#include "vexautilutil/TaskProgressBar.h"

namespace probestats {
namespace {

using Peaks = std::vector<std::vector<Peak>>;
using vexa::vexautilutil::Mutex;

// The longest time until the stop button is checked again.
constexpr std::chrono::milliseconds kPatience{20};
// The largest rounding error of a signal that does not oscillate, relative to its largest value.
constexpr double kRoundingNoise = 1e-12;

// The progress of the worker, for the thread that shows it.
class ProgressBoard {
public:
    struct State {
        std::size_t signal = 0;
        std::size_t done = 0;
    };

    void beginSignal(std::size_t signal) {
        const std::lock_guard<Mutex> lock(m_mutex);
        m_state.signal = signal;
    }
    void add(std::size_t done) {
        const std::lock_guard<Mutex> lock(m_mutex);
        m_state.done += done;
    }
    State state() {
        const std::lock_guard<Mutex> lock(m_mutex);
        return m_state;
    }

private:
    Mutex m_mutex;
    State m_state;
};

struct Stopped {};

double largestIn(const std::vector<double>& values) {
    double largest = 0.0;
    for (const double value : values) largest = std::max(largest, std::abs(value));
    return largest;
}

Peaks compute(const std::vector<Signal>& signals, const SpectrumPlan& plan, std::size_t peakCount, ProgressBoard& board,
              const std::atomic<bool>& stop) {
    const SpectrumCheckpoint checkpoint = [&](std::size_t done) {
        if (stop) throw Stopped();
        board.add(done);
    };
    Peaks peaks;
    for (const Signal& signal : signals) {
        board.beginSignal(peaks.size());
        const std::vector<double> amplitudes = meanAmplitudes(signal.values, plan, checkpoint);
        peaks.push_back(strongestPeaks(amplitudes, plan, peakCount, kRoundingNoise * largestIn(signal.values)));
    }
    return peaks;
}

std::size_t stepsOf(const std::vector<Signal>& signals, const SpectrumPlan& plan) {
    std::size_t steps = 0;
    for (const Signal& signal : signals) steps += plan.sectionCount(signal.values.size()) * plan.frequencyCount;
    return steps;
}

std::string statusText(const Signal& signal) { return "Spectrum of " + signal.label; }

}  // namespace

Peaks findPeaks(const std::vector<Signal>& signals, const SpectrumPlan& plan, std::size_t peakCount) {
    ProgressBoard board;
    const auto progress = vexa::vexautilutil::createTaskProgressBar(static_cast<long>(stepsOf(signals, plan)));
    progress->start(statusText(signals.front()));
    // The last variable, so that it is destroyed first, even if the host's functions below throw.
    Worker<Peaks> worker([&](const std::atomic<bool>& stop) { return compute(signals, plan, peakCount, board, stop); });
    std::size_t shown = 0;
    do {
        if (progress->isInterrupted()) throw ProbeError("SPECTRUM was stopped by the user");
        const ProgressBoard::State state = board.state();
        progress->setStatusMessage(statusText(signals[state.signal]));
        progress->advance(static_cast<long>(state.done - shown));
        shown = state.done;
    } while (!worker.endsWithin(kPatience));
    return worker.result();
}

}  // namespace probestats
