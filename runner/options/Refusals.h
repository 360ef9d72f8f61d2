#pragma once

#include <set>
#include <string>
#include <vector>

#include "options/Command.h"

namespace vexa::runner {

// Messages about unknown names. Each message also suggests similar names, or says how to list the names.

/// Returns the message for a rule \p name that does not exist.
///
///     unbalanced-lok    there is no rule "unbalanced-lok"; is unbalanced-lock meant?
///     lock              there is no rule "lock"; is unbalanced-lock, lock-identity or mutex-locked-twice meant?
///     frob              there is no rule "frob"; 'vexa-standin explain' lists them
std::string noSuchRule(const std::string& name);

/// Returns the message for a test \p name of `check` that does not exist.
std::string noSuchTest(const std::string& name);

/// Returns the message for an id \p id that none of the \p loaded add-ons has.
///
///     STATZ    no add-on 'STATZ' is loaded (loaded: LOADER, STATS); did you mean STATS?
std::string noSuchAddOn(const std::string& id, const std::set<std::string>& loaded);

/// Returns the message for \p words that the parser did not expect after \p command.
std::string unexpectedWords(const std::vector<std::string>& words, const Command& command);

/// Returns a message of the parser in the words of this program.
///
///     --id: 1 required ID missing    --id: the value ID is missing
///     RULE excludes --long           RULE cannot be used with --long
std::string inPlainWords(const std::string& parserText);

/// Returns suggestions for the unexpected \p words: similar options of \p command, and for the first word also similar
/// commands. An example: "--recrod: did you mean --record?"
std::vector<std::string> corrections(const std::vector<std::string>& words, const Command& command);

}  // namespace vexa::runner
