/// \file
/// The function that the compiler calls for `throw`, for add-ons, to note where an exception was thrown.
#pragma once

#include "layer/ElfImage.h"

namespace vexa::layer {

/// Takes the program's functions for exceptions from \p image, if it is the program's C++ library.
void takeThrowFunctions(const ElfImage& image);

/// The function that add-ons call in the place of the program's \p name.
/// \return null if it is another function, or if the program's C++ library is not known.
void* checkedThrowFunction(const char* name);

/// Returns the exception that the calling thread of the program handles; null if it handles none.
const void* handledException();

}  // namespace vexa::layer
