#pragma once

#include <optional>

#include "vexastandin/Observer.h"

namespace vexa::runner {

/// The status line of another host, as the calls of add-ons show it: whether it is shown, and its percentage. The text
/// is only good for comparing: it is the arguments of a call.
class StatusCalls {
public:
    /// \return the line after \p call, if the call changed it.
    std::optional<standin::StatusLine> changeBy(const standin::CallEvent& call);

private:
    standin::StatusLine m_line;
};

}  // namespace vexa::runner
