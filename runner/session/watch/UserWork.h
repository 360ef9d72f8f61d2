#pragma once

#include "session/watch/Processes.h"

namespace vexa::runner {

/// Work in processes that a user waits for. It prints that Ctrl-C was heard, and what a signal ended.
class UserWork : public ProcessWorkInterface {
public:
    void stopAsked(std::size_t index, const ProcessBox& box) override;
    void killed(std::size_t index, const ProcessBox& box, int signal) override;

protected:
    /// Whether Ctrl-C ended the process, before it could stop by itself.
    bool wasInterrupted(const ProcessOutcome& outcome) const;

private:
    bool m_isStopAsked = false;
};

}  // namespace vexa::runner
