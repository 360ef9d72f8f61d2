#include "system/processes/Tracer.h"

#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>

namespace vexa::runner {
namespace {

bool hasTracer() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word != "TracerPid:") continue;
        long tracer = 0;
        return status >> tracer && tracer != 0;
    }
    return false;
}

// Valgrind does not use ptrace, but loads its own library into the program.
bool isUnderValgrind() {
    const char* const loaded = std::getenv("LD_PRELOAD");
    return loaded != nullptr && std::string_view(loaded).find("vgpreload_") != std::string_view::npos;
}

}  // namespace

bool isTraced() { return hasTracer() || isUnderValgrind() || std::getenv("RUNNING_UNDER_RR") != nullptr; }

}  // namespace vexa::runner
