#include "commands/check/CheckRun.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <list>
#include <random>
#include <set>
#include <system_error>
#include <utility>

#include "commands/check/CheckReport.h"
#include "commands/check/TestRun.h"
#include "commands/check/ToldCauses.h"
#include "commands/check/tests/Tests.h"
#include "commands/check/trial/Trial.h"
#include "coverage/CoverageCollector.h"
#include "coverage/CoverageFile.h"
#include "formats/DescriptionFile.h"
#include "formats/MacroFile.h"
#include "session/CoverageNotes.h"
#include "session/DebugCall.h"
#include "session/ProjectSettings.h"
#include "system/files/OutputTarget.h"
#include "system/files/RunFiles.h"
#include "system/files/WholeOutput.h"
#include "terminal/Console.h"
#include "text/Printable.h"
#include "text/Seconds.h"
#include "text/ShellWord.h"

namespace vexa::runner {
namespace {

using std::chrono::milliseconds;
using Seconds = std::chrono::duration<double>;

std::uint64_t newSeed() {
    std::random_device device;
    return device();  // a short number, because users type it
}

std::string indented(const std::string& lines) {
    std::string text = "      ";
    for (const char c : lines) text += c == '\n' ? "\n      " : std::string(1, c);
    return text;
}

// Returns the names of the commands and options of `steps`. The tests damage commands, and names that a test made up
// are of no interest.
Coverage namesIn(const std::vector<MacroCommand>& steps) {
    CoverageCollector collector({});
    for (const MacroCommand& step : steps) collector.enter("command", step.addOnId, step.text, 1);
    return collector.takeNews();
}

class Check {
public:
    explicit Check(const CheckOptions& options) : m_options(options) { m_subject.options = options.session; }

    ExitStatus_e execute() {
        if (!prepare()) return ExitStatus_e::BadUsageOrInput;
        configure();
        print("checking " + printableLine(m_options.addOn) + ", level " + std::to_string(m_options.level) + ", seed " +
              std::to_string(m_subject.seed) + '\n');
        loadFirst();
        if (!readMacros()) return ExitStatus_e::BadUsageOrInput;
        for (const CheckTest& test : checkTests()) {
            if (&test != m_loadTest && isChosen(test)) add(whyNot(test), test);
        }
        return conclude();
    }

private:
    using ReportText = std::string (*)(const CheckReport& report);

    bool prepare() {
        if (!addProjectFile(session().contract) || !readHostFacts(session()) || !isThere()) return false;
        session().addOns.insert(session().addOns.begin(), m_options.addOn);
        findDescription();
        findReports();
        return readStyle() && readDescribed();
    }

    SessionOptions& session() { return m_subject.options; }

    bool isThere() const {
        std::error_code ignored;
        const std::filesystem::file_status status = std::filesystem::status(m_options.addOn, ignored);
        if (std::filesystem::exists(status) && !std::filesystem::is_directory(status)) return true;
        tell(m_options.addOn, std::filesystem::exists(status) ? "it is a folder, not an add-on" : "no such file");
        return false;
    }

    void findDescription() {
        const std::string beside = descriptionBeside(m_options.addOn);
        std::error_code ignored;
        const bool isBeside = std::filesystem::exists(beside, ignored);
        m_subject.descriptionFile = m_options.description.value_or(isBeside ? beside : "");
    }

    bool readDescribed() {
        if (m_subject.descriptionFile.empty()) return true;
        m_subject.description = readDescription(m_subject.descriptionFile);
        return m_subject.description.has_value();
    }

    // Called before the tests, so that a report that cannot be written stops the check at once.
    void findReports() {
        m_files = inputsOf(session());
        m_files.read(m_options.macros);
        if (!m_subject.descriptionFile.empty()) m_files.read({m_subject.descriptionFile});
        for (const auto& file : {m_options.json, m_options.junit}) m_files.write(file);
        m_files.write(m_options.coverage);
        if (m_options.coverage) checkCoverageFile(*m_options.coverage);
        noteOutputs(m_options.problems, m_files);
        if (m_options.json) m_reports.emplace_back(*m_options.json, jsonText);
        if (m_options.junit) m_reports.emplace_back(*m_options.junit, checkJunitText);
        m_problems.emplace(m_options.problems);
    }

    bool readStyle() {
        if (!session().style) return true;
        auto style = readStyles(*session().style);
        if (style) m_subject.style = std::move(*style);
        return style.has_value();
    }

