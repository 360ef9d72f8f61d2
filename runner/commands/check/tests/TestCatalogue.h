#pragma once

#include <string_view>
#include <vector>

#include "commands/check/trial/CheckTest.h"

namespace vexa::runner {

/// Every test, in the order in which they run: what others build on comes first.
const std::vector<CheckTest>& checkTests();

/// The test \p name; null when there is none.
const CheckTest* findCheckTest(std::string_view name);

}  // namespace vexa::runner
