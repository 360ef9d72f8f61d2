#pragma once

#include <csignal>

namespace vexa::runner {

/// For a program that tells why it ends, while perhaps nobody reads: a full pipe holds it up for a few seconds only,
/// and then it ends with \p status.
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