    void configure() {
        constexpr Seconds kTimeout(10);
        m_subject.seed = m_options.seed.value_or(newSeed());
        m_subject.time = std::chrono::ceil<milliseconds>(Seconds(m_options.time));
        m_setting.inProcess = session().inProcess;
        m_setting.showsWholeStacks = session().contract.showsStacks;
        m_setting.timeout = std::chrono::ceil<milliseconds>(session().contract.timeout.value_or(kTimeout));
        if (m_options.coverage) {
            m_setting.coverage = &m_coverage;
            m_subject.coverage = coverageSettingOf(session().contract);
            m_subject.coverage->isStrict = true;  // the tests play recordings back
            m_subject.coverage->hasTimeLimit = true;
        }
        m_report.addOn = m_options.addOn;
        m_report.seed = m_subject.seed;
        m_report.level = m_options.level;
        m_report.warningsAsErrors = session().contract.warningsAsErrors.value_or(false);
    }

    // The test "load" reports the ids of the add-ons, because this process loads no add-on.
    void loadFirst() {
        TestResult result = runTest(*m_loadTest, m_subject, m_setting);
        m_addOnIds = {result.addOnIds.begin(), result.addOnIds.end()};
        add(std::move(result));
    }

    bool readMacros() {
        if (m_addOnIds.empty()) return true;
        bool isReadable = true;
        for (const std::string& path : m_options.macros) {
            const MacroFile macro = readMacroFile(path, m_addOnIds);
            for (const std::string& problem : macro.problems) tell(problem);
            isReadable &= macro.problems.empty();
            m_subject.steps.insert(m_subject.steps.end(), macro.commands.begin(), macro.commands.end());
        }
        if (m_subject.coverage) m_subject.coverage->known = namesIn(m_subject.steps);
        return isReadable;
    }

    bool isChosen(const CheckTest& test) const {
        const std::vector<std::string>& only = m_options.only;
        const bool isPossible = test.needs != Needs_e::Description || m_subject.description;
        if (only.empty()) return test.level <= m_options.level && isPossible;
        return std::find(only.begin(), only.end(), test.name) != only.end();
    }

    // Returns the reason why a test is skipped; empty if it runs.
    std::string whyNot(const CheckTest& test) const {
        if (test.needs == Needs_e::File) return "";
        if (m_addOnIds.empty()) return "the add-on cannot be loaded";
        if (test.needs == Needs_e::Description) {
            return m_subject.description ? "" : "there is no " + descriptionBeside(m_options.addOn);
        }
        if (test.needs == Needs_e::Loading || !m_subject.steps.empty()) return "";
        return m_options.macros.empty() ? "no macro was given" : "the macros have no command";
    }

    void add(const std::string& whySkipped, const CheckTest& test) {
        if (whySkipped.empty()) return add(runTest(test, m_subject, m_setting));
        TestResult skipped;
        skipped.test = &test;
        skipped.verdict = {Outcome_e::Skipped, whySkipped};
        add(std::move(skipped));
    }

    void add(TestResult result) {
        Verdict& verdict = result.verdict;
        verdict.reason = printable(verdict.reason);
        const bool isOfInterest = verdict.outcome != Outcome_e::Passed && verdict.outcome != Outcome_e::Skipped;
        if (isOfInterest) {
            result.reproduce = reproducingCommand(result);
            result.debug = debuggingCommand(result);
        }
        std::printf("  %-9s  %-28s %6s s\n", nameOf(verdict.outcome), result.test->name,
                    decimalSeconds(result.duration, 2).c_str());
        const ToldCauses::Told told = m_causes.tell(result.test->name, verdict);
        if (!told.text.empty()) print(indented(told.text) + '\n');
        if (told.isNew) print("      reproduce: " + result.reproduce + '\n');
        if (told.isNew && !result.debug.empty()) print("      debug:     " + result.debug + '\n');
        std::fflush(stdout);
        m_report.tests.push_back(std::move(result));
    }

