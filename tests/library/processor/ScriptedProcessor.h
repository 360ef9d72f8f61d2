#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "vexa/VexaUtil.h"
#include "vexautilutil/MacroCommandProcessorAbstract.h"

namespace vexa::vexautilutil {

/// A processor whose hooks are given from outside.
class ScriptedProcessor : public MacroCommandProcessorAbstract {
public:
    using Process = std::function<bool(MacroCommandProcessorAbstract&)>;

    explicit ScriptedProcessor(Process process) : m_process(std::move(process)) {}

    bool processCommand() override { return m_process(*this); }
    bool composeCommandString(std::string& command) const override {
        ++composed;
        command += "COMPOSED";
        return composes;
    }

    bool composes = true;
    mutable int composed = 0;

private:
    Process m_process;
};

/// What the host gets for one command: nothing on success, else the error text.
using Outcome = std::optional<std::string>;

inline Outcome outcomeOf(MacroCommandProcessorAbstract& processor, const char* command) {
    char* errMsg = nullptr;
    if (processor.parseCommandString(command, &errMsg)) return std::nullopt;
    const std::string message = errMsg == nullptr ? "no host string" : errMsg;
    VexaUtilStringDealloc(&errMsg);
    return message;
}

/// The same, for a processor that does what `process` says.
inline Outcome outcomeOf(const char* command, ScriptedProcessor::Process process) {
    ScriptedProcessor processor(std::move(process));
    return outcomeOf(processor, command);
}

}  // namespace vexa::vexautilutil
