#include <cstdio>
#include <string>

#include "vexa/VexaUtil.h"
#include "vexautilutil/vexautilutil.h"

extern "C" char g_recorded[];

namespace {

class Counter : public vexa::vexautilutil::MacroCommandProcessorAbstract {
public:
    bool processCommand() override {
        std::string word, name;
        return getCommand(word) && getNextName(name) && getInt64Value(m_count);
    }
    bool composeCommandString(std::string& command) const override {
        command = " COUNT " + toNameValueAssignment("TO", m_count);
        return true;
    }

private:
    int64_t m_count = 0;
};

bool is(const std::string& text, const std::string& expected) {
    if (text == expected) return true;
    std::fprintf(stderr, "Expected '%s', but got '%s'\n", expected.c_str(), text.c_str());
    return false;
}

}  // namespace

int main() {
    Counter counter;
    char* message = nullptr;
    if (!counter.parseCommandString("COUNT TO = 12", &message) || !counter.recordMacroCommand("COUNTER")) return 1;
    if (!is(g_recorded, "COUNTER COUNT TO = 12 ")) return 1;

    if (counter.parseCommandString("COUNT TO = many", &message)) return 1;
    const bool told = is(message, "Error: Invalid Int64 value for command option: TO\n");
    VexaUtilStringDealloc(&message);
    return told ? 0 : 1;
}
