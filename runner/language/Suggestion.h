#pragma once

#include <string>
#include <string_view>

#include "language/Descriptions.h"

namespace vexa::runner {

/// Returns what the user may have meant by \p command, a command of \p addOn without its id that the add-on refused:
///
///     MEEN COLUMN = 1     MEEN: did you mean MEAN?
///     MEAN COLUMM = 1     COLUMM: did you mean COLUMN?
///
/// \return the suggestion for the first unknown name that is near to a described one; empty if there is none.
std::string suggestionFor(std::string_view command, const AddOnDescription& addOn);

}  // namespace vexa::runner
