#pragma once

#include "options/CommandLine.h"

namespace vexa::runner {

/// Adds `report`, which makes a page for browsers of a trace.
void addReportCommand(CLI::App& app, Action& chosen);

}  // namespace vexa::runner
