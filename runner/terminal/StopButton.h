#pragma once

#include <atomic>
#include <optional>

#include "system/processes/Signals.h"
#include "vexastandin/Host.h"

namespace vexa::runner {

/// Makes Ctrl-C the stop button while commands run: the first SIGINT presses the button in the host. A second SIGINT,
/// and any SIGINT before arm() or after disarm(), clears the status line and ends the program at once.
///
/// Threads: use one object at a time, on one thread, unless a function says otherwise.
class StopButton : NonCopyable {
public:
    /// Does not change SIGINT; install() does.
    /// \param isStatusDrawn true while the status line is drawn and must be cleared before the program ends.
    explicit StopButton(const std::atomic<bool>& isStatusDrawn) : m_isStatusDrawn(isStatusDrawn) {}
    /// Restores the previous action of SIGINT.
    ~StopButton();

    /// Handles SIGINT from now on. If the process ignores SIGINT, it still does. Call it once.
    void install();
    /// From now on the first SIGINT presses the stop button of \p host.
    void arm(standin::Host& host);
    /// After arm(): from now on SIGINT presses the stop button of \p host. If the button was already pressed, presses
    /// it in \p host, too.
    void handOver(standin::Host& host);
    /// From now on SIGINT ends the program.
    void disarm();
    /// Returns true if the stop button was pressed. Any thread may call it.
    bool isPressed() const { return m_isPressed; }

private:
    static void onSignal(int signal);
    void interrupt();
    void endProgram() const;

    const std::atomic<bool>& m_isStatusDrawn;
    std::atomic<standin::Host*> m_host{nullptr};  // null: not armed
    std::atomic<bool> m_isPressed{false};
    std::optional<SignalHandler> m_handler;
};

}  // namespace vexa::runner
