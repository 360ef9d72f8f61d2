#include "terminal/DrawnStatus.h"

#include <unistd.h>

#include <string>
#include <utility>

#include "system/Descriptor.h"
#include "terminal/StatusPicture.h"
#include "terminal/Terminal.h"

namespace vexa::runner {
namespace {

constexpr std::chrono::milliseconds kLeastInterval{100};

}  // namespace

DrawnStatus::DrawnStatus(std::function<bool()> isStopping, std::atomic<bool>& isDrawn)
    : m_isStopping(std::move(isStopping)), m_inColour(wantsColour()), m_isDrawn(isDrawn) {}

void DrawnStatus::show(const standin::StatusLine& line) {
    // The percentage went back: the task was started again.
    if (line.active && (!m_line.active || line.percent < m_line.percent)) m_begin = Clock::now();
    m_line = line;
    m_hasChanged = true;
    if (line.active) {
        refresh();
    } else {
        clear();
    }
}

void DrawnStatus::refresh() {
    if (m_line.active && Clock::now() - m_lastDrawing >= kLeastInterval && isOutdated()) draw();
}

void DrawnStatus::clear() {
    if (m_isDrawn.exchange(false)) writeAll(STDERR_FILENO, kClearLine);
}

std::chrono::seconds DrawnStatus::elapsed() const {
    return std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - m_begin);
}

bool DrawnStatus::isOutdated() const {
    return m_hasChanged || !m_isDrawn || m_drawnStopping != m_isStopping() || m_drawnElapsed != elapsed() ||
           m_drawnColumns != columnsOf(STDERR_FILENO);
}

void DrawnStatus::draw() {
    m_hasChanged = false;
    m_drawnStopping = m_isStopping();
    m_drawnElapsed = elapsed();
    m_drawnColumns = columnsOf(STDERR_FILENO);
    // Leave the last column free: after it, some terminals go to the next line at once.
    const StatusFrame frame{m_drawnElapsed, m_drawnStopping, m_inColour, m_drawnColumns - 1};
    m_isDrawn = true;
    // One write avoids flicker.
    writeAll(STDERR_FILENO, kClearLine + pictureOf(m_line, frame) + '\r');
    m_lastDrawing = Clock::now();
}

}  // namespace vexa::runner
