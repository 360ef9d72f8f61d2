#pragma once

#include "vexa/VexaUtil.h"
#include "vexastandin/Host.h"

namespace vexa::tests {

/// A host that keeps nothing of what it sees, so that blocks left over are those of handles that were not released.
class SparingHost : public standin::Host {
public:
    SparingHost() {
        setKeepsCalls(false);
        setChecking(false);
        // What it keeps for good from the first handle of each kind is no leak.
        ArgList_s* list = VexaUtilArgListAlloc();
        VexaUtilArgListDealloc(&list);
        char* string = VexaUtilStringAlloc(1, "text");
        VexaUtilStringDealloc(&string);
        ThreadMutex_s* mutex = VexaUtilThreadMutexAlloc();
        VexaUtilThreadMutexDealloc(&mutex);
    }
};

}  // namespace vexa::tests
