#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vexa::runner {

/// A line of the difference between two lists of lines.
struct LineStep {
    char mark = ' ';         ///< ' ' for a line in both lists, '-' only in the first, '+' only in the second
    std::size_t before = 0;  ///< its index in the first list; for '+' the index of the next line there
    std::size_t now = 0;     ///< its index in the second list; for '-' the index of the next line there
};

/// Returns all lines of both lists in an order that fits both, with deletions before the additions that replace them.
/// For large lists with little in common, more lines may be marked than necessary.
std::vector<LineStep> lineSteps(const std::vector<std::string_view>& before, const std::vector<std::string_view>& now);

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
