#include "probe/AddOn.h"

const VexaAddOn_s* vexaAddOn(AddOnList_s* self) { return vexa::probe::enter("VEXAPROBE", self); }
