#include "vexa/AddOn.h"

#include <memory>

#include "LoaderProcessor.h"

namespace {

// The host's functions take no pointer of ours, so what the commands share has to live here: from the entry to
// shutdown().
std::unique_ptr<dataloader::LoaderProcessor> processor;

// The processor explains its failures. What it throws is that there is no memory even for that.
VexaBoolean execute(const char* command, char** errMsg) {
    try {
        return processor->parseCommandString(command, errMsg) ? 1 : 0;
    } catch (...) {
        return 0;
    }
}

void shutdown() { processor.reset(); }

constexpr VexaAddOn_s kDescription = {VEXA_ADDON_API_VERSION, dataloader::kAddOnId, "Data loader", execute, shutdown};

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s* self) {
    try {
        processor = std::make_unique<dataloader::LoaderProcessor>(self);
        return &kDescription;
    } catch (...) {
        return nullptr;  // refuses to be loaded
    }
}
