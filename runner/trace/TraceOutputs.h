#pragma once

#include <optional>
#include <string>
#include <vector>

#include "options/Command.h"
#include "trace/CrashEvent.h"
#include "trace/EventTrace.h"
#include "trace/TextTrace.h"

namespace vexa::runner {

/// The traces to write.
struct TraceOptions {
    std::optional<std::string> events;  ///< the file for the trace events
    std::optional<std::string> text;    ///< the file for the trace as text
    RunFacts facts;                     ///< addTraceOptions() sets the tool and the options
};

/// Adds `--trace` and `--trace-text`. The facts get the program and all options that the user gives to \p command.
void addTraceOptions(Command& command, TraceOptions& options);

/// Gives the traces that a killed process has written the length of their text.
void cutTraces(const TraceOptions& options);

/// Adds \p crash to the trace events that a process has written, after cutTraces().
void addToTraces(const TraceOptions& options, const Crash& crash);

/// The traces of a run: an observer that passes every event on to each of them.
///
/// Threads: as an observer.
class TraceOutputs : standin::ObserverInterface {
public:
    /// Opens the files. With Append_e::ByMapping, the process that watches this one must call cutTraces() after the
    /// end of this process.
    /// \throws OutputError if a trace cannot be written.
    void open(const TraceOptions& options, Append_e how = Append_e::BySystemCall);
    /// Also passes the events to \p observer, which must live as long as events come.
    void add(standin::ObserverInterface& observer) { m_traces.push_back(&observer); }
    /// The observer of the run; null if there is nothing to pass events to.
    standin::ObserverInterface* observer();
    /// Adds how a process of the run has ended.
    void crashed(const Crash& crash) {
        if (m_events) m_events->crashed(crash);
    }
    /// Ends the traces. Call it once, after all add-ons are unloaded. Reports a trace that could not be written.
    /// \return \p status; ExitStatus_e::BadUsageOrInput if a trace could not be written.
    ExitStatus_e finish(ExitStatus_e status) { return finish(status, meaningOf(status)); }
    /// The same for a status that is not the runner's own. \p outcome says what it means.
    ExitStatus_e finish(ExitStatus_e status, const std::string& outcome);

private:
    void entryBegan(const standin::EntryEvent& entry) override { pass(&ObserverInterface::entryBegan, entry); }
    void entryEnded(const standin::EntryEvent& entry) override { pass(&ObserverInterface::entryEnded, entry); }
    void callBegan(const standin::CallEvent& call) override { pass(&ObserverInterface::callBegan, call); }
    void callEnded(const standin::CallEvent& call) override { pass(&ObserverInterface::callEnded, call); }
    void findingMade(const standin::Finding& finding) override { pass(&ObserverInterface::findingMade, finding); }
    void statusChanged(const standin::StatusLine& line) override { pass(&ObserverInterface::statusChanged, line); }

    template <class Event>
    void pass(void (ObserverInterface::*happened)(const Event&), const Event& event) {
        for (ObserverInterface* const trace : m_traces) (trace->*happened)(event);
    }

    std::optional<EventTrace> m_events;
    std::optional<TextTrace> m_text;
    std::vector<ObserverInterface*> m_traces;  // those to write
};

}  // namespace vexa::runner
