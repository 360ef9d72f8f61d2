#include "commands/Commands.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "commands/test/Transcript.h"
#include "coverage/CoverageFile.h"
#include "formats/JunitText.h"
#include "options/CommonOptions.h"
#include "session/ProblemOutputs.h"
#include "session/ProjectSettings.h"
#include "session/Session.h"
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

constexpr const char* kTestFooter = R"(NAME.expected has the expected results of NAME.macro; --accept writes it:
  > STATS MEAN ZONES = '1-3'        a command of the macro
    mean 5.9                        what was printed
  ! dialog: no such zone            a message, a dialog, or a broken rule
  + STATS MEAN ZONES = '1-3'        what was recorded
With --calls, NAME.calls has the expected calls of the host. All commands run,
even after one has failed. Each macro runs in its own process, in the current
folder.

Example:
  vexa-standin test tests/macros --addon ./libstats.so

Exit status:
  0    all results are as expected, or --accept saved them
  1    a macro has other results, or with --strict an add-on broke the contract
  2    wrong usage or input; a file could not be read or written
  130  stopped by Ctrl-C)";

constexpr const char* kMacro = ".macro";
constexpr const char* kExpected = ".expected";
constexpr const char* kCalls = ".calls";

struct TestOptions : TranscriptOptions {
    std::vector<std::string> paths;    // macros, and folders of macros
    std::optional<std::string> junit;  // the file for the JUnit report
    ProblemOptions problems;           // where the problems for build servers go
    std::size_t jobs = 1;              // how many macros run at a time
    bool accepts = false;              // save the current results as the expected results
};

// Reports a path that is neither a macro nor a folder of macros. The message is one line.
struct PathError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Returns the macros in a folder, sorted by name. Refuses a file to compare with that has no macro, because it would
// never be compared.
std::vector<std::string> macrosIn(const fs::path& folder) {
    std::vector<std::string> macros;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
        const fs::path& path = entry.path();
        if (path.extension() == kMacro) macros.push_back(path.string());
        std::error_code isUnknown;
        const bool isKept = path.extension() == kExpected || path.extension() == kCalls;
        if (isKept && !fs::exists(fs::path(path).replace_extension(kMacro), isUnknown)) {
            throw PathError(path.string() + ": there is no macro " + path.stem().string() + kMacro + " in this folder");
        }
    }
    if (error) throw PathError(folder.string() + ": cannot be read: " + error.message());
    if (macros.empty()) throw PathError(folder.string() + ": it has no macro NAME" + kMacro);
    std::sort(macros.begin(), macros.end());
    return macros;
}

std::vector<std::string> macrosOf(const std::vector<std::string>& paths) {
    std::vector<std::string> macros;
    for (const std::string& path : paths) {
        std::error_code error;
        const fs::file_status status = fs::status(path, error);
        const bool isOfNoFile = error && status.type() != fs::file_type::not_found;
        if (isOfNoFile) throw PathError(path + ": cannot be read: " + error.message());
        if (fs::is_directory(status)) {
            const std::vector<std::string> found = macrosIn(path);
            macros.insert(macros.end(), found.begin(), found.end());
        } else if (fs::path(path).extension() != kMacro) {
            throw PathError(path + ": expected a folder, or a macro NAME" + kMacro);
        } else {
            macros.push_back(path);
        }
    }
    return macros;
}

// Returns the file beside a macro.
std::string besideOf(const std::string& macro, const char* extension) {
    return fs::path(macro).replace_extension(extension).string();
}

struct MacroVerdict {
    bool passed = false;
    std::string reason;  // one line; empty if the macro passed
    std::string lines;   // lines that show the failure
    std::vector<Problem> problems = {};
};

// Runs each macro in its own process, compares the results of NAME.macro with NAME.expected in the same folder, and
// prints the outcome.
class MacroTests : public UserWork {
public:
    explicit MacroTests(const TestOptions& options) : m_options(options) {}

    ExitStatus_e run() {
        if (!prepare()) return ExitStatus_e::BadUsageOrInput;
        const std::size_t ended = m_options.inProcess ? runHere() : runWatched();
        std::printf("%zu of %zu macros passed\n", m_passed, m_macros.size());
        if (m_options.coverage) addToCoverageFile(*m_options.coverage, m_coverage);
        if (m_junit) m_junit->replace(junitText("vexa-standin test", {}, m_report));
        m_isStopped |= ended != m_macros.size();
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
            for (const char* const extension : {kExpected, kCalls}) {
                if (extension == kCalls && !m_options.tellsCalls) continue;
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
        const AwaitedSignals signals;
        ProcessSetting setting;
        setting.jobs = m_options.jobs;
        setting.printed = Printed_e::CaughtAsOne;
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
                    textOf(lateFinding(box)),
                    {problemOf(lateFinding(box), macro)}};
        if (wasInterrupted(outcome)) {
            m_isStopped = true;
            return {false, "stopped by Ctrl-C", lines};
        }
        return {false,
                "an add-on ended the process",
                lines + deathText(box, outcome) + '\n',
                {deathProblem(box, outcome, macro)}};
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
        std::optional<std::string> expected;
        try {
            expected = readInput(path);
        } catch (const std::system_error& error) {
            if (error.code() != std::errc::no_such_file_or_directory) {
                refuseOutput(path, "it cannot be read: " + error.code().message());
            }
        }
        if (expected == now) return {true, "", ""};
        if (m_options.accepts) {
            WholeOutput(path).replace(now);
            return {true, "accepted", ""};
        }
        const std::string difference = lineDifference(expected.value_or(""), now);
        if (!expected) return {false, "there is no " + path + "; --accept writes it", difference};
        MacroVerdict differs{false, "its " + what + " differ from " + path + "; --accept saves the new " + what,
                             difference};
        differs.problems.push_back(macroProblem({path, firstDifference(*expected, now), ""}, differs));
        return differs;
    }

    const TestOptions& m_options;
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

Command testCommand() {
    const auto options = std::make_shared<TestOptions>();
    Command command{"test", "Compare the results of macros with the expected results", kTestFooter};
    command.add(argument("MACRO", "Macro files NAME.macro, or folders of them", &options->paths).require());
    command.add(addOnOption(options->addOns).require());
    command.add(flag({"--accept"}, "Save the current results as the expected results", &options->accepts));
    command.add(flag({"--calls"}, "Also compare the calls of the host with NAME.calls", &options->tellsCalls));
    command.add(jobsOption(options->jobs, "macros"));
    command.add(styleOption(options->style));
    addHostOption(command, options->contract);
    command.add(option({"--junit"}, "FILE", "Write a JUnit XML report", &options->junit));
    command.add(coverageOption(options->coverage));
    addProblemOptions(command, options->problems);
    addStrictOptions(command, options->contract);
    addSuppressOptions(command, options->contract);
    addStacksOption(command, options->contract);
    addTimeoutOption(command, options->contract);
    command.add(flag({"--in-process"}, "Run in this process, for a debugger", &options->inProcess));
    command.add(flag({"--batch"}, "Run in batch mode, that is, without a user", &options->batch));
    command.run = [options] {
        const bool isReady = addProjectFile(options->contract) && readHostFacts(*options);
        return isReady ? MacroTests(*options).run() : ExitStatus_e::BadUsageOrInput;
    };
    return command;
}

}  // namespace vexa::runner
