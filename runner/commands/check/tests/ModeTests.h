#pragma once

#include "commands/check/trial/Trial.h"

namespace vexa::runner {

/// \name Tests of the macros while the host is in another mode
/// @{
Verdict inBatchMode(Trial& trial);
Verdict whileRecording(Trial& trial);
Verdict duringJournalPlayback(Trial& trial);
Verdict duringLayoutPlayback(Trial& trial);
/// @}

/// Records the macros, and runs what was recorded, which has to record the same again.
Verdict recordAndReplay(Trial& trial);

}  // namespace vexa::runner
