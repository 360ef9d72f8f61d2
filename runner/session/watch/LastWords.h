#pragma once

#include <csignal>

namespace vexa::runner {

/// Limits the time in which a program prints why it ends. If nobody reads and the pipe is full, the program ends with
/// \p status after a few seconds.
class LastWords {
public:
    explicit LastWords(int status);
    LastWords(const LastWords&) = delete;
    LastWords& operator=(const LastWords&) = delete;
    ~LastWords();

private:
    struct sigaction m_before {};
};

}  // namespace vexa::runner
