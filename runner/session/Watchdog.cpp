#include "session/Watchdog.h"

#include <utility>

#include "system/processes/Signals.h"

namespace vexa::runner {

Watchdog::Watchdog(std::function<void()> endProgram) : m_endProgram(std::move(endProgram)) {
    const SignalMask blocked(allSignals());
    m_thread = std::thread([this] { watch(); });
}

Watchdog::~Watchdog() {
    {
        const std::lock_guard<std::mutex> lock(m_guard);
        m_isEnding = true;
    }
    m_news.notify_one();
    m_thread.join();
}

void Watchdog::start(Seconds limit) {
    {
        const std::lock_guard<std::mutex> lock(m_guard);
        m_deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(limit);
    }
    m_news.notify_one();
}

void Watchdog::stop() {
    const std::lock_guard<std::mutex> lock(m_guard);
    m_deadline.reset();
}

void Watchdog::watch() {
    std::unique_lock<std::mutex> lock(m_guard);
    while (!m_isEnding) {
        if (!m_deadline) {
            m_news.wait(lock);
        } else if (Clock::now() < *m_deadline) {
            m_news.wait_until(lock, *m_deadline);
        } else {
            m_endProgram();
        }
    }
}

}  // namespace vexa::runner
