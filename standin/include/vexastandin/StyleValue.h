#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>

#include "vexa/toolbox/Set.h"

namespace vexa::standin {

/// The value of one of the host's style settings.
using StyleValue = std::variant<double, std::int64_t, std::string, vexa::toolbox::Set>;

/// The greatest number of keywords in the path of a style setting.
inline constexpr std::size_t kMostStyleKeywords = 6;

}  // namespace vexa::standin
