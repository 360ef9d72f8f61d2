#pragma once

namespace vexa::runner {

/// Whether this process has a thread besides the calling one. A thread that is ending does not count, for example one
/// that was just joined.
bool hasOtherThreads();

/// Returns true if the first thread of this process is stopped: a tracer has not yet handled what the thread reported.
bool isFirstThreadStopped();

}  // namespace vexa::runner
