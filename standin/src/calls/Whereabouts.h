/// \file
/// Whose code the calling thread runs: an add-on's that the host entered, or the host's.
#pragma once

#include <utility>

namespace vexa::standin {

/// Whether the calling thread runs an add-on's code. Only Whereabouts changes it.
/// Its place in a thread's memory is settled when the library is loaded, which makes it two instructions to reach;
/// asking for the place each time would be a quarter of the cost of a host call.
inline thread_local bool isThreadInAddOn __attribute__((tls_model("initial-exec"))) = false;

/// The calling thread is in an add-on, or back in the host, as long as this lives.
class Whereabouts {
public:
    explicit Whereabouts(bool isInAddOn) : m_before(std::exchange(isThreadInAddOn, isInAddOn)) {}
    Whereabouts(const Whereabouts&) = delete;
    Whereabouts& operator=(const Whereabouts&) = delete;
    ~Whereabouts() { isThreadInAddOn = m_before; }

private:
    bool m_before;
};

}  // namespace vexa::standin
