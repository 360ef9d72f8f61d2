#pragma once

#include <string>

namespace vexa::probe {

/// Replaces the regular file at \p path by one with \p text, or creates it. A symbolic link is followed. Whoever reads
/// the file meanwhile gets the old text or the new one, never a part. The file keeps its permissions.
/// \throws std::runtime_error "PATH: cannot be written: " and the reason. The old file is then unchanged.
void replaceFile(const std::string& path, const std::string& text);

}  // namespace vexa::probe
