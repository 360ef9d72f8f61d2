// An add-on whose thread still calls the host after the command that started it has returned. It is built twice: one
// build stays loaded even if the host unloads it.

#include <atomic>
#include <cstddef>
#include <optional>
#include <string>
#include <thread>

#include "../EveryFunction.h"
#include "vexa/AddOn.h"

namespace {

AddOnList_s* identity = nullptr;
std::atomic<bool> isToStop{false};
std::atomic<std::size_t> rounds{0};
std::optional<std::thread> caller;

void callOnce() {
    for (const vexa::standin::HarmlessCall& function : vexa::standin::kEveryFunction) function.call();
    VexaUtilLockStart(identity);
    VexaUtilLockFinish(identity);
    ThreadMutex_s* mutex = VexaUtilThreadMutexAlloc();
    VexaUtilThreadMutexLock(mutex);
    VexaUtilThreadMutexUnlock(mutex);
    VexaUtilThreadMutexDealloc(&mutex);
    ArgList_s* argList = VexaUtilArgListAlloc();
    VexaUtilArgListAppendString(argList, "P1", "FIELDMAP");
    VexaUtilStyleGetLowLevelX(argList);
    VexaUtilArgListDealloc(&argList);
    VexaUtilMacroRecordExtCommand("OUTLIVING", "FROM A THREAD");
    VexaUtilDataSetAddJournalCommand("OUTLIVING", "FROM A THREAD", "and its data");
    VexaUtilDialogErrMsg("from a thread");
}

VexaBoolean execute(const char* command, char**) {
    if (std::string(command) != "START" || caller) return 0;
    isToStop = false;
    caller.emplace([] {
        for (; !isToStop; ++rounds) callOnce();
    });
    while (rounds == 0) std::this_thread::yield();
    return 1;
}

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s* self) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "OUTLIVING", "", execute, nullptr};
    identity = self;
    return &description;
}

extern "C" __attribute__((visibility("default"))) void stopOutliving() {
    isToStop = true;
    caller->join();
    caller.reset();
    rounds = 0;
}
