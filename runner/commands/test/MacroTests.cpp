#include "commands/test/MacroTests.h"

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>

#include "commands/test/Budget.h"
#include "commands/test/MacroPaths.h"
#include "coverage/CoverageFile.h"
#include "formats/JunitText.h"
#include "session/watch/Death.h"
#include "system/files/OutputTarget.h"
#include "system/files/RunFiles.h"
#include "system/files/WholeFile.h"
#include "system/files/WholeOutput.h"
#include "terminal/Console.h"
#include "text/LineDifference.h"
#include "text/Printable.h"

namespace vexa::runner {
namespace {

namespace fs = std::filesystem;

struct MacroVerdict {
    bool passed = false;
    std::string reason;  // one line; empty if the macro passed
    std::string lines;   // lines that show the failure
    std::vector<Problem> problems = {};
};

class MacroTests : public UserWork {
public:
    MacroTests(const TestOptions& options, const TestRound* round) : m_options(options), m_round(round) {}

    ExitStatus_e run() {
        if (!prepare()) return ExitStatus_e::BadUsageOrInput;
        const std::size_t ended = m_options.inProcess ? runHere() : runWatched();
        m_isStopped |= ended != m_macros.size();
        if (m_round != nullptr) return m_isStopped ? ExitStatus_e::Stopped : status();
        std::printf("%zu of %zu macros passed\n", m_passed, m_macros.size());
        if (m_options.coverage) addToCoverageFile(*m_options.coverage, m_coverage);
        if (m_junit) m_junit->replace(junitText("vexa-standin test", {}, m_report));
        if (m_problemOutputs) m_problemOutputs->write(problemReport());
        return status();
    }

private:
    ExitStatus_e status() const {
        if (m_isBroken) return ExitStatus_e::BadUsageOrInput;
        if (m_isStopped) return ExitStatus_e::Stopped;
        return m_passed == m_macros.size() ? ExitStatus_e::AllWell : ExitStatus_e::CommandFailed;
    }

    ProblemReport problemReport() const {
        ProblemReport report{"test", m_problems};
        report.exitStatus = static_cast<int>(status());
        report.hasRun = !m_isBroken && !m_isStopped;
        return report;
    }

    bool prepare() {
        try {
            m_macros = macrosOf(m_options.paths);
            findFiles();
            if (!m_options.style) return true;
            auto style = readStyles(*m_options.style);
            if (style) m_style = std::move(*style);
            return style.has_value();
        } catch (const PathError& error) {
            tell(error.what());
            return false;
        }
    }

    // Refuses an output that would replace an input.
    void findFiles() {
        RunFiles files = inputsOf(m_options);
        files.read(m_macros);
        std::set<std::string> expectations;  // a set, because the user may name a macro twice
        for (const std::string& macro : m_macros) {
            for (const char* const extension : kBesideMacro) {
                if (extension == kCalls && !m_options.tellsCalls) continue;
                if (extension == kBudget && !m_options.tellsCosts) continue;
                const std::string expectation = besideOf(macro, extension);
                const bool isNew = expectations.insert(fs::absolute(expectation).lexically_normal()).second;
                if (!isNew) continue;
                m_options.accepts ? files.write(expectation) : files.read(expectation);
            }
        }
        files.write(m_options.junit);
        files.write(m_options.coverage);
        if (m_options.coverage) checkCoverageFile(*m_options.coverage);
        noteOutputs(m_options.problems, files);
        if (m_options.junit) m_junit.emplace(*m_options.junit);
        m_problemOutputs.emplace(m_options.problems);
    }

    std::size_t runWatched() {
        if (m_round != nullptr) return runWatched(m_round->signals);
        const AwaitedSignals signals;
        return runWatched(signals);
    }

    std::size_t runWatched(const AwaitedSignals& signals) {
        ProcessSetting setting;
        setting.jobs = m_options.jobs;
        setting.printed = Printed_e::CaughtAsOne;
        setting.showsWholeStacks = m_options.contract.showsStacks;
        setting.limitTime(m_options.contract.timeout);
        m_transcripts.resize(m_macros.size());
        return runInProcesses(signals, m_macros.size(), setting, *this);
    }

    std::size_t runHere() {
        for (const std::string& macro : m_macros) {
            const auto begin = std::chrono::steady_clock::now();
            const auto box = std::make_unique<ProcessBox>();
            std::optional<CaughtOutput> caught(std::in_place);
            TranscriptText transcript([&] { return caught->take(); });
            const TranscriptEnd_e end = writeTranscript(macro, m_options, m_style, *box, transcript);
            caught.reset();
            merge(m_coverage, transcript.coverage());
            const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin;
            conclude(macro, time.count(), verdictOn(macro, end, transcript));
        }
        return m_macros.size();
    }

