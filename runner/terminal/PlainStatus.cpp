#include "terminal/PlainStatus.h"

#include "terminal/Console.h"

namespace vexa::runner {
namespace {

constexpr int kStep = 10;
constexpr std::size_t kTasksAtOnce = 10;
constexpr std::chrono::seconds kQuietTime{1};
constexpr const char* kStopped = "stopped";

std::string endOf(const standin::StatusLine& line, bool isStopping) {
    if (isStopping) return kStopped;
    const bool isDone = !line.showBar || line.percent == standin::kAllDone;
    return isDone ? "done" : "ended at " + std::to_string(line.percent) + " %";
}

}  // namespace

void PlainStatus::show(const std::string& place, const standin::StatusLine& line, bool isStopping) {
    if (line.text.empty() && !line.showBar) return;
    const std::lock_guard<std::mutex> lock(m_guard);
    const std::string task = line.text.empty() ? place : place + ": " + line.text;
    const int step = line.percent - line.percent % kStep;
    const bool starts = line.active && !m_isUp;
    m_isUp = line.active;
    if (starts) return startTask(place, task);
    if (!m_isTold) return;
    if (!line.active) {
        m_ending = Ending{task, endOf(line, isStopping)};
    } else if (line.percent < m_told) {
        if (!isTooSoon()) tellStart(task);
    } else if (line.showBar && step > m_told && step < standin::kAllDone) {  // 100 % is logged as the end
        m_told = step;
        tell(task, std::to_string(step) + " %");
    }
}

void PlainStatus::conclude(bool hasSucceeded) {
    const std::lock_guard<std::mutex> lock(m_guard);
    // A progress bar of the library shows 100 % before it ends, even if the task failed.
    if (m_ending && !hasSucceeded && m_ending->how != kStopped) m_ending->how = "failed";
    tellEnding();
    if (m_leftOut > 0) tell(m_place, "and " + std::to_string(m_leftOut) + " more tasks");
    m_tasks = 0;
    m_leftOut = 0;
}

bool PlainStatus::isTooSoon() const { return Clock::now() - m_start < kQuietTime; }

void PlainStatus::startTask(const std::string& place, const std::string& task) {
    tellEnding();
    m_place = place;
    m_isTold = m_tasks++ < kTasksAtOnce || !isTooSoon();
    if (m_isTold) {
        tellStart(task);
    } else {
        ++m_leftOut;
    }
}

void PlainStatus::tellStart(const std::string& task) {
    m_told = 0;
    m_start = Clock::now();
    tell(task);
}

void PlainStatus::tellEnding() {
    if (m_ending) tell(m_ending->task, m_ending->how);
    m_ending.reset();
}

}  // namespace vexa::runner
