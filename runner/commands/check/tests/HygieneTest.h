#pragma once

#include "commands/check/trial/Trial.h"

namespace vexa::runner {

/// Looks at what the add-on's file is made of, and tells why it cannot be loaded when it cannot.
Verdict binaryHygiene(Trial& trial);

}  // namespace vexa::runner
