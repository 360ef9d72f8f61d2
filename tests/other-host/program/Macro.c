#include "Macro.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "AddOns.h"

static const char blanks[] = " \t";

static void cutEnd(char* line) {
    size_t length = strlen(line);
    while (length != 0 && strchr(" \t\r\n", line[length - 1]) != NULL) line[--length] = '\0';
}

static int runLine(char* line, const char* file, int number) {
    static char why[kLongestMessage];
    cutEnd(line);
    char* const id = line + strspn(line, blanks);
    if (*id == '\0' || *id == '#') return 1;
    char* command = id + strcspn(id, blanks);
    if (*command != '\0') *command++ = '\0';
    command += strspn(command, blanks);
    const int hasSucceeded = runCommand(id, command, why);
    printf("%s:%d: %s: %s%s\n", file, number, id, hasSucceeded ? "done" : "failed: ", hasSucceeded ? "" : why);
    fflush(stdout);
    return hasSucceeded;
}

int runMacro(const char* file, void (*beforeCommand)(void)) {
    FILE* const stream = fopen(file, "r");
    if (stream == NULL) {
        perror(file);
        return 0;
    }
    char* line = NULL;
    size_t size = 0;
    int haveSucceeded = 1;
    for (int number = 1; getline(&line, &size, stream) != -1; ++number) {
        if (beforeCommand != NULL) beforeCommand();
        haveSucceeded &= runLine(line, file, number);
    }
    free(line);
    fclose(stream);
    return haveSucceeded;
}
