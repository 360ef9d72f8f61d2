#include "terminal/Screen.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <utility>

#include "system/LastError.h"
#include "system/processes/Signals.h"
#include "terminal/Terminal.h"

namespace vexa::runner {
namespace {

constexpr int kWatchInterval = 100;  // milliseconds

}  // namespace

Screen::Screen(std::function<bool()> isStopping, std::atomic<bool>& isDrawn)
    : m_status(std::move(isStopping), isDrawn), m_wakeUp(eventfd(0, EFD_CLOEXEC)) {
    if (!m_wakeUp.isOpen()) throwLastError("eventfd");
    if (isTerminal(STDOUT_FILENO)) m_relay.emplace();
    const SignalMask blocked(allSignals());
    m_watcher = std::thread([this] { watch(); });
    setMessageSink(this);
}

Screen::~Screen() {
    // The watcher still reads the pipe, so this cannot block.
    std::fflush(stdout);
    setMessageSink(nullptr);
    const std::uint64_t wakes = 1;
    static_cast<void>(!write(m_wakeUp.get(), &wakes, sizeof wakes));
    m_watcher.join();
    m_status.clear();
}

void Screen::tell(const std::string& lines) {
    // Do not lock m_guard here: if the pipe is full, this waits for the watcher, which locks it.
    std::fflush(stdout);
    const std::lock_guard<std::mutex> lock(m_guard);
    passOn();
    m_status.clear();
    std::fputs(lines.c_str(), stderr);
    m_status.refresh();
}

void Screen::show(const standin::StatusLine& line) {
    std::fflush(stdout);
    const std::lock_guard<std::mutex> lock(m_guard);
    passOn();
    // Ends a partial line, so that the status line does not overwrite it.
    if (line.active && !m_status.isDrawn() && m_relay && m_relay->isWithinLine()) m_relay->pass("\n");
    m_status.show(line);
    passOn();
}

void Screen::leave() {
    std::fflush(stdout);
    m_guard.lock();
    m_status.clear();
    if (m_relay) m_relay->pass(m_relay->take(false));
}

void Screen::watch() {
    std::array<pollfd, 2> watched{{{m_wakeUp.get(), POLLIN, 0}, {m_relay ? m_relay->readable() : -1, POLLIN, 0}}};
    while (watched[0].revents == 0) {
        poll(watched.data(), watched.size(), kWatchInterval);
        // The add-on has closed the standard output, so nothing more can come.
        if (watched[1].revents == POLLHUP) watched[1].fd = -1;
        const std::lock_guard<std::mutex> lock(m_guard);
        passOn();
        m_status.refresh();
    }
}

// Partial lines pass through only while the status line is hidden.
void Screen::passOn() {
    if (!m_relay) return;
    const std::string printed = m_relay->take(m_status.isUp());
    if (printed.empty()) return;
    m_status.clear();
    m_relay->pass(printed);
    m_status.refresh();
}

}  // namespace vexa::runner
