#pragma once

#include <set>
#include <string>
#include <vector>

#include "options/Command.h"

namespace vexa::runner {

// The texts with which the runner refuses a name that it does not know. Each text also names what the user may have
// meant, or says how to list the names.

/// No rule of the host's contract is called \p name.
///
///     unbalanced-lok    there is no rule "unbalanced-lok"; is unbalanced-lock meant?
///     lock              there is no rule "lock"; is unbalanced-lock, lock-identity or mutex-locked-twice meant?
///     frob              there is no rule "frob"; 'vexa-standin explain' lists them
std::string noSuchRule(const std::string& name);

/// No test of `check` is called \p name.
std::string noSuchTest(const std::string& name);

/// None of the \p loaded add-ons has the id \p id.
///
///     STATZ    no add-on 'STATZ' is loaded (loaded: LOADER, STATS); did you mean STATS?
std::string noSuchAddOn(const std::string& id, const std::set<std::string>& loaded);

/// The message for \p words that the command line cannot have.
std::string unexpectedWords(const std::vector<std::string>& words);

/// Suggests an option of \p command for each of the unexpected \p words that resembles one, and a command for the first
/// word: "--recrod: did you mean --record?"
std::vector<std::string> corrections(const std::vector<std::string>& words, const Command& command);

}  // namespace vexa::runner
