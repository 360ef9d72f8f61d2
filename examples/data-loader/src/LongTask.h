#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "vexa/ui/TaskProgress.h"

namespace dataloader {

/// A task of many small steps, whose progress the host's status line shows, and which the user may stop.
///
///     LongTask task("EXPORT", "Writing out.csv", rows);
///     for (std::size_t row = 0; row < rows; ++row) {
///         task.step();
///         write(row);
///     }
///
/// The host is asked at the start, and then every few thousand steps: often enough for the user, rarely enough to cost
/// nothing. The status line is down when the object is gone, whatever ended the task.
/// Threads: for the thread on which the host called.
class LongTask {
public:
    /// \param command what the user knows the task by.
    /// \param text    what the status line says.
    /// \throws LoaderError when the user has stopped it already.
    LongTask(const char* command, const std::string& text, uint64_t steps);

    /// Counts a step.
    /// \throws LoaderError "COMMAND was stopped by the user".
    void step() {
        if (++m_done % kStepsPerCheck == 0) check();
    }

private:
    static constexpr uint64_t kStepsPerCheck = 4096;

    void check();

    const char* m_command;
    std::unique_ptr<vexa::ui::TaskProgress> m_progress;
    uint64_t m_done = 0;
    uint64_t m_shown = 0;
};

}  // namespace dataloader
