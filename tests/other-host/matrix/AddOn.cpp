// An add-on whose commands make the calls of Calls.cpp: "CALL", in this object or a library that it is linked with, and
// "LOAD FILE", in a library that the command loads.

#include <dlfcn.h>

#include <cstdio>
#include <cstring>

#include "vexa/AddOn.h"

extern "C" int makeCalls();

namespace {

int makeLateCalls(const char* file) {
    void* const library = dlopen(file, LATE_BINDING);
    if (library == nullptr) return std::puts(dlerror()), 0;
    const auto calls = reinterpret_cast<int (*)()>(dlsym(library, "makeCalls"));
    return calls == nullptr ? 0 : calls() + 1;  // this object's constructor made one, too
}

VexaBoolean execute(const char* command, char**) {
    constexpr char kLoad[] = "LOAD ";
    const bool loads = std::strncmp(command, kLoad, std::strlen(kLoad)) == 0;
    const int made = loads ? makeLateCalls(command + std::strlen(kLoad)) : makeCalls();
    std::printf("made %d calls\n", made);
    return made != 0;
}

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s*) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "MATRIX", nullptr, execute, nullptr};
    return &description;
}
