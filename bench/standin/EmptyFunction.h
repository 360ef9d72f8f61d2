#pragma once

/// Does nothing, in a library of its own: the least that a call of a host costs.
extern "C" __attribute__((visibility("default"))) int vexaBenchDoNothing(void);
