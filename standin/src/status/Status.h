#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "facts/Facts.h"
#include "vexastandin/StatusLine.h"

namespace vexa::standin {

/// The host's status line.
///
/// Each operation returns the line after the change, or nothing if it changed nothing.
/// Threads: safe from any.
class Status {
public:
    /// Shows the line for a new task. This counts as a change even if the line looks the same.
    std::optional<StatusLine> start(std::string text, bool showStopButton, bool showBar, bool keepsHistory);
    /// Changes the percentage of a line that is shown.
    std::optional<StatusLine> setPercent(int percent, bool keepsHistory);
    /// Changes the text of a line that is shown.
    std::optional<StatusLine> setText(std::string text, bool keepsHistory);
    /// Hides the line.
    std::optional<StatusLine> finish(bool keepsHistory);

    /// The fact that says what a check with \p percent answers now; nothing if the answer depends on the user only.
    std::optional<facts::Fact> factAbout(int percent) const;

    StatusLine line() const;
    std::vector<StatusLine> history() const;

private:
    StatusLine changed(StatusLine line, bool keepsHistory);

    mutable std::mutex m_guard;
    StatusLine m_line;
    bool m_hasFinished = false;  // a line was shown before
    std::vector<StatusLine> m_history;
};

}  // namespace vexa::standin
