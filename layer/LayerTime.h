#pragma once

#include <xmmintrin.h>

namespace vexa::layer {

/// Whether the thread runs code of the layer.
inline thread_local bool isThreadInLayer = false;

/// The time in which a thread runs code of the layer instead of the program. The thread's floating-point state is the
/// default one meanwhile, and afterwards the one from before.
///
/// A signal handler may interrupt the layer, and call the host. The layer may hold a lock then, so such a call goes to
/// the host without a check.
class LayerTime {
public:
    LayerTime() : m_floatingPointState(_mm_getcsr()) {
        isThreadInLayer = true;
        if (m_floatingPointState != kDefaultState) _mm_setcsr(kDefaultState);
    }
    LayerTime(const LayerTime&) = delete;
    LayerTime& operator=(const LayerTime&) = delete;
    ~LayerTime() {
        _mm_setcsr(m_floatingPointState);
        isThreadInLayer = false;
    }

private:
    static constexpr unsigned kDefaultState = 0x1f80;  // no exception is enabled, and none has occurred

    unsigned m_floatingPointState;
};

}  // namespace vexa::layer
