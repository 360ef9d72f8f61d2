// An add-on with a command of each kind, which the tests describe rightly and wrongly.

#include <cstdint>
#include <memory>
#include <string>

#include "vexa/AddOn.h"
#include "vexautilutil/BooleanMacroOption.h"
#include "vexautilutil/ExecuteCommand.h"
#include "vexautilutil/MacroCommandAbstract.h"
#include "vexautilutil/MacroCommandError.h"
#include "vexautilutil/MacroCommandProcessorAbstract.h"
#include "vexautilutil/SetMacroOption.h"
#include "vexautilutil/StringMacroOption.h"
#include "vexautilutil/UInt64MacroOption.h"

namespace {

using namespace vexa::vexautilutil;

bool isLoaded = false;

// GREET NAME = 'x' TIMES = 1 STEP = 1 SCALE = 0.5 LOUD = F ZONES = [1] MODE = 'fast'. It needs LOAD.
class GreetProcessor : public MacroCommandProcessorAbstract {
public:
    bool processCommand() override {
        std::string word;
        std::string name;
        if (!getCommand(word) || word != "GREET") return refuse("Unknown command " + word);
        while (getNextName(name)) {
            if (!readOption(name)) return false;
            name.clear();
        }
        if (!name.empty()) return refuse("Expected = after " + name);
        if (m_name.empty()) return refuse("NAME is missing");
        if (!isLoaded) return refuse("LOAD comes first");
        return recordMacroCommand("DESCRIBED");
    }

    bool composeCommandString(std::string& command) const override {
        command = "GREET " + toNameValueAssignment("NAME", m_name) + toNameValueAssignment("TIMES", m_times) +
                  toNameValueAssignment("STEP", m_step);
        return true;
    }

private:
    bool readOption(const std::string& name) {
        if (name == "NAME") return getStringValue(m_name, true) || refuse("Expected a text for NAME");
        if (name == "TIMES") return getInt64Value(m_times) && inRange();
        if (name == "STEP") return getInt32Value(m_step);
        if (name == "SCALE") return getDoubleValue(m_scale);
        if (name == "LOUD") return getBooleanValue(m_loud);
        if (name == "ZONES") return getSetValue(m_zones);
        if (name == "MODE") return getStringValue(m_mode, true) && isMode();
        return refuse("Unknown option " + name);
    }

    bool inRange() { return (m_times >= 1 && m_times <= 100) || refuse("TIMES must be from 1 to 100"); }
    bool isMode() { return m_mode == "fast" || m_mode == "slow" || refuse("MODE must be fast or slow"); }

    bool refuse(const std::string& why) {
        depositErrorMessage("Error: " + why);
        return false;
    }

    std::string m_name;
    int64_t m_times = 1;
    int32_t m_step = 1;
    double m_scale = 1;
    char m_loud = 0;
    vexa::toolbox::Set m_zones;
    std::string m_mode;
};

// LOAD FILE="x" COUNT=1 HEADER=FALSE ZONES=[1]
class LoadCommand : public MacroCommandAbstract {
public:
    explicit LoadCommand(const std::string& options) : MacroCommandAbstract("LOAD") {
        const MacroTokenizer tokens = tokenize(options);
        MacroTokenIterator current = tokens.begin();
        const MacroTokenIterator end = tokens.end();
        while (current != end) {
            if (*current == " ") {
                ++current;
            } else {
                addOption(readOption(current, end));
            }
        }
    }

    void execute() override {
        if (options().count("FILE") == 0) throw MacroCommandError("FILE is missing");
        isLoaded = true;
    }

private:
    static std::shared_ptr<MacroOptionInterface> readOption(MacroTokenIterator& current,
                                                            const MacroTokenIterator& end) {
        static const uint64_t count = 10;
        static const bool header = false;
        const std::string name = *current;
        if (name == "FILE") return std::make_shared<StringMacroOption>(current, end, nullptr);
        if (name == "COUNT") return std::make_shared<UInt64MacroOption>(current, end, &count);
        if (name == "HEADER") return std::make_shared<BooleanMacroOption>(current, end, &header);
        if (name == "ZONES") return std::make_shared<SetMacroOption>(current, end, false, nullptr);
        throw MacroCommandError("Unknown option " + name);
    }
};

void load(const std::string& text) {
    LoadCommand command(text.substr(4));
    command.execute();
    if (VexaUtilMacroIsRecordingActive() == 0) return;
    VexaUtilMacroRecordExtCommand("DESCRIBED", command.toString().c_str());
}

VexaBoolean execute(const char* text, char** errMsg) {
    const std::string command = text;
    if (command.compare(0, 4, "LOAD") == 0) return executeCommand([&] { load(command); }, errMsg);
    return executeCommand<GreetProcessor>(text, errMsg);
}

constexpr VexaAddOn_s kDescription = {VEXA_ADDON_API_VERSION, "DESCRIBED", "Has a description", execute, nullptr};

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s*) {
    isLoaded = false;
    return &kDescription;
}
