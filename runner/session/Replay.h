#pragma once

#include <optional>

#include "session/Session.h"

namespace vexa::runner {

/// Runs a recorded command again, as the host does when it plays back a recorded macro. The add-on must accept the
/// command, and record the same text.
/// \param session has loaded the add-on and records. The function deletes earlier recordings of the session.
/// \return the finding to report if the command cannot be played back.
std::optional<standin::Finding> replay(Session& session, const standin::RecordedCommand& recorded);

}  // namespace vexa::runner
