/* An add-on whose command allocates once. */

#include <stdlib.h>

#include "vexa/AddOn.h"

static void* kept = NULL;

static VexaBoolean execute(const char* command, char** errMsg) {
    (void)command;
    (void)errMsg;
    free(kept);
    kept = malloc(100);
    return 1;
}

static void shutDown(void) {
    free(kept);
    kept = NULL;
}

static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "FRUGAL", 0, execute, shutDown};

const VexaAddOn_s* vexaAddOn(AddOnList_s* self) {
    (void)self;
    return &description;
}
