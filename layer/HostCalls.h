/// \file
/// The functions that add-ons call in the place of the host's.
#pragma once

#include "contract/HostFunctionTable.h"

namespace vexa::layer {

/// Where the program has a function of the host's API; null if it is not known.
void* hostFunction(standin::HostFunction function);
void setHostFunction(standin::HostFunction function, void* address);

/// The function that add-ons call in the place of the host's function \p name. It checks the call and passes it on.
/// \return null if the name is none of the host's API, or if the program has no such function.
void* checkedFunction(const char* name);

}  // namespace vexa::layer
