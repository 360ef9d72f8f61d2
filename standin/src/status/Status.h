#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "vexastandin/StatusLine.h"

namespace vexa::standin {

/// The host's status line.
///
/// Each operation returns the line as it is after the change; nothing when there was none.
/// Threads: safe from any.
class Status {
public:
    /// Puts the line up for a new task. That is a change, even if it shows what was there.
    std::optional<StatusLine> start(std::string text, bool showStopButton, bool showBar, bool keepsHistory);
    /// Moves the bar of a line that is up.
    std::optional<StatusLine> setPercent(int percent, bool keepsHistory);
    /// Replaces the text of a line that is up.
    std::optional<StatusLine> setText(std::string text, bool keepsHistory);
    /// Takes the line down.
    std::optional<StatusLine> finish(bool keepsHistory);

    StatusLine line() const;
    std::vector<StatusLine> history() const;

private:
    StatusLine changed(StatusLine line, bool keepsHistory);

    mutable std::mutex m_guard;
    StatusLine m_line;
    std::vector<StatusLine> m_history;
};

}  // namespace vexa::standin
