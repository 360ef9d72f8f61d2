// Writes a trace of many host calls, for measurements of large traces.
//
// Usage: write_trace FILE CALLS

#include <cstdio>
#include <cstdlib>
#include <exception>

#include "trace/EventTrace.h"
#include "vexa/VexaUtil.h"
#include "vexastandin/Host.h"

namespace {

// Makes seven calls, some with arguments and scopes.
void callAround(int round) {
    VexaUtilAuxDataBeginAssign();
    ArgList_s* list = VexaUtilArgListAlloc();
    VexaUtilArgListAppendInt(list, "Offset1", round);
    VexaUtilStatusCheckPercentDone(round % 100);
    VexaUtilMacroIsBatchModeActive();
    VexaUtilArgListDealloc(&list);
    VexaUtilAuxDataEndAssign();
}

void writeTrace(const char* file, std::size_t calls) {
    vexa::runner::EventTrace trace(file, {"write_trace", "none", {}, false, false, {}});
    vexa::standin::Host host;
    host.setKeepsCalls(false);
    host.setChecking(false);
    host.setObserver(&trace);
    for (int round = 0; host.lastCall().call < calls; ++round) callAround(round);
    trace.finish(0, "all went well");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return EXIT_FAILURE;
    try {
        writeTrace(argv[1], std::strtoul(argv[2], nullptr, 10));
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return EXIT_FAILURE;
    }
}