    std::string reproducingCommand(TestResult& result) {
        const std::string macro = result.verdict.macro.empty() ? "" : writeMacro(result);
        result.macro = macro;
        std::string command = kProgramName;
        command += macro.empty()
                       ? checkAgain(*result.test)
                       : " run " + shellWord(macro) + " --strict --keep-going --addon " + shellWord(m_options.addOn);
        for (const std::string& other : m_options.session.addOns) command += " --addon " + shellWord(other);
        if (m_options.session.style) command += " --style " + shellWord(*m_options.session.style);
        if (m_options.session.contract.host) command += " --host " + shellWord(*m_options.session.contract.host);
        for (const std::string& rule : m_options.session.contract.suppressed) command += " --suppress " + rule;
        if (m_report.warningsAsErrors) command += " --warnings-as-errors";
        if (result.verdict.outcome == Outcome_e::TimedOut)
            command += " --timeout " + decimalSeconds(m_setting.timeout, 2);
        return command;
    }

    // The command that shows the failure in a debugger; empty if no macro reproduces the failure.
    std::string debuggingCommand(const TestResult& result) const {
        if (result.macro.empty()) return "";
        SessionOptions options = m_options.session;
        options.addOns.insert(options.addOns.begin(), m_options.addOn);
        if (result.verdict.outcome == Outcome_e::TimedOut) options.contract.timeout = Seconds(m_setting.timeout);
        return debugCall(result.macro, debugOptionsOf(options, true, true), stopPlaceOf(result.verdict));
    }

    static StopPlace stopPlaceOf(const Verdict& verdict) {
        if (verdict.outcome == Outcome_e::TimedOut) return {StopEvent_e::Hang};
        if (verdict.outcome == Outcome_e::Crashed) return {StopEvent_e::Crash};
        const std::string rule = verdict.problems.empty() ? "" : verdict.problems.front().rule;
        if (rule == kCommandFailed) return {StopEvent_e::Failure};
        return standin::findRule(rule) == nullptr ? StopPlace() : StopPlace{StopEvent_e::Rule, rule};
    }

    std::string checkAgain(const CheckTest& test) const {
        std::string command = " check " + shellWord(m_options.addOn);
        for (const std::string& file : m_options.macros) command += " --macro " + shellWord(file);
        if (m_options.description) command += " --describe " + shellWord(*m_options.description);
        return command + " --only " + test.name + " --seed " + std::to_string(m_subject.seed) + " --level " +
               std::to_string(m_options.level);
    }

    // Returns the path of the macro; empty if it cannot be written.
    std::string writeMacro(const TestResult& result) {
        const std::string name = std::string("vexa-standin-check-") + result.test->name + ".macro";
        std::string path = (std::filesystem::path(m_options.folder) / name).lexically_normal();
        try {
            m_files.write(path);
            WholeOutput(path).replace(result.verdict.macro);
            return path;
        } catch (const OutputError& error) {
            tell(error.what());
            m_isUnwritten = true;
            return "";
        }
    }

    ExitStatus_e conclude() {
        const bool passed = isPassed(m_report);
        const std::string causes = m_causes.summary();
        if (!causes.empty()) std::printf("%s\n", causes.c_str());
        std::printf("check %s: %s\n", passed ? "passed" : "failed", countsText(m_report).c_str());
        if (m_options.coverage) writeCoverage();
        for (auto& [output, text] : m_reports) output.replace(text(m_report));
        const ExitStatus_e result = passed ? ExitStatus_e::AllWell : ExitStatus_e::CommandFailed;
        const ExitStatus_e status = m_isUnwritten ? ExitStatus_e::BadUsageOrInput : result;
        m_problems->write(problemReport(m_report, status));
        return status;
    }

    // Leaves out the commands of the add-on that is part of a test.
    void writeCoverage() {
        auto& commands = m_coverage.commands;
        for (auto command = commands.begin(); command != commands.end();) {
            const std::string& name = command->first;
            const bool isOfTest = name.front() != '(' && m_addOnIds.count(name.substr(0, name.find(' '))) == 0;
            command = isOfTest ? commands.erase(command) : std::next(command);
        }
        addToCoverageFile(*m_options.coverage, m_coverage);
    }

    const CheckTest* m_loadTest = findCheckTest("load");
    const CheckOptions& m_options;
    Subject m_subject;
    const AwaitedSignals m_signals;
    TestSetting m_setting{m_signals};
    std::set<std::string> m_addOnIds;
    CheckReport m_report;
    Coverage m_coverage;
    ToldCauses m_causes;
    RunFiles m_files;
    std::list<std::pair<WholeOutput, ReportText>> m_reports;
    std::optional<ProblemOutputs> m_problems;
    bool m_isUnwritten = false;  // true if a macro could not be written
};

}  // namespace

ExitStatus_e checkAddOn(const CheckOptions& options) { return Check(options).execute(); }

}  // namespace vexa::runner
