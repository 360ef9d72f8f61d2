#include "status/Status.h"

#include <algorithm>
#include <utility>

namespace vexa::standin {
namespace {

constexpr int kAllDone = 100;

}  // namespace

std::optional<StatusLine> Status::start(std::string text, bool showStopButton, bool showBar, bool keepsHistory) {
    const std::lock_guard<std::mutex> lock(m_guard);
    return changed({std::move(text), 0, showStopButton, showBar, true}, keepsHistory);
}

std::optional<StatusLine> Status::setPercent(int percent, bool keepsHistory) {
    const std::lock_guard<std::mutex> lock(m_guard);
    percent = std::clamp(percent, 0, kAllDone);
    if (!m_line.active || percent == m_line.percent) return std::nullopt;
    StatusLine line = m_line;
    line.percent = percent;
    return changed(std::move(line), keepsHistory);
}

std::optional<StatusLine> Status::setText(std::string text, bool keepsHistory) {
    const std::lock_guard<std::mutex> lock(m_guard);
    if (!m_line.active || text == m_line.text) return std::nullopt;
    StatusLine line = m_line;
    line.text = std::move(text);
    return changed(std::move(line), keepsHistory);
}

std::optional<StatusLine> Status::finish(bool keepsHistory) {
    const std::lock_guard<std::mutex> lock(m_guard);
    if (!m_line.active) return std::nullopt;
    m_hasFinished = true;
    StatusLine line = m_line;
    line.active = false;
    return changed(std::move(line), keepsHistory);
}

std::optional<facts::Fact> Status::factAbout(int percent) const {
    using facts::Fact;
    const std::lock_guard<std::mutex> lock(m_guard);
    if (!m_line.active) return m_hasFinished ? Fact::StatusCheckAfterFinish : Fact::StatusCheckBeforeStart;
    if (percent > kAllDone) return Fact::StatusCheckOver100;
    if (percent < 0) return Fact::StatusCheckNegative;
    return percent < m_line.percent ? std::optional(Fact::StatusCheckBackwards) : std::nullopt;
}

StatusLine Status::line() const {
    const std::lock_guard<std::mutex> lock(m_guard);
    return m_line;
}

std::vector<StatusLine> Status::history() const {
    const std::lock_guard<std::mutex> lock(m_guard);
    return m_history;
}

// Copies first, so that the line stays as it was if there is no memory.
StatusLine Status::changed(StatusLine line, bool keepsHistory) {
    StatusLine copy = line;
    if (keepsHistory) m_history.push_back(line);
    std::swap(m_line, line);
    return copy;
}

}  // namespace vexa::standin
