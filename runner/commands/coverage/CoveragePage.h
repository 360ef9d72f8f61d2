#pragma once

#include <string>

#include "coverage/Coverage.h"

namespace vexa::runner {

/// Makes an HTML page that shows \p coverage. It needs no other file, no script and no network.
std::string coveragePage(const Coverage& coverage);

}  // namespace vexa::runner
