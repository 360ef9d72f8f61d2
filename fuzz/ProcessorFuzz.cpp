// Runs a processor on the command after the first bytes of the input; these bytes choose the getters that it calls. The
// host must get a message if and only if processCommand() fails. Every value read must be read back from its text.

#include <algorithm>
#include <string>
#include <type_traits>
#include <utility>

#include "Fuzz.h"
#include "SteppedRanges.h"
#include "vexa/VexaUtil.h"
#include "vexastandin/Host.h"
#include "vexautilutil/MacroCommandProcessorAbstract.h"

namespace vexa::fuzz {
namespace {

constexpr std::size_t kMostSteps = 16;
constexpr char kNameStep = 1;

using vexautilutil::MacroCommandProcessorAbstract;

// A getter never returns from a string without its closing quote. So this appends enough quotes of both kinds that
// every step finds one that closes its string.
std::string withClosingQuotes(std::string command) {
    for (std::size_t i = 0; i < 2 * kMostSteps; ++i) command += "'\"";
    return command;
}

class Processor : public MacroCommandProcessorAbstract {
public:
    explicit Processor(std::string steps) : m_steps(std::move(steps)) {}

    bool processCommand() override {
        return std::all_of(m_steps.begin(), m_steps.end(), [this](char step) { return take(step); });
    }
    bool composeCommandString(std::string&) const override { return false; }

    // The values read, as the class writes them, and the steps that read this text.
    std::string written;
    std::string stepsOfWritten;

private:
    bool take(char step) {
        switch (static_cast<unsigned char>(step) % 8) {
            case 0: return getCommand(m_text);
            case 1: return getNextName(m_text);
            case 2: return note<char>(step, &Processor::getBooleanValue);
            case 3: return note<double>(step, &Processor::getDoubleValue);
            case 4: return note<int32_t>(step, &Processor::getInt32Value);
            case 5: return note<int64_t>(step, &Processor::getInt64Value);
            case 6: return note<toolbox::Set>(step, &Processor::getSetValue);
            default: return getStringValue(m_text, static_cast<unsigned char>(step) > 8);
        }
    }

    template <class Value>
    bool note(char step, bool (MacroCommandProcessorAbstract::*getter)(Value&)) {
        Value value{};
        if (!(this->*getter)(value)) return false;
        if constexpr (std::is_same_v<Value, toolbox::Set>) {
            if (value.isEmpty()) return true;  // its closing bracket stays unread, on purpose
        }
        written += toNameValueAssignment("N", value) + ' ';
        stepsOfWritten += std::string{kNameStep, step};
        return true;
    }

    std::string m_steps;
    std::string m_text;
};

// Makes the processor read a command. The host must get a message if and only if that fails.
bool isAccepted(Processor& processor, const std::string& command) {
    char untouched = 0;
    char* errMsg = &untouched;
    const bool accepted = processor.parseCommandString(command.c_str(), &errMsg);
    require(accepted == (errMsg == &untouched), "a message comes with a failure, and only then", command);
    if (accepted) return true;
    require(errMsg != nullptr, "the host has memory for a message", command);
    VexaUtilStringDealloc(&errMsg);
    return false;
}

void trySteps(const std::string& steps, const std::string& command) {
    Processor processor(steps);
    if (!isAccepted(processor, command)) return;
    Processor again(processor.stepsOfWritten);
    require(isAccepted(again, processor.written), "what was written is read", processor.written);
    require(again.written == processor.written, "what was written is read unchanged", processor.written);
}

}  // namespace
}  // namespace vexa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexa::fuzz;
    const std::string input = textOf(data, size);
    const std::size_t stepsEnd = std::min(input.find('\n'), kMostSteps);
    if (stepsEnd >= input.size() || mayHaveManyMembers(input)) return 0;
    const std::string command(&input[stepsEnd + 1]);  // the host passes C strings, which end at a NUL
    const vexa::standin::Host host;
    trySteps(input.substr(0, stepsEnd), withClosingQuotes(command));
    return 0;
}
