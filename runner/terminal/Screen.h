#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "terminal/Console.h"
#include "terminal/DrawnStatus.h"
#include "terminal/StdoutRelay.h"
#include "vexastandin/Host.h"

namespace vexa::runner {

/// Keeps the status line, messages, and the output of add-ons apart on the user's terminal. As long as this object
/// lives, it is the sink of messages.
///
/// If the standard output is a terminal, too, the output of the add-ons comes through a relay. A thread of the screen
/// passes the output on, and redraws the status line when a drawing is due.
/// Threads: any thread may call the functions. Construct and destroy the screen while no add-on runs. Only one may
/// exist.
class Screen final : public MessageSinkInterface {
public:
    /// The standard error output must be a terminal.
    /// \param isStopping as for DrawnStatus
    /// \param isDrawn    is true while the status line is drawn; another process may read it after this one has died
    Screen(std::function<bool()> isStopping, std::atomic<bool>& isDrawn);
    /// Clears the status line, and prints the output that was held back.
    ~Screen() override;

    void tell(const std::string& lines) override;
    /// Shows the status line as it is now.
    void show(const standin::StatusLine& line);
    /// Call this before the program ends without destroying the screen: prints the output that was held back, and
    /// clears the status line. Any later call that shows something waits forever.
    void leave();

private:
    void watch();
    void passOn();

    std::mutex m_guard;
    DrawnStatus m_status;
    std::optional<StdoutRelay> m_relay;
    Descriptor m_wakeUp;
    std::thread m_watcher;
};

}  // namespace vexa::runner
