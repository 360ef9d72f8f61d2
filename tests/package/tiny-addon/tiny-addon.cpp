#include <cstdio>

#include "vexa/AddOn.h"
#include "vexautilutil/MacroCommandProcessorAbstract.h"

// Understands one command, GREET TIMES = 2, and has it recorded.
class Greeter : public vexa::vexautilutil::MacroCommandProcessorAbstract {
    bool processCommand() override {
        std::string word, option;
        depositErrorMessage("Error: Expected GREET TIMES = 1 to 99");  // unless what reads the number knows better
        if (!getCommand(word) || word != "GREET") return false;
        while (getNextName(option)) {
            if (option != "TIMES" || !getInt64Value(m_times)) return false;
            option.clear();
        }
        if (!option.empty() || m_times < 1 || m_times > 99) return false;  // an option has no value, or a wrong one
        for (int64_t time = 0; time < m_times; ++time) std::puts("Hello!");
        return recordMacroCommand("GREETER");
    }
    bool composeCommandString(std::string& command) const override {
        command = "GREET " + toNameValueAssignment("TIMES", m_times);
        return true;
    }
    int64_t m_times = 1;
};

static VexaBoolean execute(const char* command, char** errMsg) try {
    return Greeter().parseCommandString(command, errMsg);
} catch (...) {
    return 0;  // no exception may escape to the host
}

const VexaAddOn_s* vexaAddOn(AddOnList_s*) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "GREETER", "A small add-on", execute, nullptr};
    return &description;
}
