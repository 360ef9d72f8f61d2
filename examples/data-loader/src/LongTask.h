#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "vexa/ui/TaskProgress.h"

namespace dataloader {

/// A task of many small steps. The host's status line shows its progress, and the user can stop it.
///
///     LongTask task("EXPORT", "Writing out.csv", rows);
///     for (std::size_t row = 0; row < rows; ++row) {
///         task.step();
///         write(row);
///     }
///
/// The class checks the stop button at the start, and then every few thousand steps: often enough for the user, and
/// rarely enough to cost nearly nothing. The destructor removes the status line, also after an exception. Threads: use
/// the object on the thread on which the host called the add-on.
class LongTask {
public:
    /// \param command the name of the command, for the message.
    /// \param text    the text of the status line.
    /// \throws LoaderError if the user has already pressed stop.
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