    int run(std::size_t index, ProcessBox& box, NotesInterface& notes) override {
        return static_cast<int>(writeTranscript(m_macros[index], m_options, m_style, box, notes));
    }

    NotesInterface* notesOf(std::size_t index, std::function<KeptText()> takePrinted) override {
        m_transcripts[index] = std::make_unique<TranscriptText>(std::move(takePrinted));
        return m_transcripts[index].get();
    }

    void end(std::size_t index, const ProcessBox& box, const ProcessOutcome& outcome) override {
        const auto transcript = std::move(m_transcripts[index]);
        merge(m_coverage, transcript->coverage());
        conclude(m_macros[index], outcome.seconds, verdictOn(m_macros[index], box, outcome, *transcript));
    }

    void conclude(const std::string& macro, double seconds, const MacroVerdict& verdict) {
        if (m_round != nullptr) {
            if (!verdict.passed && m_round->isOutdated(macro)) return;
            m_round->tell(macro, verdict.passed);
            if (verdict.passed) return;
        }
        m_passed += verdict.passed ? 1 : 0;
        addProblems(macro, verdict);
        const std::string reason = verdict.reason.empty() ? "" : ": " + verdict.reason;
        print((verdict.passed ? "passed " : "failed ") + printableLine(macro + reason) + '\n' + verdict.lines);
        std::fflush(stdout);
        const fs::path path(macro);
        m_report.push_back({path.parent_path().string(), path.stem().string(), seconds,
                            verdict.passed ? JunitOutcome_e::Passed : JunitOutcome_e::Failure, "failed", verdict.reason,
                            verdict.lines});
    }

    // A failure without a problem of its own is a problem of the macro.
    void addProblems(const std::string& macro, const MacroVerdict& verdict) {
        std::vector<Problem> problems = verdict.problems;
        if (!verdict.passed && problems.empty()) problems.push_back(macroProblem({macro, 0, ""}, verdict));
        const bool areErrors = m_options.contract.warningsAsErrors.value_or(false);
        for (Problem& problem : problems) {
            if (areErrors) problem.severity = standin::Severity_e::Error;
            m_problems.push_back(std::move(problem));
        }
    }

    static Problem macroProblem(ProblemPlace place, const MacroVerdict& verdict) {
        Problem problem;
        problem.rule = kMacroFailed;
        problem.message = printable(verdict.reason);
        problem.details = printable(verdict.lines);
        problem.place = std::move(place);
        return problem;
    }

    MacroVerdict verdictOn(const std::string& macro, const ProcessBox& box, const ProcessOutcome& outcome,
                           const TranscriptText& transcript) {
        if (outcome.end == End_e::Left && outcome.areNotesWhole) {
            return verdictOn(macro, static_cast<TranscriptEnd_e>(outcome.status), transcript);
        }
        const std::string lines = lastCommand(transcript.text()) + printedLines(outcome.out);
        if (outcome.end == End_e::Left) return {false, "a part of its report was lost", lines};
        if (outcome.end == End_e::TimedOut)
            return {false,
                    "it did not return within its time limit",
                    textOf(lateFinding(box)) + textOf(outcome.stacks),
                    {lateProblem(box, outcome, macro)}};
        if (wasInterrupted(outcome)) {
            m_isStopped = true;
            return {false, "stopped by Ctrl-C", lines};
        }
        return {
            false, "an add-on ended the process", lines + deathText(box, outcome), {deathProblem(box, outcome, macro)}};
    }

    MacroVerdict verdictOn(const std::string& macro, TranscriptEnd_e end, const TranscriptText& transcript) {
        switch (end) {
            case TranscriptEnd_e::Whole: try { return compared(macro, transcript);
                } catch (const OutputError& error) {
                    m_isBroken = true;
                    return {false, error.what(), ""};
                }
            case TranscriptEnd_e::Broken:
                return {false, "the host's contract was broken", transcript.explained(), transcript.problems()};
            case TranscriptEnd_e::CommandHung:
                return {false, "a command did not return", lastCommand(transcript.text()) + transcript.explained(),
                        transcript.problems()};
            case TranscriptEnd_e::OutputLost:
                m_isBroken = true;
                return {false, "the standard output could not be written", transcript.text()};
            case TranscriptEnd_e::NotRun: break;
        }
        m_isBroken = true;
        return {false, "it cannot be run", transcript.text()};
    }

