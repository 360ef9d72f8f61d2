#pragma once

#include <optional>

#include "session/Session.h"

namespace vexa::runner {

/// Runs a recorded command again, as a user does who plays a recorded macro: the add-on must accept it, and have the
/// same text recorded again. \param session has the add-on loaded and recording on. What it recorded before is
/// forgotten. \return the finding to report if the command cannot be played back.
std::optional<standin::Finding> replay(Session& session, const standin::RecordedCommand& recorded);

}  // namespace vexa::runner
