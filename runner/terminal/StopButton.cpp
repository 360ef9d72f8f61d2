#include "terminal/StopButton.h"

#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "system/Descriptor.h"
#include "terminal/Terminal.h"

namespace vexa::runner {
namespace {

// Global, because a signal handler gets only the number of the signal.
std::atomic<StopButton*> theButton{nullptr};

static_assert(std::atomic<void*>::is_always_lock_free && std::atomic<bool>::is_always_lock_free,
              "A signal handler must not wait");

}  // namespace

StopButton::~StopButton() {
    m_handler.reset();
    theButton = nullptr;
}

void StopButton::install() {
    if (isIgnored(SIGINT)) return;
    theButton = this;
    m_handler.emplace(SIGINT, &StopButton::onSignal, SA_RESTART);  // system calls of the add-ons continue
}

void StopButton::arm(standin::Host& host) { m_host = &host; }

void StopButton::handOver(standin::Host& host) {
    standin::Host* armed = m_host;
    while (armed != nullptr && !m_host.compare_exchange_weak(armed, &host)) {}
    if (armed == nullptr) host.pressStop();
}

void StopButton::disarm() { m_host = nullptr; }

void StopButton::onSignal(int) {
    const int error = errno;  // the interrupted code may still need it
    if (StopButton* const button = theButton) button->interrupt();
    errno = error;
}

void StopButton::interrupt() {
    m_isPressed = true;
    standin::Host* const host = m_host.exchange(nullptr);
    if (host == nullptr) return endProgram();
    host->pressStop();
}

// Ends the program by the signal, so that the shell sees the reason. The signal arrives when its handler has returned.
void StopButton::endProgram() const {
    if (m_isStatusDrawn) writeAll(STDERR_FILENO, kClearLine);
    std::signal(SIGINT, SIG_DFL);
    std::raise(SIGINT);
}

}  // namespace vexa::runner
