#pragma once

#include "commands/test/MacroTests.h"

namespace vexa::runner {

/// Tests macros, and again whenever a file on which they depend has changed, until Ctrl-C. If only files of some macros
/// have changed, tests these macros.
/// \param options the options of the command line, without the project file.
/// \return ExitStatus_e::AllWell after Ctrl-C; ExitStatus_e::BadUsageOrInput if files cannot be watched, or if the
/// tests
///         cannot start at all.
ExitStatus_e watchTests(const TestOptions& options);

}  // namespace vexa::runner
