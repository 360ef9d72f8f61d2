#pragma once

#include <atomic>
#include <optional>

#include "system/processes/Signals.h"
#include "vexastandin/Host.h"

namespace vexa::runner {

/// Ctrl-C, which is the stop button while commands run: SIGINT presses it in the host. Before arm(), after disarm() and
/// the second time it ends the program at once, and clears the status line.
///
/// Threads: one is used at a time, from one thread, where nothing else is said.
class StopButton : NonCopyable {
public:
    /// SIGINT keeps its meaning until install().
    /// \param isStatusDrawn whether the status line is drawn, and so is to be cleared when the program ends.
    explicit StopButton(const std::atomic<bool>& isStatusDrawn) : m_isStatusDrawn(isStatusDrawn) {}
    /// Gives SIGINT its meaning back.
    ~StopButton();

    /// Takes over SIGINT, unless it is ignored: then it stays so. To be called once.
    void install();
    /// From now on the first SIGINT presses the stop button of \p host.
    void arm(standin::Host& host);
    /// After arm(): from now on it is the stop button of \p host. When it was pressed already, it is there, too.
    void handOver(standin::Host& host);
    /// From now on SIGINT ends the program.
    void disarm();
    /// Whether the stop button was pressed. From any thread.
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
