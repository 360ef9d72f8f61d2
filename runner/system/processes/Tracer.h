#pragma once

namespace vexa::runner {

/// Whether another program looks into this process: a debugger, strace, rr or valgrind. It is to see the add-ons, too,
/// so they run in this process then.
bool isTraced();

}  // namespace vexa::runner
