#include <cstdint>
#include <cstdio>
#include <string>

#include "vexa/AddOn.h"
#include "vexautilutil/ExecuteCommand.h"
#include "vexautilutil/MacroCommandProcessorAbstract.h"

namespace {

// Reads and records one command, HELLO, with two options: TIMES = 3 and LOUD = T.
class HelloProcessor : public vexa::vexautilutil::MacroCommandProcessorAbstract {
public:
    bool processCommand() override {
        std::string word;
        std::string name;
        if (!getCommand(word) || word != "HELLO") return refuse("Expected HELLO, but found " + word);
        while (getNextName(name)) {
            if (!readOption(name)) return false;
            name.clear();
        }
        if (!name.empty()) return refuse("Expected = after " + name);
        if (m_times < 1 || m_times > 100) return refuse("TIMES must be from 1 to 100");

        for (int64_t time = 0; time < m_times; ++time) std::puts(m_loud ? "HELLO!" : "Hello");
        return recordMacroCommand("HELLO") || refuse("HELLO was not recorded");
    }

    bool composeCommandString(std::string& command) const override {
        command = "HELLO " + toNameValueAssignment("TIMES", m_times) + toNameValueAssignment("LOUD", m_loud);
        return true;
    }

private:
    bool readOption(const std::string& name) {
        if (name == "TIMES") return getInt64Value(m_times);
        if (name == "LOUD") return getBooleanValue(m_loud);
        return refuse("Unknown option " + name);
    }

    bool refuse(const std::string& why) {
        depositErrorMessage("Error: " + why);
        return false;
    }

    int64_t m_times = 1;
    char m_loud = 0;
};

// Each command gets a new processor.
constexpr VexaAddOn_s kDescription = {VEXA_ADDON_API_VERSION, "HELLO", "Says hello",
                                      vexa::vexautilutil::executeCommand<HelloProcessor>, nullptr};

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s*) { return &kDescription; }
