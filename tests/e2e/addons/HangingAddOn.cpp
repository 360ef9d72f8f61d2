// An add-on that hangs: on the text of a command, in its entry or at its shutdown, and when a recording is played back.

#include <cstdio>
#include <cstring>
#include <string>

#include <unistd.h>

#include "vexa/AddOn.h"

namespace {

constexpr const char* kId = "HANGING";
constexpr useconds_t kPause = 1000;

bool hangsAtShutdown = false;

[[noreturn]] void hang() {
    for (;;) usleep(kPause);
}

// Searches for the closing quote. If there is none, the search never ends.
void readQuoted(const std::string& text) {
    for (std::size_t at = 1; at >= text.size() || text[at] != '\''; at = at < text.size() ? at + 1 : at) usleep(1);
    std::printf("read %s\n", text.c_str());
}

void record(const std::string& command) { VexaUtilMacroRecordExtCommand(kId, command.c_str()); }

VexaBoolean execute(const char* command, char**) {
    const std::string text(command);
    if (text[0] == '\'') readQuoted(text);
    if (text == "HANG") hang();
    if (text == "PRINT AND HANG") {
        std::fputs("a line\nhalf a line", stdout);
        hang();
    }
    if (text == "RECORD") record("RECORD");
    if (text == "RECORD AND HANG") {
        record("RECORD");
        hang();
    }
    if (text == "RECORD HANG") record("HANG");
    if (text == "HANG AT SHUTDOWN") hangsAtShutdown = true;
    return 1;
}

void shutdown() {
    if (hangsAtShutdown) hang();
}

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s*) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, kId, "Hangs", execute, shutdown};
    if (HANGS_AT_ENTRY) hang();
    return &description;
}
