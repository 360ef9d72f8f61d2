#include "many/ManyRuns.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>

#include "Console.h"
#include "Descriptor.h"
#include "OutputTarget.h"
#include "ResultsFile.h"
#include "many/Processes.h"

namespace vexa::runner {
namespace {

std::string outcomeText(const ProcessOutcome& outcome) {
    if (outcome.signal != 0) return std::string("ended by signal: ") + strsignal(outcome.signal);
    const std::string meaning = meaningOf(static_cast<ExitStatus_e>(outcome.status));
    return meaning.empty() ? "exit status " + std::to_string(outcome.status) : meaning;  // an add-on may end it by any
}

class ManyRuns {
public:
    ManyRuns(const RunOptions& options, const std::vector<std::string>& macroFiles)
        : m_options(options), m_macroFiles(macroFiles) {}

    ExitStatus_e run(std::size_t jobs) {
        if (!openResults()) return ExitStatus_e::BadUsageOrInput;
        const auto runOne = [this](std::size_t index, ProcessFiles& files) { return runMacroFile(index, files); };
        const auto endOne = [this](std::size_t index, const ProcessOutcome& outcome) { conclude(index, outcome); };
        const std::size_t ended = runInProcesses(m_macroFiles.size(), jobs, {runOne, endOne});
        const std::size_t left = m_macroFiles.size() - ended;
        if (left > 0) note(ExitStatus_e::Stopped, std::to_string(left) + " not begun: stopped by Ctrl-C");
        closeResults();
        tell(kProgramName,
             std::to_string(ended) + " macro files run, " + std::to_string(m_failed) + " failed" + m_notes);
        return static_cast<ExitStatus_e>(m_status);
    }

private:
    bool openResults() {
        try {
            std::vector<std::string> taken = m_options.addOns;
            taken.insert(taken.end(), m_macroFiles.begin(), m_macroFiles.end());
            if (m_options.style) taken.push_back(*m_options.style);
            if (m_options.json) m_results = openResultsFile(*m_options.json, taken);
            return true;
        } catch (const OutputError& error) {
            tell(error.what());
            return false;
        }
    }

    void closeResults() {
        try {
            if (m_results) m_results->close();
        } catch (const OutputError& error) {
            note(ExitStatus_e::BadUsageOrInput, error.what());
        }
    }

    int runMacroFile(std::size_t index, ProcessFiles& files) const {
        RunOptions options = m_options;
        options.macroFile = m_macroFiles[index];
        if (options.json) options.jsonDescriptor = files.notes.descriptor();
        return static_cast<int>(runMacro(options));
    }

    void conclude(std::size_t index, const ProcessOutcome& outcome) {
        std::fwrite(outcome.out.data(), 1, outcome.out.size(), stdout);
        tellLines(outcome.err);
        if (m_results) m_results->append(outcome.notes);
        if (outcome.status == 0) return;
        ++m_failed;
        note(outcome.status, m_macroFiles[index] + ": " + outcomeText(outcome));
    }

    void note(ExitStatus_e status, const std::string& text) { note(static_cast<int>(status), text); }
    void note(int status, const std::string& text) {
        m_status = std::max(m_status, status);
        m_notes += '\n' + text;
    }

    const RunOptions& m_options;
    const std::vector<std::string>& m_macroFiles;
    std::unique_ptr<LiveFile> m_results;
    std::size_t m_failed = 0;
    int m_status = 0;
    std::string m_notes;
};

}  // namespace

ExitStatus_e runMacros(const RunOptions& options, const std::vector<std::string>& macroFiles, std::size_t jobs) {
    return ManyRuns(options, macroFiles).run(jobs);
}

}  // namespace vexa::runner
