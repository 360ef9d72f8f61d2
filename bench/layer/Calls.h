#pragma once

#include <cstdint>

/// Each of these calls the host \p rounds times: with one call, with two, and with six.
struct HostCalls {
    void (*ask)(int64_t rounds);
    void (*lockAndUnlock)(int64_t rounds);
    void (*queryStyle)(int64_t rounds);
};

extern "C" __attribute__((visibility("default"))) const HostCalls vexaBenchHostCalls;
