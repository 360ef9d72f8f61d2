#include "vexa/ui/TaskProgress.h"

#include <algorithm>
#include <utility>

#include "vexa/InvalidArgumentException.h"

namespace vexa::ui {
namespace {

constexpr int kAll = 100;

}  // namespace

TaskProgress::TaskProgress(std::shared_ptr<ProgressBarInterface> bar, long count)
    : m_bar(std::move(bar)), m_count(std::max(count, 1L)), m_stepsForNextPercent(stepsFor(1)) {
    if (m_bar == nullptr) throw InvalidArgumentException("Expected a progress bar, but got none");
}

TaskProgress::~TaskProgress() {
    try {
        finish();
    } catch (...) {  // a destructor must not throw
    }
}

void TaskProgress::start(const std::string& message) {
    m_done = 0;
    m_percent = 0;
    m_stepsForNextPercent = stepsFor(1);
    m_bar->start(message);
    m_started = true;
}

void TaskProgress::advance(long steps) {
    if (steps < 1) return;
    m_done = steps < m_count - m_done ? m_done + steps : m_count;
    if (m_done >= m_stepsForNextPercent && m_percent < kAll) showPercent();
}

void TaskProgress::setStatusMessage(const std::string& message) { m_bar->setStatusMessage(message); }

bool TaskProgress::isInterrupted() const { return m_bar->isInterrupted(); }

void TaskProgress::finish() {
    if (!m_started) return;
    m_started = false;
    m_bar->finish();
}

// Returns the smallest number of steps that is at least `percent` of the count. It splits the count into hundreds and a
// rest, so that no product overflows.
long TaskProgress::stepsFor(int percent) const {
    const long hundreds = m_count / kAll;
    const long rest = m_count % kAll;
    return hundreds * percent + (rest * percent + kAll - 1) / kAll;
}

void TaskProgress::showPercent() {
    while (m_percent < kAll && m_done >= stepsFor(m_percent + 1)) ++m_percent;
    m_stepsForNextPercent = stepsFor(std::min(m_percent + 1, kAll));
    m_bar->setPercentDone(m_percent);
}

}  // namespace vexa::ui