    // Returns the part of the transcript about the last command.
    static std::string lastCommand(const std::string& transcript) {
        const std::size_t begin = transcript.rfind("\n> ");
        return begin == std::string::npos ? transcript : transcript.substr(begin + 1);
    }

    static bool hasNewFinding(const std::string& difference) {
        return difference.find("\n+ ! error: ") != std::string::npos ||
               difference.find("\n+ ! warning: ") != std::string::npos;
    }

    MacroVerdict compared(const std::string& macro, const TranscriptText& told) const {
        MacroVerdict verdict = compared(besideOf(macro, kExpected), told.text(), "results");
        if (hasNewFinding(verdict.lines)) {
            verdict.lines += told.explained();
            const std::vector<Problem>& found = told.problems();
            if (!verdict.problems.empty())
                verdict.problems.insert(verdict.problems.begin(), found.begin(), found.end());
        }
        if (m_options.tellsCalls) add(compared(besideOf(macro, kCalls), told.calls(), "calls"), verdict);
        if (m_options.tellsCosts) add(comparedCosts(besideOf(macro, kBudget), told.costs()), verdict);
        return verdict;
    }

    static void add(const MacroVerdict& other, MacroVerdict& verdict) {
        verdict.passed = verdict.passed && other.passed;
        if (verdict.reason != other.reason) {
            verdict.reason += (verdict.reason.empty() || other.reason.empty() ? "" : "; ") + other.reason;
        }
        verdict.lines += other.lines;
        verdict.problems.insert(verdict.problems.end(), other.problems.begin(), other.problems.end());
    }

    // Compares what a macro did with the file `path`. `what` names it.
    MacroVerdict compared(const std::string& path, const std::string& now, const std::string& what) const {
        const std::optional<std::string> expected = expectation(path);
        if (expected == now) return {true, "", ""};
        if (m_options.accepts) return accept(path, now);
        const std::string difference = lineDifference(expected.value_or(""), now);
        if (!expected) return {false, missing(path), difference};
        return differing(
            path, *expected, now,
            {false, "its " + what + " differ from " + path + "; --accept saves the new " + what, difference});
    }

    // A macro that costs less than its budget passes.
    MacroVerdict comparedCosts(const std::string& path, const std::string& now) const {
        const std::optional<std::string> budget = expectation(path);
        if (budget == now) return {true, "", ""};
        if (m_options.accepts) return accept(path, now);
        if (!budget) return {false, missing(path), lineDifference("", now)};
        const BudgetComparison comparison = compareBudget(path, *budget, now);
        const MacroVerdict verdict{!comparison.isExceeded, comparison.reason + "; --accept saves the new costs",
                                   comparison.lines};
        return verdict.passed ? verdict : differing(path, *budget, now, verdict);
    }

    static std::optional<std::string> expectation(const std::string& path) {
        try {
            return readInput(path);
        } catch (const std::system_error& error) {
            if (error.code() == std::errc::no_such_file_or_directory) return std::nullopt;
            refuseOutput(path, "it cannot be read: " + error.code().message());
        }
    }

    static std::string missing(const std::string& path) { return "there is no " + path + "; --accept writes it"; }

    static MacroVerdict accept(const std::string& path, const std::string& now) {
        WholeOutput(path).replace(now);
        return {true, "accepted", ""};
    }

    static MacroVerdict differing(const std::string& path, const std::string& expected, const std::string& now,
                                  MacroVerdict verdict) {
        verdict.problems.push_back(macroProblem({path, firstDifference(expected, now), ""}, verdict));
        return verdict;
    }

    const TestOptions& m_options;
    const TestRound* m_round;
    std::vector<std::string> m_macros;
    std::vector<StyleSetting> m_style;
    std::vector<std::unique_ptr<TranscriptText>> m_transcripts;
    std::size_t m_passed = 0;
    Coverage m_coverage;
    bool m_isBroken = false;  // true if something could not be read, run or written
    bool m_isStopped = false;
    std::vector<JunitCase> m_report;
    std::optional<WholeOutput> m_junit;
    std::vector<Problem> m_problems;
    std::optional<ProblemOutputs> m_problemOutputs;
};

}  // namespace

ExitStatus_e testMacros(const TestOptions& options, const TestRound* round) { return MacroTests(options, round).run(); }

}  // namespace vexa::runner
