// An add-on that breaks a rule while it is loaded.

#include "vexa/AddOn.h"

namespace {

VexaBoolean execute(const char*, char**) { return 1; }

}  // namespace

const VexaAddOn_s* ENTRY(AddOnList_s* self) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "LOCKING", nullptr, execute, nullptr};
    VexaUtilLockStart(self);
    return &description;
}
