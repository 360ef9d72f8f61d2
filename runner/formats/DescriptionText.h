#pragma once

#include <string>

#include "formats/CommandDescription.h"

namespace vexa::runner {

/// Returns \p description as the text of a description file, which parseDescription() reads. It has a line per option.
std::string descriptionText(const AddOnDescription& description);

}  // namespace vexa::runner
