#pragma once

#include <cstddef>
#include <string>

namespace vexa::runner {

/// What `attach` cannot see in a host that is not the stand-in, rule by rule, as text of \p width columns.
std::string attachLimits(std::size_t width);

/// The page docs/attach.md.
std::string attachPage();

}  // namespace vexa::runner
