/// \file
/// The functions that add-ons call in the place of the host's.
#pragma once

#include "contract/HostFunctionTable.h"

namespace vexa::layer {

/// Where the program has a function of the host's API; null if it is not known.
void* hostFunction(standin::HostFunction function);
void setHostFunction(standin::HostFunction function, void* address);

/// The function that add-ons call in the place of \p function. It checks the call and passes it on.
void* checkedFunction(standin::HostFunction function);

}  // namespace vexa::layer
