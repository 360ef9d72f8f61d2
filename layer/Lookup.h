/// \file
/// The function dlsym() for add-ons, which may ask it for functions of the host.
#pragma once

namespace vexa::layer {

/// The program's dlsym(); null if it is not known.
void* lookup();
void setLookup(void* address);

/// The function that add-ons call in the place of dlsym().
void* checkedLookup();

}  // namespace vexa::layer
