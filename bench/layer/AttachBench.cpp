// Compares a host call that the layer checks with a plain one. The program is the host, with functions that do next to
// nothing. It starts itself again by vexa-standin attach; the layer leaves the calls of the host's own part alone.

#include <dlfcn.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "layer/Calls.h"
#include "support/Rows.h"
#include "vexa/AddOn.h"

struct AddOnList_s {};
struct ThreadMutex_s {};
struct ArgList_s {};

namespace vexa::bench {
namespace {

void* loaded(const char* file) {
    void* const object = dlopen(file, RTLD_NOW);
    if (object != nullptr) return object;
    std::fprintf(stderr, "%s\n", dlerror());
    std::exit(2);
}

void add(const std::string& row, int64_t calls, void (*HostCalls::*work)(int64_t), void* part, void* addOn) {
    const std::pair<const char*, void*> subjects[] = {{"plain", part}, {"checked", addOn}};
    for (const auto& [name, object] : subjects) {
        const auto call = static_cast<const HostCalls*>(dlsym(object, "vexaBenchHostCalls"))->*work;
        addSubject(row + '/' + name, [=](benchmark::State& state) {
            for (auto _ : state) call(state.range(0));
            state.counters["calls"] = static_cast<double>(calls);
        });
    }
}

// Starts this program with the layer in it, and does not return then.
void attach(char** arguments) {
    if (std::getenv("VEXA_LAYER_SOCKET") != nullptr) return;
    std::string suppress = "--suppress=leaked-mutex";  // the benchmark keeps its mutex
    std::vector<char*> words = {const_cast<char*>(VEXA_STANDIN), const_cast<char*>("attach"), suppress.data(),
                                const_cast<char*>("--")};
    while (*arguments != nullptr) words.push_back(*arguments++);
    words.push_back(nullptr);
    execv(VEXA_STANDIN, words.data());
    std::perror(VEXA_STANDIN);
    std::exit(2);
}

}  // namespace
}  // namespace vexa::bench

extern "C" {

VexaBoolean VexaUtilMacroIsBatchModeActive() { return 1; }
ThreadMutex_s* VexaUtilThreadMutexAlloc() { return new ThreadMutex_s; }
void VexaUtilThreadMutexLock(ThreadMutex_s*) {}
void VexaUtilThreadMutexUnlock(ThreadMutex_s*) {}
ArgList_s* VexaUtilArgListAlloc() {
    static ArgList_s list;
    return &list;
}
void VexaUtilArgListDealloc(ArgList_s** list) { *list = nullptr; }
VexaBoolean VexaUtilArgListAppendString(ArgList_s*, const char*, const char*) { return 1; }
VexaBoolean VexaUtilArgListAppendDoublePtr(ArgList_s*, const char*, double*) { return 1; }
GetValueReturnCode_e VexaUtilStyleGetLowLevelX(ArgList_s*) { return GetValueReturnCode_UnknownPath; }
void VexaUtilDialogErrMsg(const char*) { benchmark::RunSpecifiedBenchmarks(); }

}  // extern "C"

int main(int argc, char** argv) {
    using vexa::bench::add;
    vexa::bench::attach(argv);
    void* const addOn = vexa::bench::loaded(ADDON);
    void* const part = vexa::bench::loaded(PART);
    add("attach-call-ask", 1, &HostCalls::ask, part, addOn);
    add("attach-call-lock", 2, &HostCalls::lockAndUnlock, part, addOn);
    add("attach-call-style", 6, &HostCalls::queryStyle, part, addOn);
    benchmark::Initialize(&argc, argv);
    AddOnList_s identity;
    char* error = nullptr;
    const auto entry = reinterpret_cast<decltype(&vexaAddOn)>(dlsym(addOn, "vexaAddOn"));
    return entry(&identity)->execute("MEASURE", &error) == 1 ? 0 : 1;
}
