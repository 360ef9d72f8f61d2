#include "Options.h"

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static const char usage[] =
    "Usage: other-host [OPTION]... MACRO\n"
    "Runs the commands of a macro file in a small host, which differs from the stand-in host on purpose.\n"
    "\n"
    "  --addon FILE       load this add-on; may be given again\n"
    "  --bind lazy|now    when the loader binds functions (default: now)\n"
    "  --global           let other objects see what the add-ons export\n"
    "  --part FILE        load this library of the host's own, and call its otherHostPart() before each command\n"
    "  --repeat N         load, run and unload N times, and print the memory used after a tenth and at the end\n";

static int setBinding(Options_s* options, const char* word) {
    options->loadFlags &= ~(RTLD_LAZY | RTLD_NOW);
    if (strcmp(word, "lazy") == 0) return options->loadFlags |= RTLD_LAZY, 1;
    if (strcmp(word, "now") == 0) return options->loadFlags |= RTLD_NOW, 1;
    return 0;
}

static int addAddOn(Options_s* options, const char* file) {
    if (options->addOnCount == kMostAddOns) return 0;
    options->addOns[options->addOnCount++] = file;
    return 1;
}

static int setValue(Options_s* options, const char* option, const char* value) {
    if (strcmp(option, "--addon") == 0) return addAddOn(options, value);
    if (strcmp(option, "--bind") == 0) return setBinding(options, value);
    if (strcmp(option, "--part") == 0) return options->part = value, 1;
    if (strcmp(option, "--repeat") == 0) return (options->repeats = atoi(value)) > 0;
    return 0;
}

static int readAll(int argc, char** argv, Options_s* options) {
    for (int i = 1; i < argc; ++i) {
        if (strcmp(argv[i], "--global") == 0) {
            options->loadFlags |= RTLD_GLOBAL;
        } else if (strncmp(argv[i], "--", 2) != 0) {
            if (options->macro != NULL) return 0;
            options->macro = argv[i];
        } else if (++i == argc || !setValue(options, argv[i - 1], argv[i])) {
            return 0;
        }
    }
    return options->macro != NULL;
}

int readOptions(int argc, char** argv, Options_s* options) {
    *options = (Options_s){.loadFlags = RTLD_NOW, .repeats = 1};
    const int isRead = readAll(argc, argv, options);
    if (!isRead) fputs(usage, stderr);
    return isRead;
}
