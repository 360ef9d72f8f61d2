#pragma once

#include <string>

#include "stacks/Frame.h"

namespace vexa::runner {

/// Returns true for a library that add-ons share, such as the C++ library. An add-on may bring its own copy.
bool isSharedLibrary(const std::string& object);

/// Returns true for the library that add-ons use, and for the class libraries: add-ons call the host through them.
bool isBetweenAddOnAndHost(const std::string& object);

/// Returns true if the line of \p frame is known, and is in a header of the system or of a library. Their functions are
/// inlined into add-ons.
bool isForeignSource(const Frame& frame);

/// Returns true if the line of \p frame is known and belongs to the add-on itself.
inline bool isOwnSource(const Frame& frame) { return frame.line != 0 && !isForeignSource(frame); }

}  // namespace vexa::runner
