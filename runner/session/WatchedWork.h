#pragma once

#include <chrono>
#include <functional>
#include <optional>

#include "options/ExitStatus.h"
#include "session/watch/Processes.h"

namespace vexa::runner {

/// Does work with add-ons in another process, because an add-on may end its process. Under a tracer, which needs them
/// there, the add-ons are in this process.
/// \param limit of each command, and of loading and unloading each add-on; none if absent.
/// \return what \p work returns. If its process ends or is too late, prints why, and returns ProcessEnded or
///         CommandHung.
ExitStatus_e doWatched(const std::optional<std::chrono::duration<double>>& limit,
                       const std::function<ExitStatus_e(ProcessBox& box)>& work);

}  // namespace vexa::runner
