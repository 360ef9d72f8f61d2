#include "vexastandin/Host.h"

#include "vexa/VexaUtil.h"

int main() {
    vexa::standin::Host host;
    host.setRecording(true);
    VexaUtilMacroRecordExtCommand("GREETER", "GREET");
    return host.recordedCommands().size() == 1 ? 0 : 1;
}
