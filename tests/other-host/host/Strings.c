#include <stdio.h>
#include <string.h>

#include "ForTheProgram.h"
#include "Handles.h"

enum { kLongestString = 256 << 10 };

/* A string of size 0 gets 1 byte, for its terminating zero. */
char* VexaUtilStringAlloc(int size, const char* purpose) {
    (void)purpose;
    if (size < 0 || size > kLongestString) return NULL;
    return newHandle(String_e, size == 0 ? 1 : (size_t)size);
}

/* Does not set the handle to null. */
void VexaUtilStringDealloc(char** string) {
    if (string != NULL && forgetHandle(String_e, *string)) freeHandle(*string);
}

int otherHostStringText(const char* string, char* text, int size) {
    const size_t length = strnlen(string, handleSize(String_e, string));
    if (!isHandle(String_e, string)) return 0;
    snprintf(text, (size_t)size, "%.*s", (int)length, string);
    return 1;
}
