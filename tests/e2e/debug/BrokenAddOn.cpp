// The add-on BROKEN: each command goes wrong at a line with a mark, which a debugger has to show.

#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string>

#include "vexa/AddOn.h"
#include "vexa/VexaUtil.h"
#include "vexautilutil/HostGuards.h"
#include "vexautilutil/MacroTokens.h"

namespace {

AddOnList_s* identity = nullptr;
volatile int counter = 0;
int* volatile nowhere = nullptr;

// Keeps each function on the stack, and its last call from becoming a jump.
#define KEPT __attribute__((noinline))

KEPT void setMessage(char** errMsg, const char* text) {
    *errMsg = VexaUtilStringAlloc(static_cast<int>(std::strlen(text)) + 1, "error");  // MARK message
    std::strcpy(*errMsg, text);
}

KEPT void leaveLocked() {
    VexaUtilLockStart(identity);  // MARK lock
    counter = counter + 1;
}

KEPT void unlockNotHeld() {
    ThreadMutex_s* mutex = VexaUtilThreadMutexAlloc();
    VexaUtilThreadMutexUnlock(mutex);  // MARK not-held
    VexaUtilThreadMutexDealloc(&mutex);
}

KEPT void freeTwice() {
    ArgList_s* list = VexaUtilArgListAlloc();  // MARK allocated
    ArgList_s* again = list;
    VexaUtilArgListDealloc(&list);
    VexaUtilArgListDealloc(&again);  // MARK freed-again
    counter = counter + 1;
}

KEPT void guard() {
    const vexa::vexautilutil::AuxDataSuspendBroadcast broadcast;  // MARK guard
    counter = counter + 1;
}

KEPT void readFile(const std::string& name) {
    try {
        throw std::runtime_error("cannot open " + name);
    } catch (const std::runtime_error&) {
        counter = counter + 1;
    }
    throw std::runtime_error("cannot read " + name);  // MARK throw
}

KEPT void parse() {
    const std::string text = "1x";
    const std::string identifier = "=";
    (void)text;
    const vexa::vexautilutil::MacroTokenSeparator separator(" ", "=");
    const vexa::vexautilutil::MacroTokenizer tokens(identifier, separator);
    vexa::vexautilutil::MacroTokenIterator at = tokens.begin();
    vexa::vexautilutil::parseIdentifier(at, tokens.end());  // MARK parse
    counter = counter + 1;
}

KEPT void hang() {
    for (;;) usleep(1000);  // MARK hang
}

KEPT void crash() {
    *nowhere = 1;  // MARK crash
    counter = counter + 1;
}

VexaBoolean executeOf(const std::string& command, char** errMsg) {
    if (command == "LOCK") leaveLocked();
    if (command == "NOT_HELD") unlockNotHeld();
    if (command == "FREE_TWICE") freeTwice();
    if (command == "GUARD") guard();
    if (command == "THROW") readFile("wake.txt");
    if (command == "PARSE") parse();
    if (command == "HANG") hang();
    if (command == "CRASH") crash();
    if (command == "EXIT") _exit(3);  // MARK exit
    if (command == "MESSAGE") setMessage(errMsg, "no such zone");
    return command == "MESSAGE" ? 0 : 1;
}

KEPT void note(const char* text) { counter = counter + *text; }

VexaBoolean execute(const char* text, char** errMsg) {
    note(text);  // MARK first-line
    if (std::strcmp(text, "SILENT") == 0) {
        return 0;  // MARK silent
    }
    if (std::strcmp(text, "ESCAPE") == 0) readFile("escape.txt");
    try {
        return executeOf(text, errMsg);
    } catch (const std::exception& error) {
        setMessage(errMsg, error.what());
    }
    return 0;
}

}  // namespace

extern "C" const VexaAddOn_s* vexaAddOn(AddOnList_s* self) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "BROKEN", "Broken", execute, nullptr};
    identity = self;
    return &description;
}
