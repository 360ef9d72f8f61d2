#pragma once

#include <string>

namespace probestats {

/// Writes \p text to the standard output and flushes it.
/// \throws ProbeError if it cannot be written.
void writeToScreen(const std::string& text);

/// Writes \p text to the file \p fileName, first under a temporary name in the same folder. So readers find either the
/// complete old file or the complete new one.
/// \throws ProbeError "Cannot write FILE: " and the reason; the file is then unchanged.
void writeToFile(const std::string& fileName, const std::string& text);

}  // namespace probestats
