/* The functions for the program that are not in the host's interface. */
#pragma once

#include "vexa/VexaUtil.h"

/* Copies the text of a host string, at most `size` - 1 characters. Returns 0 for an address that is not a host string:
   the host does not read it. */
VEXA_HOST_API int otherHostStringText(const char* string, char* text, int size);
/* Releases the host's lock if the calling thread still holds it. */
VEXA_HOST_API void otherHostReleaseLock(void);
