#pragma once

#include <string>

namespace probestats {

/// Writes \p text to the standard output, at once.
/// \throws ProbeError when it cannot be written.
void writeToScreen(const std::string& text);

/// Writes \p text as the file \p fileName: under a temporary name in the same folder first, so that whoever reads
/// the file finds it whole, before or after.
/// \throws ProbeError "Cannot write FILE: " and the reason; the file is then as it was.
void writeToFile(const std::string& fileName, const std::string& text);

}  // namespace probestats
