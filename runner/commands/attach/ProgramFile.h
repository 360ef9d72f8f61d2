#pragma once

#include <string>

namespace vexa::runner {

/// Why the layer cannot be loaded into the program \p path; empty if it can.
std::string whyNotAttachable(const std::string& path);

}  // namespace vexa::runner
