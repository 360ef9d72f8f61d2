#pragma once

#include <cstddef>
#include <string>

#include "options/Command.h"

namespace vexa::runner {

/// The help of \p command in lines of at most \p width columns, as far as its words allow.
///
/// In its footer, lines that start with a blank are a table or code, and code stays as it is; all others that follow
/// one another are a paragraph.
/// \param call  how the command is called: "vexa-standin run"
std::string helpText(const Command& command, const std::string& call, std::size_t width);

}  // namespace vexa::runner
