#include "probe/AddOn.h"

#include <memory>

#include "probe/Probe.h"
#include "probe/ProbeProcessor.h"
#include "vexautilutil/ExecuteCommand.h"

namespace vexa::probe {
namespace {

// It lives here, because the host passes the add-on nothing but the command.
std::unique_ptr<Probe> probe;

VexaBoolean execute(const char* command, char** errMsg) {
    return vexautilutil::executeCommand([&] { return ProbeProcessor(*probe).parseCommandString(command, errMsg); },
                                        errMsg);
}

// A host that loads the file twice calls this twice.
void shutdown() {
    if (probe != nullptr) probe->shutDown();
    probe.reset();
}

}  // namespace

const VexaAddOn_s* enter(const char* id, AddOnList_s* self) noexcept {
    static VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "", "Asks the host how it answers", execute, shutdown};
    description.id = id;
    try {
        probe = std::make_unique<Probe>(id, self);
        return &description;
    } catch (...) {
        return nullptr;  // refuses to be loaded
    }
}

}  // namespace vexa::probe
