#include "trace/TraceOutputs.h"

#include "system/files/OutputTarget.h"
#include "terminal/Console.h"

namespace vexa::runner {
namespace {

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

void addTraceOptions(Command& command, TraceOptions& options) {
    command.add(option({"--trace"}, "FILE", "Write what happens as trace events; 'report' makes a page of them",
                       &options.events));
    command.add(
        option({"--trace-text"}, "FILE", "Write what happens as text to compare, a line a call", &options.text));
    command.given = &options.facts.options;
    options.facts.tool = std::string(kProgramName) + ' ' + VEXA_STANDIN_VERSION;
}

void TraceOutputs::open(const TraceOptions& options) {
    if (options.events) m_traces.push_back(&m_events.emplace(*options.events, options.facts));
    if (options.text) m_traces.push_back(&m_text.emplace(*options.text));
}

standin::ObserverInterface* TraceOutputs::observer() { return m_traces.empty() ? nullptr : this; }

ExitStatus_e TraceOutputs::finish(ExitStatus_e status, const std::string& outcome) {
    const bool areEventsWritten = finished(m_events, static_cast<int>(status), outcome);
    const bool isTextWritten = finished(m_text, static_cast<int>(status), outcome);
    return areEventsWritten && isTextWritten ? status : ExitStatus_e::BadUsageOrInput;
}

}  // namespace vexa::runner
