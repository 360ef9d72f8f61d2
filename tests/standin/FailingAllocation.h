#pragma once

/// Makes one allocation of the calling thread fail, after \p successes more have succeeded. It replaces the program's
/// operator new, which all shared objects of the program use.
void failAllocationAfter(long successes);

/// Ends it.
/// \return whether the allocation failed; false when there were too few.
bool stopFailingAllocation();
