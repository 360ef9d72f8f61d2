#pragma once

namespace vexa::runner {

/// While it lives, what is printed to the standard output is lost.
class DiscardedOutput {
public:
    DiscardedOutput();
    DiscardedOutput(const DiscardedOutput&) = delete;
    DiscardedOutput& operator=(const DiscardedOutput&) = delete;
    ~DiscardedOutput();

private:
    int m_real;
};

}  // namespace vexa::runner
