#pragma once

#include <string_view>

namespace vexa::runner {

/// Writes all of \p text to \p descriptor.
/// \return false, with errno set, if that fails.
bool writeAll(int descriptor, std::string_view text);

}  // namespace vexa::runner
