#pragma once

#include <cstddef>
#include <string>

namespace vexa::runner {

/// Returns the differences between two texts for users: lines that only \p before has, with `-`; lines that only \p now
/// has, with `+`; and a few equal lines around them. Empty if the texts are equal.
///
///     @@ line 3 @@
///       > STATS MEAN
///     -   mean 5.9
///     +   mean 6
std::string lineDifference(const std::string& before, const std::string& now);

/// Returns the number of the first line of \p before that differs from \p now, counted from 1. If \p now only has more
/// lines, returns the number of the last line.
std::size_t firstDifference(const std::string& before, const std::string& now);

}  // namespace vexa::runner
