#pragma once

#include "options/ExitStatus.h"

namespace vexa::runner {

/// Returns true if everything that this process printed was written to the standard output. Otherwise later output is
/// discarded, so that the loss is reported once.
bool isOutputWhole();

/// Reports lost output.
/// \return \p status if isOutputWhole(); otherwise the status for a file that could not be written.
ExitStatus_e checkOutput(ExitStatus_e status);

}  // namespace vexa::runner
