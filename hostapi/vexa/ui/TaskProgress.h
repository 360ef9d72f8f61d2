#pragma once

#include <memory>
#include <string>

#include "vexa/Export.h"
#include "vexa/ui/ProgressBarInterface.h"

namespace vexa::ui {

/// Counts the steps of a task and shows the percentage on a progress bar.
///
///     TaskProgress progress(bar, rows);
///     progress.start("Reading rows");
///     for (long row = 0; row < rows && !progress.isInterrupted(); ++row) {
///         read(row);
///         progress.advance();
///     }
///     progress.finish();   // the destructor would call it, too
///
/// The percentage is a whole number, rounded down. The class passes it to the bar only when it changes. Within a task
/// it never falls, and it never exceeds 100.
///
/// Cost:      advance() is an addition and a comparison, unless the percentage changes. isInterrupted() calls the bar
///            each time: in a short loop, call it for one step in a hundred.
/// Errors:    an exception of the bar passes through. The destructor ignores it.
/// Ownership: the object shares ownership of the bar.
/// Threads:   use the object on the one thread that may use the bar.
class VEXAHOSTLIBS_API TaskProgress {
public:
    /// Creates the progress of a task. Call start() to show it.
    /// \param bar   shows the progress; not null.
    /// \param count the number of steps; a number below 1 counts as 1.
    /// \throws InvalidArgumentException "Expected a progress bar, but got none" if \p bar is null.
    TaskProgress(std::shared_ptr<ProgressBarInterface> bar, long count);
    TaskProgress(const TaskProgress&) = delete;
    TaskProgress& operator=(const TaskProgress&) = delete;
    /// Calls finish(). Never throws.
    ~TaskProgress();

    /// Starts the task at its first step and shows the bar, with \p message beside it. It may be called again after
    /// finish().
    void start(const std::string& message);
    /// Adds \p steps to the steps done. The sum stops at the number of steps of the task. A negative \p steps is
    /// ignored.
    void advance(long steps = 1);
    /// Replaces the message beside the bar.
    void setStatusMessage(const std::string& message);
    /// Returns true if the user has asked to stop the task.
    bool isInterrupted() const;
    /// Finishes the task and removes the bar. Does nothing if no task is started.
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
