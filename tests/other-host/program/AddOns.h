/* The add-ons that are loaded. */
#pragma once

enum { kLongestMessage = 4096 };

/* Loads an add-on. Returns 0, with the reason in `why`, if it cannot be loaded or must be refused. */
int loadAddOn(const char* file, int flags, char* why);
/* Runs a command of the add-on `id`. Returns 0, with the reason in `why`, if it failed. */
int runCommand(const char* id, const char* command, char* why);
/* Shuts all add-ons down and unloads them, in the order in which they were loaded. */
void unloadAddOns(void);
