#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "vexa/VexaUtil.h"
#include "vexautilutil/MacroCommandProcessorAbstract.h"

namespace vexa::vexautilutil {

/// A processor whose hooks do what a test sets.
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

/// The result of a command for the host: nothing on success, the error text on failure.
using Outcome = std::optional<std::string>;

inline Outcome outcomeOf(MacroCommandProcessorAbstract& processor, const char* command) {
    char* errMsg = nullptr;
    if (processor.parseCommandString(command, &errMsg)) return std::nullopt;
    const std::string message = errMsg == nullptr ? "no host string" : errMsg;
    VexaUtilStringDealloc(&errMsg);
    return message;
}

/// Does the same for a processor whose processCommand() calls `process`.
inline Outcome outcomeOf(const char* command, ScriptedProcessor::Process process) {
    ScriptedProcessor processor(std::move(process));
    return outcomeOf(processor, command);
}

}  // namespace vexa::vexautilutil
