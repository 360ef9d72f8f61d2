#pragma once

#include "vexa/VexaUtil.h"
#include "vexastandin/Host.h"

namespace vexa::tests {

/// A host that keeps no calls, so that every remaining block belongs to a handle that was not freed.
class SparingHost : public standin::Host {
public:
    SparingHost() {
        setKeepsCalls(false);
        setChecking(false);
        // The first handle of each kind allocates memory that the host keeps. This is not a leak.
        ArgList_s* list = VexaUtilArgListAlloc();
        VexaUtilArgListDealloc(&list);
        char* string = VexaUtilStringAlloc(1, "text");
        VexaUtilStringDealloc(&string);
        ThreadMutex_s* mutex = VexaUtilThreadMutexAlloc();
        VexaUtilThreadMutexDealloc(&mutex);
    }
};

}  // namespace vexa::tests
