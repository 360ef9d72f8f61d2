#include "PlainStatus.h"

#include "Console.h"

namespace vexa::runner {
namespace {

constexpr int kStep = 10;
constexpr int kAllDone = 100;

std::string endOf(const standin::StatusLine& line, bool isStopping) {
    if (isStopping) return "stopped";
    const bool isDone = !line.showBar || line.percent == kAllDone;
    return isDone ? "done" : "ended at " + std::to_string(line.percent) + " %";
}

}  // namespace

void PlainStatus::show(const std::string& place, const standin::StatusLine& line, bool isStopping) {
    if (line.text.empty() && !line.showBar) return;
    const std::lock_guard<std::mutex> lock(m_guard);
    const std::string task = line.text.empty() ? place : place + ": " + line.text;
    const bool begins = line.active && (!m_isUp || line.percent < m_told);
    const int step = line.percent - line.percent % kStep;
    m_isUp = line.active;
    if (begins) {
        m_told = 0;
        tell(task);
    } else if (!line.active) {
        tell(task, endOf(line, isStopping));
    } else if (line.showBar && step > m_told && step < kAllDone) {  // the end tells of the last one
        m_told = step;
        tell(task, std::to_string(step) + " %");
    }
}

}  // namespace vexa::runner
