#pragma once

#include <link.h>

#include <vector>

#include "layer/AddOns.h"
#include "layer/Settings.h"

namespace vexa::layer {

/// A program or a shared object that the loader has mapped.
struct LoadedObject {
    const link_map* map = nullptr;
    bool isOfAddOn = false;  ///< whether its calls of the host are an add-on's
    bool hasHostFunctions = false;
    AddOnNumber addOn = kNoAddOn;  ///< of an object that has an entry
};

/// Tells add-ons from the host, and lets the loader bind the add-ons' calls of the host to the layer.
///
/// What is loaded together at the start of the program is the host. What is loaded together later is an add-on if one
/// of its objects has the entry of an add-on, or if an add-on loads it. The rest is the host. Threads: the loader's
/// lock allows one at a time.
class LoadedObjects {
public:
    explicit LoadedObjects(Settings settings) : m_settings(std::move(settings)) {}

    /// The code of \p object, or the loader on its behalf, searches an object to load.
    void searches(const LoadedObject* object) { m_searcher = object; }
    /// The loader has mapped an object. It has not yet bound its symbols.
    LoadedObject* opened(const link_map& map);
    /// The loader has mapped all objects that it loads together.
    void areComplete();
    static void closes(LoadedObject* object);

private:
    void startAddOns();
    void startAddOn(LoadedObject& object, void* entry) const;
    void* entryOf(const LoadedObject& object) const;

    const Settings m_settings;
    bool m_isStarted = false;  // whether all objects that the program starts with are mapped
    const LoadedObject* m_searcher = nullptr;
    std::vector<LoadedObject*> m_new;  // mapped, but not bound
};

}  // namespace vexa::layer
