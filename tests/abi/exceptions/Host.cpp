// A host that loads two add-ons: one throws exceptions, the other one must catch them. The host does not link the
// library. The add-ons load it, as in a real host.
//
// Usage: host THROWER CATCHER local|global
#include <dlfcn.h>

#include <cstdio>
#include <cstring>

#include "Errors.h"

namespace {

template <class Function>
Function* load(const char* path, int mode, const char* name) {
    void* const addOn = dlopen(path, RTLD_NOW | mode);
    void* const function = addOn == nullptr ? nullptr : dlsym(addOn, name);
    if (function == nullptr) std::fprintf(stderr, "%s\n", dlerror());
    return reinterpret_cast<Function*>(function);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    const int mode = std::strcmp(argv[3], "global") == 0 ? RTLD_GLOBAL : RTLD_LOCAL;
    Throws* const throws = load<Throws>(argv[1], mode, "throws");
    Describe* const describe = load<Describe>(argv[2], mode, "describe");
    if (throws == nullptr || describe == nullptr) return 2;
    for (const Throw* one = throws(); one->name != nullptr; ++one) {
        char description[500];
        describe(one->make, description, sizeof description);
        std::printf("%s: %s\n", one->name, description);
    }
    return 0;
}
