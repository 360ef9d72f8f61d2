#include "vexa/AddOn.h"

#include <cstring>
#include <exception>
#include <memory>

#include "ProbeProcessor.h"

namespace {

// The host's functions take no pointer of ours, so what the commands share has to live here: from the entry to
// shutdown().
std::unique_ptr<probestats::ProbeProcessor> processor;

// Hands \p message to the host, which owns the copy; without memory for it, there is none.
void explain(const char* message, char** errMsg) noexcept {
    try {
        const std::size_t size = std::strlen(message) + 1;
        *errMsg = VexaUtilStringAlloc(static_cast<int>(size), "error string");
        if (*errMsg != nullptr) std::memcpy(*errMsg, message, size);
    } catch (...) {
        *errMsg = nullptr;
    }
}

// No exception may escape to the host. Failures that the processor foresees are explained by itself; what arrives
// here is lack of memory, or a host function that throws.
VexaBoolean execute(const char* command, char** errMsg) {
    try {
        return processor->parseCommandString(command, errMsg) ? 1 : 0;
    } catch (const std::exception& failure) {
        explain(failure.what(), errMsg);
    } catch (...) {
        explain("Unknown failure", errMsg);
    }
    return 0;
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
        return nullptr;  // refuses to be loaded
    }
}
