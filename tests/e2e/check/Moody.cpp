// An add-on that behaves differently in each mode of the host. One of its commands depends on another one.

#include <cstring>
#include <string>

#include "vexa/AddOn.h"

namespace {

bool isReady = false;

VexaBoolean fail(char** errMsg, const char* text) {
    const std::size_t size = std::strlen(text) + 1;
    *errMsg = VexaUtilStringAlloc(static_cast<int>(size), "error message");
    if (*errMsg != nullptr) std::memcpy(*errMsg, text, size);
    return 0;
}

VexaBoolean record(const std::string& command) { return VexaUtilMacroRecordExtCommand("MOODY", command.c_str()); }

VexaBoolean execute(const char* text, char** errMsg) {
    const std::string command = text;
    if (command == "begin") return isReady = true, 1;
    if (command == "go-on") return isReady ? 1 : fail(errMsg, "begin first");
    if (command == "no-batch") return VexaUtilMacroIsBatchModeActive() ? fail(errMsg, "who reads this?") : 1;
    if (command == "no-recording") return VexaUtilMacroIsRecordingActive() ? fail(errMsg, "not for the record") : 1;
    if (command == "no-journal") return VexaUtilStateIsProcessingJournal() ? fail(errMsg, "not twice") : 1;
    if (command == "no-layout") return VexaUtilStateIsProcessingLayout() ? fail(errMsg, "no layout") : 1;
    if (command == "dialog") return VexaUtilDialogErrMsg("look"), 1;
    if (command == "record-same") return record(command), 1;
    if (command == "record-more") return record("record-more"), record("record-more"), 1;
    if (command.find("record-other") == 0) return record(command + 'x'), 1;
    if (command == "record-wrong") return record("no-such-command"), 1;
    return fail(errMsg, "unknown command");
}

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s*) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "MOODY", nullptr, execute, nullptr};
    isReady = false;
    return &description;
}
