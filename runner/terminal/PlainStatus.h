#pragma once

#include <chrono>
#include <cstddef>
#include <mutex>
#include <optional>
#include <string>

#include "vexastandin/Host.h"

namespace vexa::runner {

/// The status line where it cannot be drawn, as a log: a message at the start, every ten percent, and at the end.
///
/// An end is told when the next task starts, or by conclude(): only then is it known whether the task failed. However
/// often an add-on changes the line, it fills no log: of a command the first ten tasks are told, then one a second, and
/// a percentage that goes back is a new start once a second.
/// Threads: safe from any.
class PlainStatus {
public:
    /// Tells of the status line as it is now.
    /// \param place      what the messages begin with
    /// \param isStopping whether the user has asked to stop
    void show(const std::string& place, const standin::StatusLine& line, bool isStopping);
    /// Tells how the last task of a command ended, and how many were left out. Call it when the command has ended.
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
