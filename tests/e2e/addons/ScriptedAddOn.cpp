// An add-on that does what its commands say: `SAY hello` prints, `FAIL text` fails, and so on. A `|` in an argument
// means a line feed. Its id and title are compiled in, so that several can be loaded at the same time.

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

#include "vexa/AddOn.h"

namespace {

AddOnList_s* identity = nullptr;
bool throwsAtShutdown = false;
bool showsDialogAtShutdown = false;
bool wasRun = false;
std::string styleAtLoad;

bool fail(char** errMsg, const std::string& text) {
    const std::size_t size = text.size() + 1;
    *errMsg = VexaUtilStringAlloc(static_cast<int>(size), "error string");
    if (*errMsg != nullptr) std::memcpy(*errMsg, text.c_str(), size);
    return false;
}

bool say(const std::string& text, char**) {
    std::printf("%s\n", text.c_str());
    return true;
}

bool sayOnStandardError(const std::string& text, char**) {
    std::fprintf(stderr, "%s\n", text.c_str());
    return true;
}

// Recorded by itself, so that a recording of a macro of SAYs says the same again.
bool sayAndRecord(const std::string& text, char** errMsg) {
    const std::string command = "SAY " + text;
    const bool isLost =
        VexaUtilMacroIsRecordingActive() == 1 && VexaUtilMacroRecordExtCommand(ADDON_ID, command.c_str()) != 1;
    return isLost ? fail(errMsg, "not recorded") : say(text, errMsg);
}

// `OTHER-ID COMMAND`
bool recordFor(const std::string& text, char**) {
    const std::size_t idEnd = text.find(' ');
    return VexaUtilMacroRecordExtCommand(text.substr(0, idEnd).c_str(), text.substr(idEnd + 1).c_str()) == 1;
}

bool record(const std::string& command, char**) {
    return VexaUtilMacroRecordExtCommand(ADDON_ID, command.c_str()) == 1;
}

// May be run once in a session.
bool once(const std::string&, char** errMsg) {
    if (std::exchange(wasRun, true)) return fail(errMsg, "was run before");
    return record("ONCE", errMsg);
}

bool answerBatch(const std::string&, char** errMsg) {
    return say(VexaUtilMacroIsBatchModeActive() == 1 ? "batch" : "interactive", errMsg);
}

bool answerRecording(const std::string&, char** errMsg) {
    return say(VexaUtilMacroIsRecordingActive() == 1 ? "on" : "off", errMsg);
}

bool showDialog(const std::string& text, char**) {
    VexaUtilDialogErrMsg(text.c_str());
    return true;
}

// The double of a style path, "FRAME SIZE".
std::string styleOf(const std::string& path) {
    double value = 0;
    ArgList_s* list = VexaUtilArgListAlloc();
    std::istringstream keywords(path);
    std::string keyword;
    for (int i = 1; keywords >> keyword; ++i) {
        VexaUtilArgListAppendString(list, ('P' + std::to_string(i)).c_str(), keyword.c_str());
    }
    VexaUtilArgListAppendDoublePtr(list, "DValue", &value);
    const GetValueReturnCode_e code = VexaUtilStyleGetLowLevelX(list);
    VexaUtilArgListDealloc(&list);
    std::ostringstream text;
    text << value;
    return code == GetValueReturnCode_Ok ? text.str() : "no double";
}

bool answerStyle(const std::string& path, char** errMsg) { return say(styleOf(path), errMsg); }

// Can be played back only where there is such a style.
bool recordStyle(const std::string& path, char** errMsg) {
    if (styleOf(path) == "no double") return fail(errMsg, "no double");
    return record("RECORDSTYLE " + path, errMsg);
}

bool answerStyleAtLoad(const std::string&, char** errMsg) { return say(styleAtLoad, errMsg); }

bool journal(const std::string& text, char**) {
    const std::string command = "JOURNAL " + text;
    return VexaUtilDataSetAddJournalCommand(ADDON_ID, command.c_str(), nullptr) == 1;
}

bool journalData(const std::string& data, char**) {
    return VexaUtilDataSetAddJournalCommand(ADDON_ID, "JOURNALDATA", data.c_str()) == 1;
}

bool leaveLockOpen(const std::string&, char**) {
    VexaUtilLockStart(identity);
    return true;
}

bool failSilently(const std::string&, char**) { return false; }

bool throwText(const std::string& text, char**) { throw std::runtime_error(text); }

bool throwAtShutdown(const std::string&, char**) {
    throwsAtShutdown = true;
    return true;
}

bool showDialogAtShutdown(const std::string&, char**) {
    showsDialogAtShutdown = true;
    return true;
}

bool sleep(const std::string& milliseconds, char**) {
    std::this_thread::sleep_for(std::chrono::milliseconds(std::stoi(milliseconds)));
    return true;
}

bool killProcess(const std::string&, char**) {
    std::fflush(stdout);
    return std::raise(SIGKILL) == 0;
}

bool closeOutput(const std::string&, char**) { return close(STDOUT_FILENO) == 0; }

struct Command {
    const char* name;
    bool (*run)(const std::string& argument, char** errMsg);
};

constexpr Command kCommands[] = {
    {"SAY", sayAndRecord},
    {"ECHO", say},
    {"ECHOERR", sayOnStandardError},
    {"RECORD", record},
    {"RECORDFOR", recordFor},
    {"RECORDSTYLE", recordStyle},
    {"ONCE", once},
    {"SLEEP", sleep},
    {"FAIL", [](const std::string& text, char** errMsg) { return fail(errMsg, text); }},
    {"FAILSILENTLY", failSilently},
    {"BATCH", answerBatch},
    {"RECORDING", answerRecording},
    {"DIALOG", showDialog},
    {"STYLE", answerStyle},
    {"STYLEATLOAD", answerStyleAtLoad},
    {"JOURNAL", journal},
    {"JOURNALDATA", journalData},
    {"LEAVELOCKOPEN", leaveLockOpen},
    {"THROW", throwText},
    {"THROWATSHUTDOWN", throwAtShutdown},
    {"DIALOGATSHUTDOWN", showDialogAtShutdown},
    {"KILL", killProcess},
    {"CLOSEOUT", closeOutput},
};

VexaBoolean execute(const char* text, char** errMsg) {
    std::string argument(text);
    const std::size_t nameEnd = std::min(argument.find(' '), argument.size());
    const std::string name = argument.substr(0, nameEnd);
    argument.erase(0, nameEnd + 1);
    if (name != "ECHO") std::replace(argument.begin(), argument.end(), '|', '\n');
    for (const Command& command : kCommands) {
        if (name == command.name) return command.run(argument, errMsg) ? 1 : 0;
    }
    return fail(errMsg, "unknown command " + name) ? 1 : 0;
}

void shutdown() {
    wasRun = false;
    if (showsDialogAtShutdown) VexaUtilDialogErrMsg("goodbye");
    if (throwsAtShutdown) throw std::runtime_error("no way out");
}

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s* self) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, ADDON_ID, ADDON_TITLE, execute, shutdown};
    identity = self;
    styleAtLoad = styleOf("LOADED");
    return &description;
}
