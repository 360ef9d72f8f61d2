// A million commands through one processor, one in twenty of them refused: the memory curve must stay flat.
#include <malloc.h>
#include <unistd.h>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "vexa/VexaUtil.h"
#include "vexastandin/Host.h"
#include "vexautilutil/MacroCommandProcessorAbstract.h"

namespace {

constexpr int kCommands = 1000000;
constexpr int kSteps = 10;

class Processor : public vexa::vexautilutil::MacroCommandProcessorAbstract {
public:
    bool processCommand() override {
        std::string word;
        std::string name;
        std::string text;
        int64_t count = 0;
        vexa::toolbox::Set zones;
        return getCommand(word) && getNextName(name) && getInt64Value(count) && getNextName(name) &&
               getStringValue(text, true) && getNextName(name) && getSetValue(zones);
    }
    bool composeCommandString(std::string&) const override { return false; }
};

long residentKiB() {
    long pages = 0;
    if (std::FILE* file = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(file, "%*d %ld", &pages) != 1) pages = 0;
        std::fclose(file);
    }
    return pages * (sysconf(_SC_PAGESIZE) / 1024);
}

}  // namespace

int main() {
    vexa::standin::Host host;
    host.setKeepsCalls(false);
    Processor processor;
    long refused = 0;
    std::printf("%10s %10s %14s %12s\n", "commands", "refused", "heap in use", "resident");
    for (int i = 1; i <= kCommands; ++i) {
        const std::string command = std::string("LOAD COUNT = ") + (i % 20 == 0 ? "many" : std::to_string(i)) +
                                    " TITLE = 'a title of more than fifteen characters' ZONES = [1-3,5," +
                                    std::to_string(10 + i) + "]";
        char* errMsg = nullptr;
        if (!processor.parseCommandString(command.c_str(), &errMsg)) ++refused;
        VexaUtilStringDealloc(&errMsg);
        if (i % (kCommands / kSteps) == 0) {
            std::printf("%10d %10ld %12zu B %8ld KiB\n", i, refused, mallinfo2().uordblks, residentKiB());
        }
    }
    return refused == kCommands / 20 ? EXIT_SUCCESS : EXIT_FAILURE;
}
