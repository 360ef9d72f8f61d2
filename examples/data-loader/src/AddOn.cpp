#include "vexa/AddOn.h"

#include <memory>

#include "LoaderProcessor.h"
#include "vexautilutil/ExecuteCommand.h"

namespace {

// All commands share one processor. It is global, because the host passes only the command to the add-on.
std::unique_ptr<dataloader::LoaderProcessor> processor;

VexaBoolean execute(const char* command, char** errMsg) {
    return vexa::vexautilutil::executeCommand(*processor, command, errMsg);
}

void shutdown() { processor.reset(); }

constexpr VexaAddOn_s kDescription = {VEXA_ADDON_API_VERSION, dataloader::kAddOnId, "Data loader", execute, shutdown};

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s* self) {
    try {
        processor = std::make_unique<dataloader::LoaderProcessor>(self);
        return &kDescription;
    } catch (...) {
        return nullptr;  // null: the add-on refuses to be loaded
    }
}
