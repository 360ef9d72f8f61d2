#include "commands/run/ManyRuns.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string_view>

#include "coverage/CoverageFile.h"
#include "formats/ResultsFile.h"
#include "session/WatchedRun.h"
#include "session/watch/Death.h"
#include "system/files/LiveFile.h"
#include "system/files/OutputTarget.h"
#include "terminal/Console.h"

namespace vexa::runner {
namespace {

class ManyRuns : public UserWork {
public:
    ManyRuns(const RunOptions& options, const std::vector<std::string>& macroFiles)
        : m_options(options), m_macroFiles(macroFiles), m_runs(macroFiles.size()), m_outputs(options.problems) {}

    // Counts the macro files that were run before, and keeps their results.
    void addEarlier(const CutOffRun& earlier) {
        m_oldResults = OldText_e::Kept;
        m_doneBefore = "; " + std::to_string(earlier.done) + " done before, " + std::to_string(earlier.failed.size()) +
                       " of them failed";
        for (const auto& [file, status] : earlier.failed) note(status, file + ": before: " + meaningOf(status));
    }

    ExitStatus_e run(std::size_t jobs) {
        const AwaitedSignals signals;
        if (m_options.json) m_results = std::make_unique<LiveFile>(*m_options.json, m_oldResults);
        ProcessSetting setting;
        setting.showsWholeStacks = m_options.contract.showsStacks;
        setting.limitTime(m_options.contract.timeout);
        setting.jobs = jobs;
        const std::size_t ended = runInProcesses(signals, m_macroFiles.size(), setting, *this);
        const std::size_t left = m_macroFiles.size() - ended;
        if (left > 0) note(ExitStatus_e::Stopped, std::to_string(left) + " not begun: stopped by Ctrl-C");
        closeResults();
        writeCoverage();
        m_outputs.write(runReport(m_problems, static_cast<ExitStatus_e>(m_status)));
        tell(kProgramName, std::to_string(ended) + " macro files run, " + std::to_string(m_failed) + " failed" +
                               m_doneBefore + m_notes);
        return static_cast<ExitStatus_e>(m_status);
    }

    int run(std::size_t index, ProcessBox& box, NotesInterface& notes) override {
        return static_cast<int>(runMacro(m_runs[index]->options, box, notes));
    }

    NotesInterface* notesOf(std::size_t index, std::function<KeptText()>) override {
        m_runs[index] = std::make_unique<Run>(m_options, m_macroFiles[index]);
        return &m_runs[index]->watched.outputs();
    }

    void end(std::size_t index, const ProcessBox& box, const ProcessOutcome& outcome) override {
        print(outcome.out, stdout);
        print(outcome.err, stderr);
        const ExitStatus_e status = statusOf(index, box, outcome);
        // Before the results, because a resumed run skips the macro files that have results.
        if (merge(m_coverage, m_runs[index]->watched.outputs().coverage())) writeCoverage();
        if (m_results) m_results->append(m_runs[index]->results);
        const std::vector<Problem>& problems = m_runs[index]->watched.outputs().problems();
        m_problems.insert(m_problems.end(), problems.begin(), problems.end());
        m_runs[index].reset();
        if (status == ExitStatus_e::AllWell) return;
        ++m_failed;
        note(status, m_macroFiles[index] + ": " + meaningOf(status));
    }

private:
    // A run, from its start until its outcome is printed.
    struct Run {
        Run(const RunOptions& allOptions, const std::string& macroFile)
            : options(allOptions), watched(options, [this](std::string_view lines) { results += lines; }) {
            options.macroFile = macroFile;
            watched.outputs().keepEndBack();
        }
        RunOptions options;
        std::string results;
        WatchedRun watched;
    };

    // A run that Ctrl-C ended before it could stop its macro counts as stopped.
    ExitStatus_e statusOf(std::size_t index, const ProcessBox& box, const ProcessOutcome& outcome) {
        if (!wasInterrupted(outcome)) return m_runs[index]->watched.judge(box, outcome);
        m_runs[index]->results += endLine(m_macroFiles[index], ExitStatus_e::Stopped);
        return ExitStatus_e::Stopped;
    }

    static void print(const KeptText& printed, FILE* file) {
        std::string text = printed.text;
        if (printed.leftOut > 0) text += "\n(" + std::to_string(printed.leftOut) + " bytes more are left out)\n";
        if (file == stderr) return passOn(text);
        std::fwrite(text.data(), 1, text.size(), file);
    }

    void closeResults() {
        try {
            if (m_results) m_results->close();
        } catch (const OutputError& error) {
            note(ExitStatus_e::BadUsageOrInput, error.what());
        }
    }

    void writeCoverage() {
        if (!m_options.coverage || m_isCoverageLost) return;
        try {
            addToCoverageFile(*m_options.coverage, m_coverage);
        } catch (const OutputError& error) {
            m_isCoverageLost = true;
            note(ExitStatus_e::BadUsageOrInput, error.what());
        }
    }

    void note(ExitStatus_e status, const std::string& text) {
        m_status = std::max(m_status, static_cast<int>(status));
        m_notes += '\n' + text;
    }

    const RunOptions& m_options;
    const std::vector<std::string>& m_macroFiles;
    std::unique_ptr<LiveFile> m_results;
    std::vector<std::unique_ptr<Run>> m_runs;
    Coverage m_coverage;
    bool m_isCoverageLost = false;
    ProblemOutputs m_outputs;
    std::vector<Problem> m_problems;
    OldText_e m_oldResults = OldText_e::Removed;
    std::string m_doneBefore;
    std::size_t m_failed = 0;
    int m_status = 0;
    std::string m_notes;
};

}  // namespace

ExitStatus_e runMacros(const RunOptions& options, const std::vector<std::string>& macroFiles, std::size_t jobs) {
    return ManyRuns(options, macroFiles).run(jobs);
}

ExitStatus_e resumeMacros(const RunOptions& options, const CutOffRun& earlier, std::size_t jobs) {
    ManyRuns runs(options, earlier.left);
    runs.addEarlier(earlier);
    return runs.run(jobs);
}

}  // namespace vexa::runner
