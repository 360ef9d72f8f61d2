#pragma once

#include <string>

namespace vexa::runner {

/// The file that the system starts for \p name: a path, or a name that it searches in the folders of PATH.
/// \return empty if there is none.
std::string findProgram(const std::string& name);

/// Why the layer cannot be loaded into the program \p path; empty if it can.
std::string whyNotAttachable(const std::string& path);

/// The file of the layer; empty if it is not there.
std::string layerFile();

}  // namespace vexa::runner
