#pragma once

#include <string>

namespace vexa::runner {

/// Says that there is no rule \p name, and which rules may be meant.
///
///     unbalanced-lok    there is no rule "unbalanced-lok"; is unbalanced-lock meant?
///     lock              there is no rule "lock"; is unbalanced-lock, lock-identity or mutex-locked-twice meant?
///     frob              there is no rule "frob"; 'vexa-standin explain' lists them
std::string noSuchRule(const std::string& name);

}  // namespace vexa::runner
