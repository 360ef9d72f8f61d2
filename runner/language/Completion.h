#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "language/Descriptions.h"

namespace vexa::runner {

/// What may follow at a place of a line.
struct Completion {
    std::size_t begin = 0;           ///< where the texts start in the line
    std::vector<std::string> texts;  ///< in the order of the description; empty if nothing is known
};

/// Returns what completes \p line, which ends at the cursor:
///
///     ST                      the ids of add-ons that start with ST
///     STATS M                 its commands that start with M
///     STATS MEAN              its options that are not given yet, as `TIMES = `; required ones come first
///     STATS MEAN LOUD =       the values of a Boolean or a Choice, and the default and the limits of other types
///
/// The letter case of what is typed does not matter.
Completion completionAt(std::string_view line, const Descriptions& descriptions);

}  // namespace vexa::runner
