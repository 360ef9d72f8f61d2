#include "layer/LoadedObjects.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "contract/HostFunctionTable.h"
#include "layer/CodeObjects.h"
#include "layer/ElfImage.h"
#include "layer/HostCalls.h"
#include "layer/Layer.h"
#include "layer/Lookup.h"
#include "layer/Throws.h"

namespace vexa::layer {
namespace {

using standin::HostFunction;

template <class Use>
void forEachHostFunction(const Use& use) {
    const std::size_t count = standin::hostFunctions().size();
    for (std::size_t i = 0; i != count; ++i) use(static_cast<HostFunction>(i));
}

constexpr std::string_view kLookup = "dlsym";

// The first object that has a function is the one to which the loader binds it.
bool takeHostFunctions(const ElfImage& image) {
    bool hasAny = false;
    if (lookup() == nullptr) setLookup(image.findFunction(kLookup.data()));
    forEachHostFunction([&](HostFunction function) {
        void* const address = hostFunction(function) == nullptr ? image.findFunction(nameOf(function)) : nullptr;
        if (address == nullptr) return;
        setHostFunction(function, address);
        hasAny = true;
    });
    return hasAny;
}

void forgetHostFunctions(const ElfImage& image) {
    forEachHostFunction([&](HostFunction function) {
        void* const address = hostFunction(function);
        if (address != nullptr && image.findFunction(nameOf(function)) == address) setHostFunction(function, nullptr);
    });
}

// Without the host's function, the loader is to report the import as it does without the layer.
void* targetOf(const char* name) {
    if (name == kLookup && lookup() != nullptr) return checkedLookup();
    if (void* const target = checkedThrowFunction(name)) return target;
    return checkedFunction(name);
}

}  // namespace

LoadedObject* LoadedObjects::opened(const link_map& map) {
    auto* const object = new LoadedObject{&map};
    object->isOfAddOn = m_searcher != nullptr && m_searcher->isOfAddOn;
    const ElfImage image(map);
    object->hasHostFunctions = takeHostFunctions(image);
    takeThrowFunctions(image);
    m_new.push_back(object);
    return object;
}

void LoadedObjects::areComplete() {
    if (m_isStarted) startAddOns();
    m_isStarted = true;
    m_new.clear();
}

void LoadedObjects::startAddOns() {
    const auto isAddOn = [this](const LoadedObject* object) { return entryOf(*object) != nullptr; };
    const bool isAddOnHere = std::any_of(m_new.begin(), m_new.end(), isAddOn);
    if (isAddOnHere) Layer::start(m_settings);
    for (LoadedObject* const object : m_new) {
        object->isOfAddOn |= isAddOnHere;
        if (!object->isOfAddOn) continue;
        noteAddOnObject(object->map);
        if (Layer* const layer = Layer::current()) layer->addOnMapped(pathOf(*object->map));
        ElfImage(*object->map).redirectImports(targetOf);
        if (void* const entry = entryOf(*object)) startAddOn(*object, entry);
    }
}

// The host asks for the entry, and gets one of the layer.
void LoadedObjects::startAddOn(LoadedObject& object, void* entry) const {
    const char* const file = object.map->l_name;
    object.addOn = addAddOn(entry, file);
    if (object.addOn != kNoAddOn) {
        ElfImage(*object.map).redirectExport(m_settings.entryName.c_str(), layer::entryOf(object.addOn));
    } else if (Layer* const layer = Layer::current()) {
        layer->note(std::string(file) + " is not checked: too many add-ons are loaded");
    }
}

void LoadedObjects::closes(LoadedObject* object) {
    if (object->addOn != kNoAddOn) removeAddOn(object->addOn);
    if (object->hasHostFunctions) forgetHostFunctions(ElfImage(*object->map));
    // If another object is missing, what was mapped before is closed without having been complete.
    m_new.erase(std::remove(m_new.begin(), m_new.end(), object), m_new.end());
    forgetAddOnObject(object->map);
    delete object;
}

void* LoadedObjects::entryOf(const LoadedObject& object) const {
    return ElfImage(*object.map).findFunction(m_settings.entryName.c_str());
}

}  // namespace vexa::layer
