#pragma once

enum { kMostAddOns = 16 };

typedef struct {
    int loadFlags; /* for dlopen() */
    int repeats;   /* how often the add-ons are loaded, the macro is run and the add-ons are unloaded */
    int addOnCount;
    const char* addOns[kMostAddOns];
    const char* part; /* a library of the host's own; null if there is none */
    const char* macro;
} Options_s;

/* Returns 0 after a message if the command line is wrong. */
int readOptions(int argc, char** argv, Options_s* options);
