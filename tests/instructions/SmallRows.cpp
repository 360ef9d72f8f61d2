// Ten small pieces of work, for counts of their instructions: tests/instructions/compare runs this program in valgrind.
//
// Usage: small_rows [--build]
//
// --build prints what the counts depend on: the compiler, the C library and the kind of processor.
#include <gnu/libc-version.h>
#include <sys/utsname.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "textfile/LineSplitter.h"
#include "vexa/VexaUtil.h"
#include "vexa/toolbox/Set.h"
#include "vexastandin/Host.h"
#include "vexautilutil/BooleanMacroOption.h"
#include "vexautilutil/MacroCommandAbstract.h"
#include "vexautilutil/MacroCommandProcessorAbstract.h"
#include "vexautilutil/SetMacroOption.h"
#include "vexautilutil/StringMacroOption.h"
#include "vexautilutil/UInt64MacroOption.h"

namespace {

using namespace vexa::vexautilutil;
using vexa::toolbox::Set;

constexpr int kTimes = 100;

void require(bool condition) {
    if (!condition) std::abort();
}

std::string repeated(const std::string& text) {
    std::string all;
    for (int i = 0; i < kTimes; ++i) all += text;
    return all;
}

template <class ParseOne>
void parse(const std::string& option, ParseOne parseOne) {
    const std::string text = repeated(option + ' ');
    const MacroTokenizer tokens = MacroCommandAbstract::tokenize(text);
    const MacroTokenIterator end = tokens.end();
    for (MacroTokenIterator current = tokens.begin(); current != end; ++current) parseOne(current, end);
}

template <class Read>
class Processor : public MacroCommandProcessorAbstract {
public:
    explicit Processor(Read read) : m_read(read) {}
    bool processCommand() override { return m_read(*this); }
    bool composeCommandString(std::string& /*command*/) const override { return false; }

private:
    Read m_read;
};

template <class Read>
void process(const std::string& command, Read read) {
    char* error = nullptr;
    Processor<Read> processor(read);
    require(processor.parseCommandString(command.c_str(), &error));
}

class Command : public MacroCommandAbstract {
public:
    using MacroCommandAbstract::MacroCommandAbstract;
    void execute() override {}
};

std::string setText() {
    std::string text = "[1";
    for (int i = 3; i < 20 * kTimes; i += 7) text += ',' + std::to_string(i) + '-' + std::to_string(i + 3);
    return text + ']';
}

bool readEight(MacroCommandProcessorAbstract& processor) {
    std::string word;
    double speed = 0;
    int64_t count = 0;
    char isVisible = 0;
    Set zones;
    bool isRead = processor.getCommand(word);
    for (int i = 0; i < 2; ++i) {
        isRead = isRead && processor.getNextName(word) && processor.getDoubleValue(speed);
        isRead = isRead && processor.getNextName(word) && processor.getInt64Value(count);
        isRead = isRead && processor.getNextName(word) && processor.getBooleanValue(isVisible);
        isRead = isRead && processor.getNextName(word) && processor.getSetValue(zones);
    }
    return isRead;
}

}  // namespace

// The names of the rows. They are not inlined, so that valgrind finds them.
#define ROW extern "C" [[gnu::noinline]] void

ROW row_split_lines() {
    std::string text = repeated("1 2654435 0.625\r\n");
    std::vector<uint64_t> offsets;
    splitLines(text.data(), text.size(), offsets);
    require(offsets.size() == kTimes);
}

ROW row_parse_boolean() {
    parse("CAPPED=TRUE", [](MacroTokenIterator& current, const MacroTokenIterator& end) {
        require(BooleanMacroOption(current, end, nullptr).value());
    });
}

ROW row_parse_set() {
    parse("ZONES=[1-3,5,100-200]", [](MacroTokenIterator& current, const MacroTokenIterator& end) {
        require(SetMacroOption(current, end, false, nullptr).value()->size() == 105);
    });
}

ROW row_render_each_type() {
    Set zones;
    zones.assign("[1-3,5,100-200]");
    Command command("SWEEP");
    command.addOption(std::make_shared<BooleanMacroOption>("AVERAGED", true, nullptr));
    command.addOption(std::make_shared<UInt64MacroOption>("COUNT", 1234567890123, nullptr));
    command.addOption(std::make_shared<StringMacroOption>("TITLE", "Pressure at inlet", nullptr));
    command.addOption(std::make_shared<SetMacroOption>("ZONES", &zones, false, nullptr));
    for (int i = 0; i < kTimes; ++i) require(!command.toString().empty());
}

ROW row_get_double() {
    process(repeated("-123.456 "), [](MacroCommandProcessorAbstract& processor) {
        double value = 0;
        for (int i = 0; i < kTimes; ++i) require(processor.getDoubleValue(value));
        return true;
    });
}

ROW row_get_int64() {
    process(repeated("-1234567890 "), [](MacroCommandProcessorAbstract& processor) {
        int64_t value = 0;
        for (int i = 0; i < kTimes; ++i) require(processor.getInt64Value(value));
        return true;
    });
}

ROW row_command_of_8() {
    const std::string four = " Speed = 123.456 Count = 12 IsVisible = T Zones = [1-3,5]";
    for (int i = 0; i < kTimes; ++i) process("Sweep" + four + four, readEight);
}

ROW row_set_assign() {
    Set set;
    set.assign(setText());
    require(!set.isEmpty());
}

ROW row_set_to_string() {
    Set set;
    for (int64_t i = 0; i < 10 * kTimes; ++i) set.insert(i * 1000, i * 1000 + 7);
    require(!set.toString().empty());
}

ROW row_host_call_checked() {
    vexa::standin::Host host;
    host.setKeepsCalls(false);
    for (int i = 0; i < kTimes; ++i) require(VexaUtilMacroIsBatchModeActive() == 0);
}

int main(int argc, char** argv) {
    if (argc == 2 && std::strcmp(argv[1], "--build") == 0) {
        utsname machine{};
        require(uname(&machine) == 0);
        std::printf("compiler %s, C library %s, %s\n", __VERSION__, gnu_get_libc_version(), machine.machine);
        return EXIT_SUCCESS;
    }
    row_split_lines();
    row_parse_boolean();
    row_parse_set();
    row_render_each_type();
    row_get_double();
    row_get_int64();
    row_command_of_8();
    row_set_assign();
    row_set_to_string();
    row_host_call_checked();
    return EXIT_SUCCESS;
}
