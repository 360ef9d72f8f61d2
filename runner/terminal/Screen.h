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

/// The terminal that the user looks at: it keeps apart the status line, messages, and what add-ons print. While it
/// lives, it is the sink of messages.
///
/// What the add-ons print comes through a relay when it goes to a terminal, too; a thread of the screen passes it on,
/// and draws what was not due before.
/// Threads: safe from any. It is made and destroyed while no add-on runs; there is one at a time.
class Screen final : public MessageSinkInterface {
public:
    /// For the standard error output, which must be a terminal.
    /// \param isStopping as for DrawnStatus
    /// \param isDrawn    tells whether the status line is drawn, also after the process has died
    Screen(std::function<bool()> isStopping, std::atomic<bool>& isDrawn);
    /// Takes the status line down, and puts out what was held back.
    ~Screen() override;

    void tell(const std::string& lines) override;
    /// Shows the status line as it is now.
    void show(const standin::StatusLine& line);
    /// Leaves the terminal to a program that ends without destroying the screen: puts out what was held back, and takes
    /// the status line down. Whoever shows something from now on waits for ever.
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
