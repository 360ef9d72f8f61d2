#include <cstdio>

#include "vexa/AddOn.h"
#include "vexautilutil/MacroCommandProcessorAbstract.h"

namespace {

// Understands one command, GREET TIMES = 2, and has it recorded.
class Greeter : public vexa::vexautilutil::MacroCommandProcessorAbstract {
public:
    bool processCommand() override {
        std::string word, name;
        if (!getCommand(word) || word != "GREET") return refuse("Expected GREET, but found " + word);
        while (getNextName(name)) {
            if (name != "TIMES") return refuse("Unknown option " + name);
            if (!getInt64Value(m_times)) return false;
            name.clear();
        }
        if (!name.empty()) return false;  // the last name stands without its value
        for (int64_t time = 0; time < m_times; ++time) std::puts("Hello!");
        return true;
    }
    bool composeCommandString(std::string& command) const override {
        command = "GREET " + toNameValueAssignment("TIMES", m_times);
        return true;
    }

private:
    bool refuse(const std::string& why) {
        depositErrorMessage("Error: " + why);
        return false;
    }

    int64_t m_times = 1;
};

VexaBoolean execute(const char* command, char** errMsg) try {
    Greeter greeter;
    return greeter.parseCommandString(command, errMsg) && greeter.recordMacroCommand("GREETER");
} catch (...) {
    return 0;  // no exception may escape to the host
}

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s*) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "GREETER", "A small add-on", execute, nullptr};
    return &description;
}
