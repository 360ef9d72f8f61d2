#include "vexa/AddOn.h"

#include <memory>

#include "ProbeProcessor.h"
#include "vexautilutil/ExecuteCommand.h"

namespace {

// All commands share one processor. It is global, because the host passes only the command to the add-on.
std::unique_ptr<probestats::ProbeProcessor> processor;

VexaBoolean execute(const char* command, char** errMsg) {
    return vexa::vexautilutil::executeCommand(*processor, command, errMsg);
}

void shutdown() { processor.reset(); }

constexpr VexaAddOn_s kDescription = {VEXA_ADDON_API_VERSION, probestats::kAddOnId, "Probe statistics", execute,
                                      shutdown};

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s* self) {
    try {
        processor = std::make_unique<probestats::ProbeProcessor>(self);
        return &kDescription;
    } catch (...) {
        return nullptr;  // null: the add-on refuses to be loaded
    }
}
