#include "terminal/StopButton.h"

#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "system/Descriptor.h"
#include "terminal/Terminal.h"

namespace vexa::runner {
namespace {

// A signal handler gets nothing but the number of the signal.
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
    m_handler.emplace(SIGINT, &StopButton::onSignal, SA_RESTART);  // input and output of the add-ons go on
}

void StopButton::arm(standin::Host& host) { m_host = &host; }

void StopButton::handOver(standin::Host& host) {
    standin::Host* armed = m_host;
    while (armed != nullptr && !m_host.compare_exchange_weak(armed, &host)) {}
    if (armed == nullptr) host.pressStop();
}

void StopButton::disarm() { m_host = nullptr; }

void StopButton::onSignal(int) {
    const int error = errno;  // which is that of the code that was interrupted
    if (StopButton* const button = theButton) button->interrupt();
    errno = error;
}

void StopButton::interrupt() {
    m_isPressed = true;
    standin::Host* const host = m_host.exchange(nullptr);
    if (host == nullptr) return endProgram();
    host->pressStop();
}

// The signal comes again when its handler ends, and then finds the default action: so the shell sees what happened.
void StopButton::endProgram() const {
    if (m_isStatusDrawn) writeAll(STDERR_FILENO, kClearLine);
    std::signal(SIGINT, SIG_DFL);
    std::raise(SIGINT);
}

}  // namespace vexa::runner
