/// \file
/// The one function that an add-on's shared object must export. It describes the add-on to the host.
///
///     static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "MYADDON", "My add-on", execute, shutdown};
///     const VexaAddOn_s* vexaAddOn(AddOnList_s* self) { return &description; }
#pragma once

#include "vexa/VexaUtil.h"

/// The version of this interface. A host refuses an add-on that was built for another version.
#define VEXA_ADDON_API_VERSION 1

#ifdef __cplusplus
extern "C" {
#endif

/// Describes an add-on to the host. It must stay valid while the add-on is loaded, so make it static.
typedef struct VexaAddOn_s {
    /// #VEXA_ADDON_API_VERSION at the time the add-on was compiled.
    uint32_t apiVersion;
    /// The name that macros use for the add-on: a single word, not empty, different from those of other loaded add-ons.
    const char* id;
    /// A title shown to users. May be null.
    const char* title;
    /// Runs one command; must not be null. On success it returns 1. Otherwise it returns 0, and may store an error
    /// message in \p errMsg, which is null at first. The message is a string from VexaUtilStringAlloc(); the host then
    /// owns the string. No exception may leave the function.
    VexaBoolean (*execute)(const char* command, char** errMsg);
    /// The host calls it once, before it unloads the add-on. May be null. No exception may leave it.
    void (*shutdown)(void);
} VexaAddOn_s;

/// The entry of an add-on. The host calls it once, after it has loaded the shared object.
/// \param self the add-on's identity, for VexaUtilLockStart(); valid while the add-on is loaded.
/// \return the description; null to refuse to be loaded. No exception may leave the function.
VEXA_HOST_API const VexaAddOn_s* vexaAddOn(AddOnList_s* self);

#ifdef __cplusplus
}
#endif
