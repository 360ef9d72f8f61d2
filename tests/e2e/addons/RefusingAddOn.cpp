// An add-on that refuses to be loaded.

#include "vexa/AddOn.h"

const VexaAddOn_s* vexaAddOn(AddOnList_s*) { return nullptr; }
