#include "Memory.h"

#include <stdio.h>
#include <unistd.h>

static long residentKilobytes(void) {
    long pages = 0;
    FILE* const file = fopen("/proc/self/statm", "r");
    if (file == NULL || fscanf(file, "%*s %ld", &pages) != 1) pages = 0;
    if (file != NULL) fclose(file);
    return pages * (sysconf(_SC_PAGESIZE) / 1024);
}

static long mappings(void) {
    long lines = 0;
    FILE* const file = fopen("/proc/self/maps", "r");
    if (file == NULL) return 0;
    for (int c; (c = getc(file)) != EOF;) lines += c == '\n';
    fclose(file);
    return lines;
}

void printMemory(int rounds) {
    printf("after %d rounds: %ld kB, %ld mappings\n", rounds, residentKilobytes(), mappings());
    fflush(stdout);
}
