#pragma once

#include "vexa/AddOn.h"

namespace vexa::probe {

/// What the entry of a probe does. Two add-ons call it; they differ in their ids, and each has its own copy of the
/// code. \param id   static \param self what the host passed \return the description of the add-on; null without
/// memory.
const VexaAddOn_s* enter(const char* id, AddOnList_s* self) noexcept;

}  // namespace vexa::probe
