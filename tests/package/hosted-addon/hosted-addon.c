#include <stdio.h>

#include "vexa/AddOn.h"

static VexaBoolean execute(const char* command, char** errMsg) {
    (void)command;
    (void)errMsg;
    puts("runs");
    return VexaUtilMacroIsBatchModeActive();
}

static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "HOSTED", 0, execute, 0};

const VexaAddOn_s* vexaAddOn(AddOnList_s* self) {
    (void)self;
    return &description;
}
