// An add-on that describes itself by the macros VERSION, ID and EXECUTE, and has neither a title nor a shutdown.

#include "vexa/AddOn.h"

namespace {

[[maybe_unused]] VexaBoolean succeed(const char*, char**) { return 1; }

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s* self) {
    static const VexaAddOn_s description = {VERSION, ID, nullptr, EXECUTE, nullptr};
    VexaUtilLockStart(self);  // and leaves it open
    return &description;
}
