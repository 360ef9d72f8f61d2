#include <dlfcn.h>
#include <stdio.h>

#include "AddOns.h"
#include "Macro.h"
#include "Memory.h"
#include "Options.h"

enum { kFailed = 1, kWrongUsage = 2 };

static int loadAll(const Options_s* options) {
    char why[kLongestMessage];
    for (int i = 0; i != options->addOnCount; ++i) {
        if (loadAddOn(options->addOns[i], options->loadFlags, why)) continue;
        fprintf(stderr, "%s: %s\n", options->addOns[i], why);
        return 0;
    }
    return 1;
}

/* Loads a library of the host's own. Returns its function, or null after a message. */
static void (*loadPart(const char* file))(void) {
    void (*part)(void) = NULL;
    void* const object = dlopen(file, RTLD_NOW);
    if (object != NULL) *(void**)&part = dlsym(object, "otherHostPart");
    if (part == NULL) fprintf(stderr, "%s\n", dlerror());
    return part;
}

static int runOnce(const Options_s* options, void (*part)(void)) {
    const int haveSucceeded = loadAll(options) && runMacro(options->macro, part);
    unloadAddOns();
    return haveSucceeded;
}

int main(int argc, char** argv) {
    Options_s options;
    if (!readOptions(argc, argv, &options)) return kWrongUsage;
    void (*const part)(void) = options.part == NULL ? NULL : loadPart(options.part);
    if (options.part != NULL && part == NULL) return kFailed;
    const int early = options.repeats / 10;
    int haveSucceeded = 1;
    for (int round = 1; round <= options.repeats; ++round) {
        haveSucceeded &= runOnce(&options, part);
        if (options.repeats > 1 && (round == early || round == options.repeats)) printMemory(round);
    }
    return haveSucceeded ? 0 : kFailed;
}
