#pragma once

#include "options/Command.h"

namespace vexa::runner {

/// `test` compares what macros do with what they are expected to do.
Command testCommand();

}  // namespace vexa::runner
