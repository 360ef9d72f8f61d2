#pragma once

#include <memory>
#include <string>

#include "vexa/Export.h"
#include "vexa/ui/ProgressBarInterface.h"

namespace vexa::ui {

/// Drives a progress bar through a task of a known number of steps.
///
///     TaskProgress progress(bar, rows);
///     progress.start("Reading rows");
///     for (long row = 0; row < rows && !progress.isInterrupted(); ++row) {
///         read(row);
///         progress.advance();
///     }
///     progress.finish();   // or leave it to the destructor
///
/// The bar is told a whole percentage, rounded down, only when it has changed; it never goes back within a task and
/// never passes 100.
///
/// Costs:     advance() is an addition and a comparison unless the percentage changes. isInterrupted() asks the bar
///            each time: in a tight loop ask every hundredth step or so.
/// Errors:    what the bar throws passes through, except from the destructor.
/// Ownership: shares the bar.
/// Threads:   for one thread, the one on which the bar may be used.
class VEXAHOSTLIBS_API TaskProgress {
public:
    /// \param bar   what shows the progress.
    /// \param count the number of steps; anything below 1 counts as 1.
    /// \throws InvalidArgumentException "Expected a progress bar, but got none" when \p bar is null.
    TaskProgress(std::shared_ptr<ProgressBarInterface> bar, long count);
    TaskProgress(const TaskProgress&) = delete;
    TaskProgress& operator=(const TaskProgress&) = delete;
    /// Finishes the task if it was started and not finished. Never throws.
    ~TaskProgress();

    /// Starts the task, at its first step, with \p message beside the bar. May be called again after finish().
    void start(const std::string& message);
    /// Counts \p steps more as done. Steps beyond the count, and negative ones, are ignored.
    void advance(long steps = 1);
    /// Replaces the message beside the bar.
    void setStatusMessage(const std::string& message);
    /// Whether the user has asked to stop the task.
    bool isInterrupted() const;
    /// Finishes the task: the bar is taken down. Does nothing unless the task was started.
    void finish();

private:
    long stepsFor(int percent) const;
    void showPercent();

    std::shared_ptr<ProgressBarInterface> m_bar;
    long m_count;
    long m_done = 0;
    long m_stepsForNextPercent;
    int m_percent = 0;
    bool m_started = false;
};

}  // namespace vexa::ui
