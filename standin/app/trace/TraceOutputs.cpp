#include "trace/TraceOutputs.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <system_error>

#include "Console.h"
#include "OutputTarget.h"

namespace vexa::runner {
namespace {

namespace fs = std::filesystem;
using Values = std::vector<std::string>;

std::string outcomeOf(ExitStatus_e status) {
    switch (status) {
        case ExitStatus_e::AllWell: return "all went well";
        case ExitStatus_e::CommandFailed: return "a command failed";
        case ExitStatus_e::BadUsageOrInput: return "wrong input, or a file could not be read or written";
        case ExitStatus_e::ContractViolated: return "an add-on broke the host's contract";
        case ExitStatus_e::CommandHung: return "a command did not return";
        case ExitStatus_e::Stopped: return "stopped by Ctrl-C";
    }
    return "";
}

// An output may not be there yet; then its name is all there is to compare.
bool isSameFile(const std::string& output, const std::string& other) {
    std::error_code error;
    if (fs::equivalent(output, other, error)) return true;
    const fs::path path = fs::weakly_canonical(fs::absolute(other, error), error);
    return !error && path == outputTarget(output);
}

void refuseTaken(const std::string& trace, const std::vector<std::string>& taken) {
    for (const std::string& file : taken) {
        if (isSameFile(trace, file)) refuseOutput(trace, "the run uses it as " + file + ", too");
    }
}

template <class Trace, class... Arguments>
bool finished(std::optional<Trace>& trace, const Arguments&... arguments) {
    try {
        if (trace) trace->finish(arguments...);
        return true;
    } catch (const OutputError& error) {
        tell(error.what());
        return false;
    }
}

}  // namespace

void addTraceOptions(CLI::App& command, TraceOptions& options) {
    command.add_option("--trace", options.events, "Write what happens as trace events; 'report' makes a page of them")
        ->type_name("FILE");
    command.add_option("--trace-text", options.text, "Write what happens as text to compare, a line a call")
        ->type_name("FILE");
    command.parse_complete_callback([&command, &options] {
        options.facts.tool = std::string(kProgramName) + ' ' + VEXA_STANDIN_VERSION;
        for (const CLI::Option* option : command.get_options()) {
            if (option->count() == 0 || option->get_positional()) continue;
            const bool isFlag = option->get_expected_max() == 0;
            options.facts.options.emplace_back(option->get_name(), isFlag ? Values() : option->results());
        }
    });
}

void TraceOutputs::open(const TraceOptions& options, const std::vector<std::string>& taken) {
    if (options.events) {
        refuseTaken(*options.events, taken);
        m_events.emplace(*options.events, options.facts);
        m_tee.add(*m_events);
    }
    if (options.text) {
        refuseTaken(*options.text, taken);
        if (options.events) refuseTaken(*options.text, {*options.events});
        m_text.emplace(*options.text);
        m_tee.add(*m_text);
    }
}

standin::ObserverInterface* TraceOutputs::observer() { return m_events || m_text ? &m_tee : nullptr; }

ExitStatus_e TraceOutputs::finish(ExitStatus_e status) {
    const bool areEventsWritten = finished(m_events, static_cast<int>(status), outcomeOf(status));
    const bool isTextWritten = finished(m_text, static_cast<int>(status), outcomeOf(status));
    return areEventsWritten && isTextWritten ? status : ExitStatus_e::BadUsageOrInput;
}

}  // namespace vexa::runner
