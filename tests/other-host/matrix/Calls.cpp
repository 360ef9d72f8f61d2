// Seven host calls, one of them by a constructor. Compiled once for each way in which the loader can bind them.

#include <dlfcn.h>

#include "vexa/VexaUtil.h"

#if defined(BIND_BY_DLSYM)

#define HOST(function) reinterpret_cast<decltype(function)*>(dlsym(RTLD_DEFAULT, #function))

#elif defined(BIND_BY_POINTER)

namespace {

// Data that the loader fills in. Without volatile the compiler would call the functions directly.
decltype(VexaUtilMacroIsBatchModeActive)* volatile isBatchModeActive = VexaUtilMacroIsBatchModeActive;
decltype(VexaUtilStatusStartPercentDone)* volatile startStatus = VexaUtilStatusStartPercentDone;
decltype(VexaUtilStatusCheckPercentDone)* volatile checkStatus = VexaUtilStatusCheckPercentDone;
decltype(VexaUtilStatusFinishPercentDone)* volatile finishStatus = VexaUtilStatusFinishPercentDone;
decltype(VexaUtilSetAlloc)* volatile allocSet = VexaUtilSetAlloc;
decltype(VexaUtilSetInsert)* volatile insertIntoSet = VexaUtilSetInsert;
decltype(VexaUtilSetDealloc)* volatile deallocSet = VexaUtilSetDealloc;

}  // namespace

#define VexaUtilMacroIsBatchModeActive isBatchModeActive
#define VexaUtilStatusStartPercentDone startStatus
#define VexaUtilStatusCheckPercentDone checkStatus
#define VexaUtilStatusFinishPercentDone finishStatus
#define VexaUtilSetAlloc allocSet
#define VexaUtilSetInsert insertIntoSet
#define VexaUtilSetDealloc deallocSet
#define HOST(function) function

#else

#define HOST(function) function

#endif

namespace {

// The loader calls it while it opens the object, so no add-on is entered yet.
const VexaBoolean fromConstructor = HOST(VexaUtilMacroIsBatchModeActive)();

}  // namespace

// Returns the number of calls, with the one of the constructor.
extern "C" VEXA_HOST_API int makeCalls() {
    HOST(VexaUtilStatusStartPercentDone)("working", fromConstructor, 1);
    HOST(VexaUtilStatusCheckPercentDone)(50);
    HOST(VexaUtilStatusFinishPercentDone)();
    Set_s* set = HOST(VexaUtilSetAlloc)();
    HOST(VexaUtilSetInsert)(set, 1, 2);
    HOST(VexaUtilSetDealloc)(&set);
    return 7;
}
