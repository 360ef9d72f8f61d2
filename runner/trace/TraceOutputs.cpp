#include "trace/TraceOutputs.h"

#include <CLI/CLI.hpp>

#include "system/files/OutputTarget.h"
#include "terminal/Console.h"

namespace vexa::runner {
namespace {

using Values = std::vector<std::string>;

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

void TraceOutputs::open(const TraceOptions& options) {
    if (options.events) {
        m_events.emplace(*options.events, options.facts);
        m_tee.add(*m_events);
    }
    if (options.text) {
        m_text.emplace(*options.text);
        m_tee.add(*m_text);
    }
}

standin::ObserverInterface* TraceOutputs::observer() { return m_events || m_text ? &m_tee : nullptr; }

ExitStatus_e TraceOutputs::finish(ExitStatus_e status) {
    const bool areEventsWritten = finished(m_events, static_cast<int>(status), meaningOf(status));
    const bool isTextWritten = finished(m_text, static_cast<int>(status), meaningOf(status));
    return areEventsWritten && isTextWritten ? status : ExitStatus_e::BadUsageOrInput;
}

}  // namespace vexa::runner
