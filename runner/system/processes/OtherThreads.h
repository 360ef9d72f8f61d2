#pragma once

namespace vexa::runner {

/// Whether this process has a thread besides the calling one. A thread that is ending does not count, for example one
/// that was just joined.
bool hasOtherThreads();

}  // namespace vexa::runner
