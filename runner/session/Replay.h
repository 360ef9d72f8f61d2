#pragma once

#include <optional>

#include "session/Session.h"

namespace vexa::runner {

/// Runs a recorded command again, as a user does who plays a recorded macro. The add-on must accept the command, and
/// record the same text.
/// \param session has the add-on loaded and recording on. What it recorded before is forgotten.
/// \return the finding to report if the command cannot be played back.
std::optional<standin::Finding> replay(Session& session, const standin::RecordedCommand& recorded);

}  // namespace vexa::runner
