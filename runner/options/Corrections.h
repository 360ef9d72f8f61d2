#pragma once

#include <string>
#include <vector>

#include "options/Command.h"

namespace vexa::runner {

/// The message for \p words that the command line cannot have.
std::string unexpectedWords(const std::vector<std::string>& words);

/// Suggests an option of \p command for each of the unexpected \p words that resembles one, and a command for the first
/// word: "--recrod: did you mean --record?"
std::vector<std::string> corrections(const std::vector<std::string>& words, const Command& command);

}  // namespace vexa::runner
