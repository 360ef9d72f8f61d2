#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "stacks/RemoteStacks.h"

namespace vexa::runner {

/// Appends \p stack to \p text, to send it to another process.
void pack(const ThreadStack& stack, std::string& text);

/// Returns the stacks that pack() has appended to \p text. A stack that is not whole is left out.
std::vector<ThreadStack> unpackedStacks(std::string_view text);

}  // namespace vexa::runner
