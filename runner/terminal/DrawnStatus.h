#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <functional>

#include "vexastandin/Host.h"

namespace vexa::runner {

/// The facts on which the drawing of the status line depends, apart from the line itself.
struct StatusFrame {
    std::chrono::seconds elapsed{0};  ///< since the task started
    bool isStopping = false;          ///< the user has asked to stop it
    std::size_t columns = 0;          ///< the width of the terminal
};

/// The status line, drawn on the terminal at the standard error output.
///
/// It is redrawn in place, at most ten times a second. The cursor stays at the start of the line. So if the window
/// becomes narrower and the terminal wraps the line, the whole line is still after the cursor and can be cleared.
/// Threads: one at a time, unless a function says otherwise.
class DrawnStatus {
public:
    /// \param isStopping whether the user has asked to stop; called at each drawing.
    /// \param isDrawn    is set to whether something is drawn
    DrawnStatus(std::function<bool()> isStopping, std::atomic<bool>& isDrawn);

    /// Shows \p line when the next drawing is due. If the host has removed the line, clears it at once.
    void show(const standin::StatusLine& line);
    /// Draws the line if it has changed and a drawing is due.
    void refresh();
    /// Clears the drawn line to make room. The next refresh() that is due draws it again.
    void clear();
    /// Returns true while the host shows its status line, drawn or not.
    bool isUp() const { return m_line.active; }
    /// Returns true if the line is drawn now. Any thread and any signal handler may call it.
    bool isDrawn() const { return m_isDrawn; }

private:
    using Clock = std::chrono::steady_clock;

    StatusFrame frame() const;
    void draw();

    std::function<bool()> m_isStopping;
    bool m_inColour;
    standin::StatusLine m_line;
    Clock::time_point m_begin;
    Clock::time_point m_lastDrawing;
    std::atomic<bool>& m_isDrawn;
    bool m_hasChanged = false;  // the line, since the last drawing
    StatusFrame m_drawn;
};

}  // namespace vexa::runner
