// An add-on that needs a function which nobody supplies.

#include "vexa/AddOn.h"

extern "C" const VexaAddOn_s* suppliedByNobody();

const VexaAddOn_s* vexaAddOn(AddOnList_s*) { return suppliedByNobody(); }
