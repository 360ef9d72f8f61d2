// An add-on whose commands control the host's status line. A command is a list of steps, separated by `;`:
// `START Reading;PERCENT 40;SAY half;FINISH`.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

#include <unistd.h>

#include "vexa/AddOn.h"

namespace {

constexpr const char* kId = "PROGRESS";
constexpr useconds_t kPause = 2000;

bool fileExists(const std::string& name) { return access(name.c_str(), F_OK) == 0; }

// Goes through all percentages, over and over, as fast as the host takes them.
void sweep(int changes) {
    for (int change = 0; change < changes; ++change) VexaUtilStatusCheckPercentDone(change % 101);
}

// Tasks that are over as soon as they start.
void restart(int tasks) {
    for (int task = 0; task < tasks; ++task) {
        VexaUtilStatusFinishPercentDone();
        VexaUtilStatusStartPercentDone(("Restarting " + std::to_string(task)).c_str(), 1, 1);
    }
}

void retitle(int changes) {
    for (int change = 0; change < changes; ++change) {
        VexaUtilStatusSetPercentDoneText(("Retitling " + std::to_string(change)).c_str());
    }
}

void sayMuch(int lines) {
    for (int line = 0; line < lines; ++line) {
        std::printf("line %d\n", line);
        VexaUtilStatusCheckPercentDone(line * 100 / lines);
    }
}

void checkUntilStopped() {
    while (VexaUtilStatusCheckPercentDone(50) == 1) usleep(kPause);
}

[[noreturn]] void neverLook() {
    for (;;) usleep(kPause);
}

void deposit(char** errMsg, const std::string& text) {
    *errMsg = VexaUtilStringAlloc(static_cast<int>(text.size() + 1), "error string");
    if (*errMsg != nullptr) std::memcpy(*errMsg, text.c_str(), text.size() + 1);
}

// Returns false when the step fails the command.
bool takeStep(const std::string& name, const std::string& argument, char** errMsg) {
    const int number = std::atoi(argument.c_str());
    if (name == "START") VexaUtilStatusStartPercentDone(argument.c_str(), 1, 1);
    if (name == "STARTWITHOUTBUTTON") VexaUtilStatusStartPercentDone(argument.c_str(), 0, 1);
    if (name == "STARTWITHOUTBAR") VexaUtilStatusStartPercentDone(argument.c_str(), 1, 0);
    if (name == "STARTBARE") VexaUtilStatusStartPercentDone(nullptr, 0, 0);
    if (name == "PERCENT") VexaUtilStatusCheckPercentDone(number);
    if (name == "TEXT") VexaUtilStatusSetPercentDoneText(argument.c_str());
    if (name == "FINISH") VexaUtilStatusFinishPercentDone();
    if (name == "SWEEP") sweep(number);
    if (name == "RESTART") restart(number);
    if (name == "RETITLE") retitle(number);
    if (name == "SAYMUCH") sayMuch(number);
    if (name == "SAY") std::printf("%s\n", argument.c_str());
    if (name == "PART") std::fputs(argument.c_str(), stdout);
    if (name == "DIALOG") VexaUtilDialogErrMsg(argument.c_str());
    if (name == "RECORD") VexaUtilMacroRecordExtCommand(kId, ("SAY " + argument).c_str());
    if (name == "PLAYBACK") VexaUtilMacroRecordExtCommand(kId, "MAKE again;START Again;UNTILSTOPPED;FINISH");
    if (name == "MAKE") std::ofstream(argument.c_str());
    if (name == "WAITFOR") {
        while (!fileExists(argument)) usleep(kPause);
    }
    if (name == "UNTILSTOPPED") checkUntilStopped();
    if (name == "HANG") neverLook();
    if (name != "FAIL") return true;
    deposit(errMsg, argument);
    return false;
}

VexaBoolean execute(const char* command, char** errMsg) {
    std::string steps(command);
    while (!steps.empty()) {
        const std::string step = steps.substr(0, steps.find(';'));
        steps.erase(0, step.size() + 1);
        const std::size_t nameEnd = std::min(step.find(' '), step.size());
        const std::string argument = step.substr(std::min(nameEnd + 1, step.size()));
        if (!takeStep(step.substr(0, nameEnd), argument, errMsg)) return 0;
    }
    return 1;
}

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s*) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, kId, "Shows progress", execute, nullptr};
    return &description;
}
