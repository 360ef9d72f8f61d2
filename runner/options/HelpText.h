#pragma once

#include <cstddef>
#include <string>

#include "options/Command.h"

namespace vexa::runner {

/// Returns the help of \p command in lines of at most \p width columns. A longer word is not broken.
///
/// In the footer, a line that starts with a blank is a row of a table or code, which is not wrapped. Other lines form
/// paragraphs.
/// \param call  the program and the command, for example "vexa-standin run"
std::string helpText(const Command& command, const std::string& call, std::size_t width);

}  // namespace vexa::runner
