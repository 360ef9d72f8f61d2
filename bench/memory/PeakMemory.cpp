// Compares the peak memory of the library's work with the least memory that the work needs. It counts what operator new
// allocates, here and in the libraries, so every run gives the same figures. It writes them, in bytes per unit, in the
// format of the other benchmarks.
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "memory/CountedMemory.h"
#include "vexa/toolbox/Set.h"
#include "vexautilutil/BooleanMacroOption.h"
#include "vexautilutil/MacroCommandAbstract.h"
#include "vexautilutil/MacroCommandProcessorAbstract.h"

namespace {

using vexa::toolbox::Set;
using namespace vexa::vexautilutil;

constexpr std::size_t kUnits = 100000;

const char* separator = "";

// Returns the peak memory of `work` above the memory in use before, per unit.
template <class Work>
void print(const char* name, const Work& work) {
    const std::size_t before = vexa::bench::bytesInUse();
    vexa::bench::forgetPeak();
    work();
    std::printf("%s\n{\"name\": \"%s/1\", \"value\": %.2f}", std::exchange(separator, ","), name,
                static_cast<double>(vexa::bench::peakBytes() - before) / kUnits);
}

std::string setText() {
    std::string text = "[";
    for (std::size_t i = 0; i < kUnits; ++i) text += std::to_string(10 * i) + '-' + std::to_string(10 * i + 4) + ',';
    text.back() = ']';
    return text;
}

std::string commandText() {
    std::string text = "STEPS ";
    for (std::size_t i = 0; i < kUnits; ++i) text += "STEP = " + std::to_string(i) + ' ';
    return text;
}

class Steps : public MacroCommandProcessorAbstract {
public:
    bool processCommand() override {
        std::string name;
        int64_t step = 0;
        if (!getCommand(name)) return false;
        while (getNextName(name)) {
            if (!getInt64Value(step)) return false;
        }
        return true;
    }
    bool composeCommandString(std::string&) const override { return false; }
};

class Command : public MacroCommandAbstract {
public:
    using MacroCommandAbstract::MacroCommandAbstract;
    void execute() override {}
};

}  // namespace

int main() {
    const std::string text = setText();
    const std::string commands = commandText();
    Set set;
    set.assign(text);
    Command command("COMMAND");
    for (std::size_t i = 0; i < kUnits; ++i) {
        command.addOption(std::make_shared<BooleanMacroOption>("OPTION" + std::to_string(i), true, nullptr));
    }
    std::size_t rendered = command.toString().size();

    std::printf("{\"benchmarks\": [");
    // The least: a vector of the ranges, of known size.
    print("memory-set-assign/floor", [] { std::vector<Set::Range> ranges(kUnits); });
    print("memory-set-assign/ours", [&] {
        Set assigned;
        assigned.assign(text);
    });
    // The least: a string of the text, of known size.
    print("memory-set-to-string/floor", [&] { const std::string copy(text.size(), ' '); });
    print("memory-set-to-string/ours", [&] { set.toString(); });
    // The least: a copy of the command.
    print("memory-command/floor", [&] { const std::string copy(commands); });
    print("memory-command/ours", [&] {
        Steps steps;
        char* errMsg = nullptr;
        if (!steps.parseCommandString(commands.c_str(), &errMsg)) std::abort();
    });
    // The least: a string of the text, of known size.
    print("memory-render/floor", [&] { const std::string copy(rendered, ' '); });
    print("memory-render/ours", [&] { command.toString(); });
    std::printf("\n]}\n");
}
