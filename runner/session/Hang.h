#pragma once

#include <chrono>
#include <cstddef>

#include "vexastandin/Finding.h"

namespace vexa::runner {

/// The finding about an add-on that does not return.
/// \param last        the host call made last, and what the add-on is to do: Host::lastCall()
/// \param callsBefore the number of the host call made last before the add-on was entered
/// \param waited      for how long it was waited
standin::Finding hangFinding(const standin::Place& last, std::size_t callsBefore, std::chrono::duration<double> waited);

}  // namespace vexa::runner
