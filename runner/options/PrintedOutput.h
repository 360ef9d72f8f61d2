#pragma once

#include "options/ExitStatus.h"

namespace vexa::runner {

/// Whether all that this process printed has reached the standard output, and that is still open. After the answer no,
/// what is printed goes nowhere, so that the loss is told once.
bool isOutputWhole();

/// \return \p status if isOutputWhole(); else that a file could not be written, which is told.
ExitStatus_e checkOutput(ExitStatus_e status);

}  // namespace vexa::runner
