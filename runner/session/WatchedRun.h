#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "session/MacroRun.h"
#include "session/RunOutputs.h"
#include "session/watch/Processes.h"

namespace vexa::runner {

/// A run of a macro file in a process of its own, as the process that watches it sees it: it keeps what the run tells,
/// and decides what became of it.
class WatchedRun {
public:
    /// \param options must live longer.
    /// \param results gets each line of the results.
    WatchedRun(const RunOptions& options, std::string macroFile, std::function<void(std::string_view)> results)
        : m_options(options), m_macroFile(std::move(macroFile)), m_outputs(results), m_results(std::move(results)) {}

    /// Makes sure that the recording and the journal can be written.
    /// \throws OutputError
    void open() { m_outputs.open(m_options.record, m_options.journal); }
    RunOutputs& outputs() { return m_outputs; }

    /// Decides on the exit status of the run, and prints what went wrong. Writes what was recorded so far, and the end
    /// of the results.
    ExitStatus_e judge(const ProcessBox& box, const ProcessOutcome& outcome);

private:
    ExitStatus_e conclude(const ProcessBox& box, ExitStatus_e status, const std::string& error);

    const RunOptions& m_options;
    std::string m_macroFile;
    RunOutputs m_outputs;
    std::function<void(std::string_view)> m_results;
};

/// How a run of a macro file is watched.
ProcessSetting settingOf(const RunOptions& options);

/// Runs a macro file in a process of its own, or in this one under a debugger and with SessionOptions::inProcess.
/// \throws OutputError if an output cannot be written.
ExitStatus_e runOneMacro(const RunOptions& options);

}  // namespace vexa::runner
