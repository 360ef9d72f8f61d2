#pragma once

#include <chrono>
#include <cstddef>
#include <mutex>
#include <optional>
#include <string>

#include "vexastandin/Host.h"

namespace vexa::runner {

/// Logs the status line if it cannot be drawn: one message at the start, one every ten percent, and one at the end.
///
/// The end of a task is logged when the next task starts, or by conclude(), because only then it is known whether the
/// task failed. To keep the log short, only the first ten tasks of a command are logged, then one task a second. A
/// percentage that goes back is logged as a new start, at most once a second. Threads: any thread may call the
/// functions.
class PlainStatus {
public:
    /// Logs the current status line.
    /// \param place      the start of the messages
    /// \param isStopping whether the user has asked to stop
    void show(const std::string& place, const standin::StatusLine& line, bool isStopping);
    /// Logs how the last task of a command ended, and how many tasks were not logged. Call it after the command.
    /// \param hasSucceeded whether the command was accepted
    void conclude(bool hasSucceeded);

private:
    using Clock = std::chrono::steady_clock;
    struct Ending {
        std::string task;
        std::string how;
    };

    bool isTooSoon() const;
    void startTask(const std::string& place, const std::string& task);
    void tellStart(const std::string& task);
    void tellEnding();

    std::mutex m_guard;
    bool m_isUp = false;
    bool m_isTold = false;      // the task that is up, or was last
    int m_told = 0;             // percent
    Clock::time_point m_start;  // of the task told last, or when its percentage went back
    std::optional<Ending> m_ending;
    std::string m_place;
    // Of the command:
    std::size_t m_tasks = 0;
    std::size_t m_leftOut = 0;
};

}  // namespace vexa::runner
