#include "trace/TraceOutputs.h"

#include "system/files/MappedTail.h"
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
    command.add(option({"--trace"}, "FILE", "Write a trace of all calls as JSON events; 'report' makes a page of it",
                       &options.events));
    command.add(
        option({"--trace-text"}, "FILE", "Write a trace as text, one line per call, for comparisons", &options.text));
    command.given = &options.facts.options;
    options.facts.tool = std::string(kProgramName) + ' ' + VEXA_STANDIN_VERSION;
}

void cutTraces(const TraceOptions& options) {
    for (const auto& file : {options.events, options.text}) {
        if (file && !isStream(*file)) cutAfterText(*file);
    }
}

void addToTraces(const TraceOptions& options, const Crash& crash) {
    if (options.events && !isStream(*options.events)) appendCrash(*options.events, crash);
}

void TraceOutputs::open(const TraceOptions& options, Append_e how) {
    if (options.events) m_traces.push_back(&m_events.emplace(*options.events, options.facts, how));
    if (options.text) m_traces.push_back(&m_text.emplace(*options.text, how));
}

standin::ObserverInterface* TraceOutputs::observer() { return m_traces.empty() ? nullptr : this; }

ExitStatus_e TraceOutputs::finish(ExitStatus_e status, const std::string& outcome) {
    const bool areEventsWritten = finished(m_events, static_cast<int>(status), outcome);
    const bool isTextWritten = finished(m_text, static_cast<int>(status), outcome);
    return areEventsWritten && isTextWritten ? status : ExitStatus_e::BadUsageOrInput;
}

}  // namespace vexa::runner
