#include "layer/LoadedObjects.h"

#include <algorithm>
#include <cstddef>

#include "contract/HostFunctionTable.h"
#include "layer/ElfImage.h"
#include "layer/HostCalls.h"
#include "layer/Layer.h"

namespace vexa::layer {
namespace {

using standin::HostFunction;

template <class Use>
void forEachHostFunction(const Use& use) {
    const std::size_t count = standin::hostFunctions().size();
    for (std::size_t i = 0; i != count; ++i) use(static_cast<HostFunction>(i));
}

// The first object that has a function is the one to which the loader binds it.
bool takeHostFunctions(const ElfImage& image) {
    bool hasAny = false;
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
    const auto function = standin::findHostFunction(name);
    return function && hostFunction(*function) != nullptr ? checkedFunction(*function) : nullptr;
}

}  // namespace

LoadedObject* LoadedObjects::opened(const link_map& map) {
    auto* const object = new LoadedObject{&map};
    object->isOfAddOn = m_searcher != nullptr && m_searcher->isOfAddOn;
    object->hasHostFunctions = takeHostFunctions(ElfImage(map));
    m_new.push_back(object);
    return object;
}

void LoadedObjects::areComplete() {
    if (m_isStarted) startAddOns();
    m_isStarted = true;
    m_new.clear();
}

void LoadedObjects::startAddOns() {
    const auto isAddOn = [this](const LoadedObject* object) { return hasEntry(*object); };
    const bool isAddOnHere = std::any_of(m_new.begin(), m_new.end(), isAddOn);
    if (isAddOnHere) Layer::start(m_settings);
    for (LoadedObject* const object : m_new) {
        object->isOfAddOn |= isAddOnHere;
        if (object->isOfAddOn) ElfImage(*object->map).redirectImports(targetOf);
    }
}

void LoadedObjects::closes(LoadedObject* object) {
    if (object->addOn != kNoAddOn) removeAddOn(object->addOn);
    if (object->hasHostFunctions) forgetHostFunctions(ElfImage(*object->map));
    delete object;
}

bool LoadedObjects::hasEntry(const LoadedObject& object) const {
    return ElfImage(*object.map).findFunction(m_settings.entryName.c_str()) != nullptr;
}

}  // namespace vexa::layer
