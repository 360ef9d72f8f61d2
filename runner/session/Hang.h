#pragma once

#include <chrono>
#include <cstddef>

#include "vexastandin/Finding.h"

namespace vexa::runner {

/// The finding about an add-on that does not return.
/// \param last        the last host call, and the work of the add-on: Host::lastCall()
/// \param callsBefore how many host calls there were before the add-on was entered
/// \param waited      the time limit
standin::Finding hangFinding(const standin::Place& last, std::size_t callsBefore, std::chrono::duration<double> waited);

}  // namespace vexa::runner
