/// \file
/// How a host loads an add-on: the one function that the add-on's shared object exports, and what it returns.
///
///     static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "MYADDON", "My add-on", execute, shutdown};
///     const VexaAddOn_s* vexaAddOn(AddOnList_s* self) { return &description; }
#pragma once

#include "vexa/VexaUtil.h"

/// The version of this interface. A host refuses an add-on that was built for another one.
#define VEXA_ADDON_API_VERSION 1

#ifdef __cplusplus
extern "C" {
#endif

/// What an add-on tells the host about itself. Static: it must stay valid while the add-on is loaded.
typedef struct VexaAddOn_s {
    /// #VEXA_ADDON_API_VERSION, as the add-on was built.
    uint32_t apiVersion;
    /// The name by which macros address the add-on: one word, not empty, unique among the loaded add-ons.
    const char* id;
    /// A title for people. May be null.
    const char* title;
    /// Runs one command. Returns 1 when it succeeded. Otherwise stores in \p errMsg a string from
    /// VexaUtilStringAlloc(), which the host then owns, or leaves it null. Must not be null. No exception may
    /// escape.
    VexaBoolean (*execute)(const char* command, char** errMsg);
    /// Called once, before the add-on is unloaded. May be null. No exception may escape.
    void (*shutdown)(void);
} VexaAddOn_s;

/// The entry of an add-on, called once after its shared object was loaded. Null refuses to be loaded.
/// \param self the add-on's identity, to be handed to VexaUtilLockStart(); valid while the add-on is loaded.
VEXA_HOST_API const VexaAddOn_s* vexaAddOn(AddOnList_s* self);

#ifdef __cplusplus
}
#endif
