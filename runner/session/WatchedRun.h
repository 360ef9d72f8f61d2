#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "session/MacroRun.h"
#include "session/RunOutputs.h"
#include "session/watch/Processes.h"

namespace vexa::runner {

/// Watches a run of a macro file in another process. It keeps the outputs of the run and decides on the exit status.
class WatchedRun {
public:
    /// \param options must live longer.
    /// \param results gets each line of the results.
    WatchedRun(const RunOptions& options, std::function<void(std::string_view)> results)
        : m_options(options), m_outputs(std::move(results)) {}

    RunOutputs& outputs() { return m_outputs; }

    /// Decides on the exit status of the run, and prints errors. Writes the recording and the journal up to the end of
    /// the run, and the last line of the results.
    ExitStatus_e judge(const ProcessBox& box, const ProcessOutcome& outcome);

private:
    ExitStatus_e conclude(const ProcessBox& box, const ProcessOutcome& outcome, ExitStatus_e status,
                          const std::string& error, const std::string& debug = {});
    void tellProblem(Problem problem, const std::string& debug);

    const RunOptions& m_options;
    RunOutputs m_outputs;
};

/// Returns the report on runs with these problems, of which \p status is the exit status.
ProblemReport runReport(const std::vector<Problem>& problems, ExitStatus_e status);

/// Runs a macro file in a new process. Under a debugger, and with SessionOptions::inProcess, runs it in this process.
/// \throws OutputError if an output cannot be written.
ExitStatus_e runOneMacro(const RunOptions& options);

}  // namespace vexa::runner
