// An add-on that does not want to be loaded.

#include "vexa/AddOn.h"

const VexaAddOn_s* vexaAddOn(AddOnList_s*) { return nullptr; }
