#pragma once

namespace vexa::runner {

/// Returns true if another program traces this process: a debugger, strace, rr or valgrind. Add-ons then run in this
/// process, so that the tracer sees them.
bool isTraced();

}  // namespace vexa::runner
