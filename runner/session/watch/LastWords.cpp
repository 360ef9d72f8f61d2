#include "session/watch/LastWords.h"

#include <unistd.h>

namespace vexa::runner {
namespace {

constexpr unsigned kSeconds = 5;

volatile std::sig_atomic_t statusOfProgram = 0;  // a signal handler gets only the number of the signal

}  // namespace

LastWords::LastWords(int status) {
    statusOfProgram = status;
    struct sigaction action {};
    action.sa_handler = [](int) { _exit(statusOfProgram); };
    sigaction(SIGALRM, &action, &m_before);
    alarm(kSeconds);
}

LastWords::~LastWords() {
    alarm(0);
    sigaction(SIGALRM, &m_before, nullptr);
}

}  // namespace vexa::runner
