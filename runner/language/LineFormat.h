#pragma once

#include <string>
#include <string_view>

#include "language/Descriptions.h"

namespace vexa::runner {

/// Returns \p line, which has no line end, with one blank between its parts and none at its end:
///
///     STATS  MEAN   TIMES =2   ->  STATS MEAN TIMES = 2
///
/// Names, values and the blanks at the start stay. A comment only loses the blanks at its end. A line with a mistake
/// stays as it is, because its blanks may have a meaning. A second call changes nothing.
std::string formattedLine(std::string_view line, const Descriptions& descriptions);

}  // namespace vexa::runner
