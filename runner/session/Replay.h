#pragma once

#include <optional>

#include "vexastandin/Host.h"

namespace vexa::runner {

/// Runs a recorded command again, as a user does who plays a recorded macro: it must be accepted, and record the same
/// text again.
/// \param host has the add-on loaded and recording on. What it had recorded before is forgotten.
/// \return the finding to report when the command cannot be played back.
std::optional<standin::Finding> replay(standin::Host& host, const standin::RecordedCommand& recorded);

}  // namespace vexa::runner
