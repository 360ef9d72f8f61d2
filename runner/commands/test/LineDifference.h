#pragma once

#include <string>

namespace vexa::runner {

/// What has to be changed to make \p now of \p before, for people: the lines that differ, `-` those of \p before, `+`
/// those of \p now, and a few equal lines around them. Empty when they are equal.
///
///     @@ line 3 @@
///       > STATS MEAN
///     -   mean 5.9
///     +   mean 6
std::string lineDifference(const std::string& before, const std::string& now);

}  // namespace vexa::runner
