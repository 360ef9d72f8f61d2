#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <functional>

#include "vexastandin/Host.h"

namespace vexa::runner {

/// The status line, drawn on the terminal at the standard error output.
///
/// It is drawn in place, at most ten times a second. The cursor rests at its start: so however the terminal wraps the
/// line when its window becomes narrower, all of it comes after the cursor, and is cleared with it.
/// Threads: one at a time, where nothing else is said.
class DrawnStatus {
public:
    /// \param isStopping whether the user has asked to stop; asked at each drawing.
    /// \param isDrawn    kept at whether something is drawn
    DrawnStatus(std::function<bool()> isStopping, std::atomic<bool>& isDrawn);

    /// Takes over the status line as it is now. One that is taken down goes at once, all else shows when it is due.
    void show(const standin::StatusLine& line);
    /// Draws the line again if there is something new to draw, and it is due.
    void refresh();
    /// Clears what is drawn, to make room. The next refresh() that is due brings it back.
    void clear();
    /// Whether the status line is up.
    bool isUp() const { return m_line.active; }
    /// Whether something is drawn. May be called from any thread, and from a signal handler.
    bool isDrawn() const { return m_isDrawn; }

private:
    using Clock = std::chrono::steady_clock;

    std::chrono::seconds elapsed() const;
    bool isOutdated() const;
    void draw();

    std::function<bool()> m_isStopping;
    bool m_inColour;
    standin::StatusLine m_line;
    Clock::time_point m_begin;
    Clock::time_point m_lastDrawing;
    std::atomic<bool>& m_isDrawn;
    // What the last drawing showed.
    bool m_hasChanged = false;
    bool m_drawnStopping = false;
    std::size_t m_drawnColumns = 0;
    std::chrono::seconds m_drawnElapsed{0};
};

}  // namespace vexa::runner
