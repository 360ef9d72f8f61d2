/// \file
/// Where the add-ons of these tests are.
#pragma once

#include <string>

namespace vexa::standin {

/// Returns the path of the test add-on \p name.
inline std::string addOnFile(const std::string& name) { return std::string(VEXA_TEST_ADDONS) + '/' + name + ".so"; }

}  // namespace vexa::standin
