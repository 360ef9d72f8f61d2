/// \file
/// Which commands fit one line of a macro file.
#pragma once

#include <string_view>

namespace vexa::standin {

bool isLineBreak(char c);

bool hasWhiteSpace(std::string_view text);

/// Returns why a macro line of \p addOnId, a blank and \p command would not be read as this command of this add-on;
/// empty if it would.
std::string_view whyNoMacroLine(std::string_view addOnId, std::string_view command);

}  // namespace vexa::standin
