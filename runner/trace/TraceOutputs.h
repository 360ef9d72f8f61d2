#pragma once

#include <optional>
#include <string>

#include "options/Command.h"
#include "trace/EventTrace.h"
#include "trace/ObserverTee.h"
#include "trace/TextTrace.h"

namespace vexa::runner {

/// The traces that a run is asked for.
struct TraceOptions {
    std::optional<std::string> events;  ///< where the trace events go
    std::optional<std::string> text;    ///< where the trace as text goes
    RunFacts facts;                     ///< all but the options given are to be added
};

/// Adds `--trace` and `--trace-text`. The facts get the program, and all options that \p command is given.
void addTraceOptions(Command& command, TraceOptions& options);

/// The traces of a run.
class TraceOutputs {
public:
    /// Opens what is asked for.
    /// \throws OutputError when a trace cannot be written.
    void open(const TraceOptions& options);
    /// Who is to observe the run; null when no trace is asked for.
    standin::ObserverInterface* observer();
    /// Ends the traces; to be called once, when all add-ons are unloaded.
    /// \return \p status, or that of bad output when a trace could not be written, which is told.
    ExitStatus_e finish(ExitStatus_e status);

private:
    std::optional<EventTrace> m_events;
    std::optional<TextTrace> m_text;
    ObserverTee m_tee;
};

}  // namespace vexa::runner
