// Calls isFileOrDirWritable() several times. bench/filesystem/count-calls counts the system calls.
#include <cstdlib>

#include "vexautilutil/FileSystem.h"

int main(int argc, char** argv) {
    if (argc != 3) return EXIT_FAILURE;
    const long rounds = std::strtol(argv[2], nullptr, 10);
    for (long round = 0; round < rounds; ++round) {
        if (!vexa::filesystem::isFileOrDirWritable(argv[1])) return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
