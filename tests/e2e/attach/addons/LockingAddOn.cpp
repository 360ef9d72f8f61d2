// An add-on that breaks rules while it is loaded.

#include "vexa/AddOn.h"

namespace {

VexaBoolean execute(const char*, char**) { return 1; }

}  // namespace

const VexaAddOn_s* ENTRY(AddOnList_s* self) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "LOCKING", nullptr, execute, nullptr};
    VexaUtilStatusSetPercentDoneText("not started");
    VexaUtilLockStart(self);
    return &description;
}
