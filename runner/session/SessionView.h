#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "session/FindingPrinter.h"
#include "terminal/Console.h"
#include "terminal/PlainStatus.h"
#include "terminal/Screen.h"
#include "vexastandin/Host.h"

namespace vexa::runner {

/// Shows the user the dialogs, the status line and the findings of a host.
///
/// Threads: any thread of an add-on may show a dialog. Call the functions on the thread of the host.
class SessionView {
public:
    /// Shows what \p host does from now on: dialogs, and the status line if \p showsStatus.
    void show(standin::Host& host, bool showsStatus) {
        m_host = &host;
        host.onDialog([this](const std::string& text) { tell(place() + ": dialog", text); });
        if (showsStatus) host.onStatus([this](const standin::StatusLine& line) { showStatus(line); });
    }

    /// Draws the status line on the terminal from now on. The parameters are those of Screen.
    void drawStatus(std::function<bool()> isStopping, std::atomic<bool>& isDrawn) {
        m_screen.emplace(std::move(isStopping), isDrawn);
    }
    void stopDrawing() { m_screen.reset(); }
    /// Call this before the process ends without destroying this object. Call nothing after this.
    void leaveTerminal() {
        if (m_screen) m_screen->leave();
    }

    /// Sets the start of messages: `FILE:LINE: ID` while a command runs, otherwise the name of the program.
    void setPlace(const std::string& place) {
        const std::lock_guard<std::mutex> lock(m_guard);
        m_place = place;
    }
    std::string place() const {
        const std::lock_guard<std::mutex> lock(m_guard);
        return m_place;
    }

    /// Shows that a command or other work has ended.
    void conclude(bool hasSucceeded) { m_plainStatus.conclude(hasSucceeded); }
    /// Appends what \p ending returns to the text of each finding.
    void endFindingsBy(FindingPrinter::Ending ending) { m_findings.endBy(std::move(ending)); }
    /// Prints the findings since the last call.
    void printFindings() { m_findings.printNew(*m_host); }

private:
    void showStatus(const standin::StatusLine& line) {
        if (m_screen) return m_screen->show(line);
        m_plainStatus.show(place(), line, m_host->isStopPressed());
    }

    standin::Host* m_host = nullptr;
    mutable std::mutex m_guard;
    std::string m_place = kProgramName;
    PlainStatus m_plainStatus;
    std::optional<Screen> m_screen;
    FindingPrinter m_findings;
};

}  // namespace vexa::runner
