// A second add-on, which shows in which order a host shuts add-ons down.

#include "probe/AddOn.h"

const VexaAddOn_s* vexaAddOn(AddOnList_s* self) { return vexa::probe::enter("VEXAPROBE2", self); }
