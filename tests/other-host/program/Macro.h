/* A macro file: on each line the id of an add-on and a command for it. */
#pragma once

/* Runs every command of the file, also after one that failed, and prints how it ended. `beforeCommand` may be null.
   Returns 1 if all succeeded. */
int runMacro(const char* file, void (*beforeCommand)(void));
