#include "AddOns.h"

#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

#include "../host/ForTheProgram.h"
#include "Guard.h"
#include "Options.h"
#include "Worker.h"
#include "vexa/AddOn.h"

typedef const VexaAddOn_s* (*Entry_f)(AddOnList_s* self);

/* An add-on; its address is its identity. */
struct AddOnList_s {
    void* object;
    Entry_f entry;
    const VexaAddOn_s* description;
};

static AddOnList_s addOns[kMostAddOns];
static int addOnCount;

static AddOnList_s* addOnOfId(const char* id) {
    for (int i = 0; i != addOnCount; ++i) {
        if (strcmp(addOns[i].description->id, id) == 0) return &addOns[i];
    }
    return NULL;
}

static int refuse(char* why, const char* reason) {
    snprintf(why, kLongestMessage, "%s", reason);
    return 0;
}

static void enter(void* data) {
    AddOnList_s* const addOn = data;
    addOn->description = addOn->entry(addOn);
}

static int describe(AddOnList_s* addOn, char* why) {
    *(void**)&addOn->entry = dlsym(addOn->object, "vexaAddOn");
    if (addOn->entry == NULL) return refuse(why, "it has no entry");
    if (!callGuarded(enter, addOn, why, kLongestMessage)) return 0;
    if (addOn->description == NULL) return refuse(why, "it refuses to be loaded");
    if (addOn->description->apiVersion != VEXA_ADDON_API_VERSION) return refuse(why, "it has another version");
    if (addOn->description->id == NULL || *addOn->description->id == '\0') return refuse(why, "it has no id");
    if (addOn->description->execute == NULL) return refuse(why, "it runs no commands");
    if (addOnOfId(addOn->description->id) != NULL) return refuse(why, "its id is taken");
    return 1;
}

int loadAddOn(const char* file, int flags, char* why) {
    AddOnList_s* const addOn = &addOns[addOnCount];
    *addOn = (AddOnList_s){NULL, NULL, NULL};
    addOn->object = dlopen(file, flags);
    if (addOn->object == NULL) return refuse(why, dlerror());
    if (!describe(addOn, why)) {
        dlclose(addOn->object);
        return 0;
    }
    ++addOnCount;
    return 1;
}

typedef struct {
    const VexaAddOn_s* addOn;
    const char* command;
    char* errMsg;
    char* why;
    int isAccepted;
} Command_s;

static void execute(void* data) {
    Command_s* const command = data;
    command->isAccepted = command->addOn->execute(command->command, &command->errMsg) == 1;
}

/* Reads only a message that is a string of the host, and frees it. */
static void takeMessage(Command_s* command) {
    if (command->errMsg == NULL) return;
    if (otherHostStringText(command->errMsg, command->why, kLongestMessage)) {
        VexaUtilStringDealloc(&command->errMsg);
    } else {
        refuse(command->why, "(its message is no string of the host)");
    }
}

static void executeGuarded(void* data) {
    Command_s* const command = data;
    const int hasReturned = callGuarded(execute, command, command->why, kLongestMessage);
    if (hasReturned) takeMessage(command);
    command->isAccepted = command->isAccepted && hasReturned;
    VexaUtilStatusFinishPercentDone();
    otherHostReleaseLock();
}

int runCommand(const char* id, const char* command, char* why) {
    const AddOnList_s* const addOn = addOnOfId(id);
    if (addOn == NULL) return refuse(why, "no such add-on");
    refuse(why, "(no message)");
    Command_s work = {addOn->description, command, NULL, why, 0};
    runOnWorker(executeGuarded, &work);
    return work.isAccepted;
}

static void shutDown(void* data) { ((const AddOnList_s*)data)->description->shutdown(); }

void unloadAddOns(void) {
    char why[kLongestMessage];
    for (int i = 0; i != addOnCount; ++i) {
        const VexaAddOn_s* const description = addOns[i].description;
        if (description->shutdown != NULL && !callGuarded(shutDown, &addOns[i], why, sizeof why)) {
            fprintf(stderr, "%s: shutdown: %s\n", description->id, why);
        }
        otherHostReleaseLock();
        dlclose(addOns[i].object);
    }
    addOnCount = 0;
}
