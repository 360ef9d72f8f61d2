#include "session/SessionView.h"

#include <utility>

namespace vexa::runner {

void SessionView::show(standin::Host& host, bool showsStatus) {
    m_host = &host;
    host.onDialog([this](const std::string& text) { tell(place() + ": dialog", text); });
    if (showsStatus) host.onStatus([this](const standin::StatusLine& line) { showStatus(line); });
}

void SessionView::drawStatus(std::function<bool()> isStopping, std::atomic<bool>& isDrawn) {
    m_screen.emplace(std::move(isStopping), isDrawn);
}

void SessionView::leaveTerminal() {
    if (m_screen) m_screen->leave();
}

void SessionView::setPlace(const std::string& place) {
    const std::lock_guard<std::mutex> lock(m_guard);
    m_place = place;
}

std::string SessionView::place() const {
    const std::lock_guard<std::mutex> lock(m_guard);
    return m_place;
}

void SessionView::showStatus(const standin::StatusLine& line) {
    if (m_screen) return m_screen->show(line);
    m_plainStatus.show(place(), line, m_host->isStopPressed());
}

}  // namespace vexa::runner
