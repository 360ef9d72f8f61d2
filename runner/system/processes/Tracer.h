#pragma once

namespace vexa::runner {

/// Whether another program traces this process: a debugger, strace, rr or valgrind. Then add-ons run in this process,
/// so that the tracer sees them.
bool isTraced();

}  // namespace vexa::runner
