#pragma once

#include <string>
#include <vector>

#include "options/Command.h"

namespace vexa::runner {

/// Says that \p words of a command line mean nothing.
std::string unexpectedWords(const std::vector<std::string>& words);

/// What may be meant by those of the unexpected \p words that come near an option of \p command, or, for the first one,
/// near a command of it, a message each: "--recrod: did you mean --record?"
std::vector<std::string> corrections(const std::vector<std::string>& words, const Command& command);

}  // namespace vexa::runner
