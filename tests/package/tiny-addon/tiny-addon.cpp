#include <cstdio>
#include "vexa/AddOn.h"
#include "vexautilutil/ExecuteCommand.h"

class Greeter : public vexa::vexautilutil::MacroCommandProcessorAbstract {
    bool processCommand() override {  // reads GREET TIMES = 2, and does it
        std::string word, option;
        depositErrorMessage("Error: Expected GREET TIMES = 1 to 99");  // a getter that fails replaces it
        if (!getCommand(word) || word != "GREET") return false;
        while (getNextName(option) && option == "TIMES" && getInt64Value(m_times)) option.clear();
        if (!option.empty() || m_times < 1 || m_times > 99) return false;
        for (int64_t time = 0; time < m_times; ++time) std::puts("Hello!");
        depositErrorMessage("Error: The host did not record GREET");
        return recordMacroCommand("GREETER");
    }
    bool composeCommandString(std::string& command) const override {  // writes it for the host's macro recorder
        command = "GREET " + toNameValueAssignment("TIMES", m_times);
        return true;
    }
    int64_t m_times = 1;
};

constexpr VexaAddOn_s kGreeter = {VEXA_ADDON_API_VERSION, "GREETER", "A small add-on",
                                  vexa::vexautilutil::executeCommand<Greeter>, nullptr};
const VexaAddOn_s* vexaAddOn(AddOnList_s*) { return &kGreeter; }
