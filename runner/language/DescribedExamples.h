#pragma once

#include <string>
#include <vector>

#include "formats/CommandDescription.h"

namespace vexa::runner {

/// Returns what is wrong with the commands that a description has as `examples` and in `before`, by the description
/// itself: `/commands/0/examples/1: T: expected an Int64, such as -12, but found x`. Only `check` can see whether the
/// add-on accepts them.
std::vector<std::string> wrongExamples(const AddOnDescription& addOn);

/// Prints wrongExamples() with the name of the description.
/// \return true if there are none.
bool areExamplesRight(const AddOnDescription& addOn, const std::string& file);

}  // namespace vexa::runner
