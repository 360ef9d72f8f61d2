#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vexa::vexautilutil {

// Returns `name` + `sign`, with memory reserved for `room` more characters, so that appending the value allocates none.
std::string beginAssignment(std::string_view name, std::string_view sign, std::size_t room);

}  // namespace vexa::vexautilutil
