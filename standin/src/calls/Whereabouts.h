/// \file
/// Tracks whether the calling thread runs code of an add-on or of the host.
#pragma once

#include <utility>

namespace vexa::standin {

/// True while the calling thread runs code of an add-on. Only Whereabouts changes it.
/// The TLS model fixes the address of the variable in a thread's memory when the library is loaded, because a lookup in
/// each host call would be expensive.
inline thread_local bool isThreadInAddOn __attribute__((tls_model("initial-exec"))) = false;

/// As long as this lives, the calling thread is in an add-on, or back in the host.
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
