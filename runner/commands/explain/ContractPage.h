#pragma once

#include <string>

namespace vexa::runner {

/// The page docs/contract.md: every rule of the host's contract, what cannot be checked, and what a user can ask for.
std::string contractPage();

}  // namespace vexa::runner
