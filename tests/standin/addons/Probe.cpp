// An add-on whose commands make host calls, right or wrong. It is built several times, each with another PROBE_ID.

#include <cstring>
#include <stdexcept>
#include <string>

#include "vexa/AddOn.h"

namespace {

AddOnList_s* identity = nullptr;
char* lastString = nullptr;
bool shutdownThrows = false;
bool shutdownLocks = false;

char* hostString(const char* text) {
    const std::size_t size = std::strlen(text) + 1;
    char* const string = VexaUtilStringAlloc(static_cast<int>(size), "error string");
    if (string != nullptr) std::memcpy(string, text, size);
    return lastString = string;
}

VexaBoolean execute(const char* command, char** errMsg) {
    static char foreignText[] = "my own text";
    const std::string verb(command);
    if (verb == "SUCCEED") return 1;
    if (verb == "FAIL") return *errMsg = hostString("it went wrong\n\n"), 0;
    if (verb == "FAIL SILENTLY") return 0;
    if (verb == "FAIL ODDLY") return -1;
    if (verb == "FAIL WITH A FOREIGN STRING") return *errMsg = foreignText, 0;
    if (verb == "FAIL WITHOUT A ZERO") {
        *errMsg = VexaUtilStringAlloc(2, "error string");
        std::memcpy(*errMsg, "no", 2);
        return 0;
    }
    if (verb == "SUCCEED WITH AN ERROR STRING") return *errMsg = hostString("but"), 1;
    if (verb == "FREE THE LAST STRING") return VexaUtilStringDealloc(&lastString), 1;
    if (verb == "THROW") throw std::runtime_error("no such zone");
    if (verb == "THROW AN INTEGER") throw 42;
    if (verb == "THROW WITH AN ERROR STRING") {
        *errMsg = hostString("half done");
        throw std::runtime_error("no such zone");
    }
    if (verb == "LOCK") return VexaUtilLockStart(identity), 1;
    if (verb == "LOCK TWICE") return VexaUtilLockStart(identity), VexaUtilLockStart(identity), 1;
    if (verb == "LOCK AND THROW") {
        VexaUtilLockStart(identity);
        throw std::runtime_error("no such zone");
    }
    if (verb == "LOCK IN PAIRS") return VexaUtilLockStart(identity), VexaUtilLockFinish(identity), 1;
    if (verb == "PROGRESS") return VexaUtilStatusStartPercentDone("working", 1, 1), 1;
    if (verb == "SHOW") return VexaUtilDialogErrMsg("shown by " PROBE_ID), 1;
    if (verb == "LEAK") {
        VexaUtilThreadMutexAlloc();
        VexaUtilArgListAlloc();
        VexaUtilSetAlloc();
        VexaUtilStringAlloc(5, "leak");
        return 1;
    }
    if (verb == "LET SHUTDOWN THROW") return shutdownThrows = true, 1;
    if (verb == "LET SHUTDOWN LOCK") return shutdownLocks = true, 1;
    return *errMsg = hostString("unknown command"), 0;
}

void shutdown() {
    VexaUtilDialogErrMsg(PROBE_ID " shuts down");
    if (shutdownLocks) VexaUtilLockStart(identity);
    if (shutdownThrows) throw std::runtime_error("busy");
}

// Runs when the shared object is unloaded.
struct Unloading {
    ~Unloading() {
        VexaUtilLockStart(identity);
        VexaUtilLockFinish(identity);
        VexaUtilDialogErrMsg(PROBE_ID " is unloaded");
    }
} const unloading;

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s* self) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, PROBE_ID, PROBE_TITLE, execute, shutdown};
    identity = self;
    return &description;
}
