#pragma once

#include <string>
#include <vector>

#include "formats/CommandDescription.h"

namespace vexa::runner {

/// Guesses the description of an add-on from commands of macros, without their add-on's id. The kind of a command comes
/// from the blanks around its equals signs, and the type of an option from all its values. Each command of \p commands
/// becomes an example. The purposes and the help are empty.
///
///     MEAN TIMES = 2 TITLE = 'a'      kind processor; TIMES is an Int64, TITLE a String
AddOnDescription guessedDescription(const std::string& addOn, const std::vector<std::string>& commands);

}  // namespace vexa::runner
