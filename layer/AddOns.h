#pragma once

#include <cstddef>

namespace vexa::layer {

/// The number of an add-on that has an entry of the layer; kNoAddOn for none.
using AddOnNumber = std::size_t;
inline constexpr AddOnNumber kNoAddOn = static_cast<AddOnNumber>(-1);

/// Gives an add-on an entry of the layer, which the host calls in the place of its own. The layer then sees when a
/// command begins and ends.
/// \param entry the add-on's own entry.
/// \param file  where it was loaded from.
/// \return kNoAddOn if there are too many add-ons.
AddOnNumber addAddOn(void* entry, const char* file);

/// The entry for the host.
void* entryOf(AddOnNumber addOn);

/// The add-on is unloaded: its number is free for another one.
void removeAddOn(AddOnNumber number);

}  // namespace vexa::layer
