// Calls of the host, in a shared object. It is built as an add-on, whose calls the layer checks, and as a part of the
// host, whose calls it leaves alone.

#include "layer/Calls.h"

#include <benchmark/benchmark.h>

#include "vexa/AddOn.h"

namespace {

void ask(int64_t rounds) {
    for (int64_t i = 0; i < rounds; ++i) benchmark::DoNotOptimize(VexaUtilMacroIsBatchModeActive());
}

void lockAndUnlock(int64_t rounds) {
    static ThreadMutex_s* const mutex = VexaUtilThreadMutexAlloc();
    for (int64_t i = 0; i < rounds; ++i) {
        VexaUtilThreadMutexLock(mutex);
        VexaUtilThreadMutexUnlock(mutex);
    }
}

void queryStyle(int64_t rounds) {
    for (int64_t i = 0; i < rounds; ++i) {
        double thickness = 0;
        ArgList_s* argList = VexaUtilArgListAlloc();
        VexaUtilArgListAppendString(argList, "P1", "FIELDMAP");
        VexaUtilArgListAppendString(argList, "P2", "LINETHICKNESS");
        VexaUtilArgListAppendDoublePtr(argList, "DValue", &thickness);
        benchmark::DoNotOptimize(VexaUtilStyleGetLowLevelX(argList));
        VexaUtilArgListDealloc(&argList);
    }
}

}  // namespace

const HostCalls vexaBenchHostCalls = {ask, lockAndUnlock, queryStyle};

#ifdef IS_ADDON
// The host measures while it shows the dialog, so that the calls belong to a command.
const VexaAddOn_s* vexaAddOn(AddOnList_s*) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "BENCH", nullptr,
                                            [](const char*, char**) -> VexaBoolean {
                                                VexaUtilDialogErrMsg("measure");
                                                return 1;
                                            },
                                            nullptr};
    return &description;
}
#endif
