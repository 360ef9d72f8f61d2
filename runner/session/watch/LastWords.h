#pragma once

#include "system/processes/Signals.h"

namespace vexa::runner {

/// Limits the time in which a program prints why it ends. If nobody reads and the pipe is full, the program ends with
/// \p status after a few seconds.
class LastWords : NonCopyable {
public:
    explicit LastWords(int status);
    ~LastWords();

private:
    SignalHandler m_handler;
};

}  // namespace vexa::runner
