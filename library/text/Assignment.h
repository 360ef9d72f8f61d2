#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vexa::vexautilutil {

// Returns `name` and `sign`, with room behind them for `room` characters more: the value is appended without asking
// for memory again.
std::string beginAssignment(std::string_view name, std::string_view sign, std::size_t room);

}  // namespace vexa::vexautilutil
