#pragma once

/// Does nothing, in another library. Calling it costs the least that a host call can cost.
extern "C" __attribute__((visibility("default"))) int vexaBenchDoNothing(void);
