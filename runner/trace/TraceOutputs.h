#pragma once

#include <optional>
#include <string>

#include "options/Command.h"
#include "trace/EventTrace.h"
#include "trace/ObserverTee.h"
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

/// The traces of a run.
class TraceOutputs {
public:
    /// Opens the files.
    /// \throws OutputError if a trace cannot be written.
    void open(const TraceOptions& options);
    /// The observer of the run; null if there is no trace to write.
    standin::ObserverInterface* observer();
    /// Ends the traces. Call it once, after all add-ons are unloaded. Reports a trace that could not be written.
    /// \return \p status; ExitStatus_e::BadUsageOrInput if a trace could not be written.
    ExitStatus_e finish(ExitStatus_e status);

private:
    std::optional<EventTrace> m_events;
    std::optional<TextTrace> m_text;
    ObserverTee m_tee;
};

}  // namespace vexa::runner
