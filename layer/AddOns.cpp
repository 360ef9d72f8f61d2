#include "layer/AddOns.h"

#include <array>
#include <atomic>
#include <memory>
#include <string>
#include <utility>

#include "layer/Layer.h"
#include "vexa/AddOn.h"

namespace vexa::layer {
namespace {

using standin::Entry_e;

constexpr std::size_t kMostAddOns = 256;

struct AddOn {
    const VexaAddOn_s* (*entry)(AddOnList_s*);
    std::string file;
    std::string id = {};  // empty until it is loaded
    const VexaAddOn_s* description = nullptr;
    VexaAddOn_s shown = {};  // what the host gets in the place of the description
    bool isShutDown = false;
};

std::array<std::atomic<AddOn*>, kMostAddOns> theAddOns{};

AddOn& addOnOf(AddOnNumber number) { return *theAddOns[number].load(std::memory_order_acquire); }

// The frames between the host and an add-on have no cleanup, as in HostCalls.cpp. What happens before and after the
// add-on's function is in functions of its own.

[[gnu::noinline]] void beginLoading(const AddOn& addOn, const void* frame, const AddOnList_s* identity) noexcept {
    inLayer([&](Layer& layer) {
        layer.entryBegan(frame, Entry_e::Loading, addOn.file, "", reinterpret_cast<const void*>(addOn.entry));
        layer.introduce(identity);
    });
}

bool isUsable(const VexaAddOn_s* description) {
    return description != nullptr && description->apiVersion == VEXA_ADDON_API_VERSION && description->id != nullptr &&
           description->execute != nullptr;
}

void showDescription(AddOnNumber number);

[[gnu::noinline]] const VexaAddOn_s* endLoading(AddOnNumber number, const void* frame, const AddOnList_s* identity,
                                                const VexaAddOn_s* description) noexcept {
    const VexaAddOn_s* shown = description;
    inLayer([&](Layer& layer) {
        AddOn& addOn = addOnOf(number);
        addOn.description = description;
        if (!isUsable(description)) return layer.loadingEnded(frame, identity, nullptr);
        addOn.id = description->id;
        addOn.isShutDown = false;
        layer.loadingEnded(frame, identity, description->id);
        showDescription(number);
        shown = &addOn.shown;
    });
    return shown;
}

[[gnu::noinline]] void beginCommand(const AddOn& addOn, const void* frame, const char* command) noexcept {
    inLayer([&](Layer& layer) {
        layer.entryBegan(frame, Entry_e::Command, addOn.id, command == nullptr ? "" : command,
                         reinterpret_cast<const void*>(addOn.description->execute));
    });
}

[[gnu::noinline]] void endCommand(const void* frame, VexaBoolean result, char* const* errMsg) noexcept {
    inLayer([&](Layer& layer) { layer.commandEnded(frame, result == 1, errMsg == nullptr ? nullptr : *errMsg); });
}

[[gnu::noinline]] void beginShutdown(AddOn& addOn, const void* frame) noexcept {
    inLayer([&](Layer& layer) {
        addOn.isShutDown = true;
        layer.entryBegan(frame, Entry_e::Unloading, addOn.id, "",
                         reinterpret_cast<const void*>(addOn.description->shutdown));
    });
}

[[gnu::noinline]] void endShutdown(const void* frame) noexcept {
    inLayer([&](Layer& layer) { layer.shutdownEnded(frame); });
}

const VexaAddOn_s* load(AddOnNumber number, AddOnList_s* identity) {
    const void* const frame = __builtin_frame_address(0);
    const AddOn& addOn = addOnOf(number);
    beginLoading(addOn, frame, identity);
    const VexaAddOn_s* const description = addOn.entry(identity);
    return endLoading(number, frame, identity, description);
}

VexaBoolean execute(AddOnNumber number, const char* command, char** errMsg) {
    const void* const frame = __builtin_frame_address(0);
    const AddOn& addOn = addOnOf(number);
    beginCommand(addOn, frame, command);
    const VexaBoolean result = addOn.description->execute(command, errMsg);
    endCommand(frame, result, errMsg);
    return result;
}

void shutDown(AddOnNumber number) {
    const void* const frame = __builtin_frame_address(0);
    AddOn& addOn = addOnOf(number);
    beginShutdown(addOn, frame);
    addOn.description->shutdown();
    endShutdown(frame);
}

// The functions of a description have no argument that says which add-on is meant. So each number has functions of its
// own.
template <AddOnNumber number>
struct Doors {
    static const VexaAddOn_s* load(AddOnList_s* identity) { return layer::load(number, identity); }
    static VexaBoolean execute(const char* command, char** errMsg) { return layer::execute(number, command, errMsg); }
    static void shutDown() { layer::shutDown(number); }
};

struct DoorAddresses {
    const VexaAddOn_s* (*load)(AddOnList_s*);
    VexaBoolean (*execute)(const char*, char**);
    void (*shutDown)();
};

template <std::size_t... numbers>
constexpr std::array<DoorAddresses, sizeof...(numbers)> doorsOf(std::index_sequence<numbers...>) {
    return {{{Doors<numbers>::load, Doors<numbers>::execute, Doors<numbers>::shutDown}...}};
}

constexpr std::array<DoorAddresses, kMostAddOns> kDoors = doorsOf(std::make_index_sequence<kMostAddOns>());

void showDescription(AddOnNumber number) {
    AddOn& addOn = addOnOf(number);
    addOn.shown = *addOn.description;
    addOn.shown.execute = kDoors[number].execute;
    if (addOn.description->shutdown != nullptr) addOn.shown.shutdown = kDoors[number].shutDown;
}

}  // namespace

AddOnNumber addAddOn(void* entry, const char* file) {
    auto addOn = std::make_unique<AddOn>(AddOn{reinterpret_cast<decltype(AddOn::entry)>(entry), file});
    for (AddOnNumber number = 0; number != kMostAddOns; ++number) {
        AddOn* free = nullptr;
        if (!theAddOns[number].compare_exchange_strong(free, addOn.get(), std::memory_order_acq_rel)) continue;
        static_cast<void>(addOn.release());  // the table owns it now
        return number;
    }
    return kNoAddOn;
}

void* entryOf(AddOnNumber addOn) { return reinterpret_cast<void*>(kDoors[addOn].load); }

void removeAddOn(AddOnNumber number) {
    const std::unique_ptr<AddOn> addOn(theAddOns[number].exchange(nullptr, std::memory_order_acq_rel));
    if (addOn->id.empty()) return;
    // An add-on with a shutdown that the host has not called had no occasion to free what it has.
    const bool hasShutdown = addOn->shown.shutdown != nullptr;
    if (hasShutdown && !addOn->isShutDown) return;
    if (Layer* const layer = Layer::current()) layer->unloaded(addOn->id, hasShutdown);
}

}  // namespace vexa::layer
