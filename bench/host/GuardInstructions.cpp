// A loop of host calls, made directly or by a guard. bench/host/count-instructions counts the instructions.
#include <cstdlib>
#include <cstring>

#include "vexa/VexaUtil.h"
#include "vexautilutil/HostGuards.h"

int main(int argc, char** argv) {
    if (argc != 3) return EXIT_FAILURE;
    const bool guarded = std::strcmp(argv[1], "guarded") == 0;
    const long rounds = std::strtol(argv[2], nullptr, 10);
    for (long round = 0; round < rounds; ++round) {
        if (guarded) {
            const vexa::vexautilutil::AddOnIdLock lock(nullptr);
        } else {
            VexaUtilLockStart(nullptr);
            VexaUtilLockFinish(nullptr);
        }
    }
    return EXIT_SUCCESS;
}
