#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "vexa/toolbox/Set.h"

namespace vexa::standin {

/// The value of one of the host's style settings.
using StyleValue = std::variant<double, std::int64_t, std::string, vexa::toolbox::Set>;

}  // namespace vexa::standin
