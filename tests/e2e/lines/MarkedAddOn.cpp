// Breaks one rule in each command. The comment MARK names the line that a message must name.

#include <cstring>
#include <stdexcept>
#include <string>

#include "vexa/AddOn.h"
#include "vexa/VexaUtil.h"

namespace {

AddOnList_s* theIdentity = nullptr;
int theCount = 0;  // changed after each call of the host, so that no call is the last thing that a function does

void keepLock() {
    VexaUtilLockStart(theIdentity);  // MARK lock
    ++theCount;
}

void freeTwice() {
    char* string = VexaUtilStringAlloc(8, "test");  // MARK alloc
    char* const copy = string;
    VexaUtilStringDealloc(&string);
    string = copy;
    VexaUtilStringDealloc(&string);  // MARK double-free
    ++theCount;
}

void leakList() {
    theCount += VexaUtilArgListAlloc() == nullptr ? 0 : 1;  // MARK list
}

__attribute__((always_inline)) inline void showTooMuch() {
    VexaUtilStatusCheckPercentDone(101);  // MARK percent
    ++theCount;
}

void showPercent() {
    VexaUtilStatusStartPercentDone("test", 0, 1);  // MARK start
    showTooMuch();
    VexaUtilStatusFinishPercentDone();
    ++theCount;
}

void lockNothing() {
    VexaUtilThreadMutexLock(nullptr);  // MARK null
    ++theCount;
}

void finishNothing() {
    VexaUtilAuxDataEndAssign();  // MARK finish
    ++theCount;
}

void fail(char** errMsg) {
    *errMsg = VexaUtilStringAlloc(32, "test");  // MARK fail
    std::strcpy(*errMsg, "there is no such zone");
    ++theCount;
}

void search() {
    if (theCount >= 0) throw std::runtime_error("there is no such zone");  // MARK throw
    ++theCount;
}

void failByException(char** errMsg) {
    try {
        search();
    } catch (const std::exception& error) {
        *errMsg = VexaUtilStringAlloc(32, "test");
        std::strcpy(*errMsg, error.what());
    }
    ++theCount;
}

// Another exception, which the add-on has handled, is not why the command fails.
void failAfterException(char** errMsg) {
    try {
        search();
    } catch (const std::exception&) {
        ++theCount;
    }
    fail(errMsg);
    ++theCount;
}

VexaBoolean execute(const char* command, char** errMsg) {  // MARK execute
    const std::string name = command;
    if (name == "LOCK") keepLock();  // MARK call
    if (name == "FREE") freeTwice();
    if (name == "LIST") leakList();
    if (name == "PERCENT") showPercent();
    if (name == "NULL") lockNothing();
    if (name == "FINISH") finishNothing();
    if (name == "FAIL") fail(errMsg);
    if (name == "THROW") failByException(errMsg);
    if (name == "RECOVER") failAfterException(errMsg);
    if (name == "ESCAPE") search();
    return *errMsg == nullptr;
}

const VexaAddOn_s kDescription = {VEXA_ADDON_API_VERSION, "MARKED", "Marked lines", execute, nullptr};

}  // namespace

extern "C" __attribute__((visibility("default"))) const VexaAddOn_s* vexaAddOn(AddOnList_s* identity) {
    theIdentity = identity;
    return &kDescription;
}
