#include "commands/check/CheckRun.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <list>
#include <random>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>

#include "commands/check/CheckReport.h"
#include "commands/check/ReportFiles.h"
#include "commands/check/TestRun.h"
#include "commands/check/ToldCauses.h"
#include "commands/check/tests/TestCatalogue.h"
#include "commands/check/trial/Trial.h"
#include "formats/MacroFile.h"
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

std::uint64_t newSeed() {
    std::random_device device;
    return device();  // short enough to be typed
}

std::string indented(const std::string& lines) {
    std::string text = "      ";
    for (const char c : lines) text += c == '\n' ? "\n      " : std::string(1, c);
    return text;
}

class Check {
public:
    explicit Check(const CheckOptions& options) : m_options(options), m_contract(options.contract) {}

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
    // A report: its file, and the function that makes its text.
    struct ReportFile {
        using Text = std::string (*)(const CheckReport& report);
        ReportFile(const std::string& path, Text textOf) : output(path), text(textOf) {}
        WholeOutput output;
        Text text;
    };

    bool prepare() {
        if (!addProjectFile(m_contract) || !isThere()) return false;
        findReports();
        return readStyle();
    }

    bool isThere() const {
        std::error_code error;
        const bool exists = std::filesystem::exists(m_options.addOn, error);
        if (!exists) tell(m_options.addOn, "no such file");
        return exists;
    }

    // Done before the tests, so that nobody waits for a report that cannot be written.
    void findReports() {
        m_files.read(m_options.addOn);
        m_files.read(m_options.others);
        m_files.read(m_options.macros);
        m_files.read(m_options.style);
        m_files.read(m_contract.projectFile);
        for (const auto& file : {m_options.json, m_options.junit, m_options.sarif}) m_files.write(file);
        if (m_options.json) m_reports.emplace_back(*m_options.json, jsonText);
        if (m_options.junit) m_reports.emplace_back(*m_options.junit, junitText);
        if (m_options.sarif) m_reports.emplace_back(*m_options.sarif, sarifText);
    }

    bool readStyle() {
        if (!m_options.style) return true;
        auto style = readStyles(*m_options.style);
        if (style) m_subject.style = std::move(*style);
        return style.has_value();
    }

    void configure() {
        constexpr std::chrono::duration<double> kTimeout(10);
        m_subject.options.addOns = m_options.others;
        m_subject.options.addOns.insert(m_subject.options.addOns.begin(), m_options.addOn);
        m_subject.options.contract.suppressed = m_contract.suppressed;
        m_subject.seed = m_options.seed.value_or(newSeed());
        m_subject.time = millisecondsOf(std::chrono::duration<double>(m_options.time));
        m_setting.inProcess = m_options.inProcess;
        m_setting.timeout = millisecondsOf(m_contract.timeout.value_or(kTimeout));
        m_report.addOn = m_options.addOn;
        m_report.seed = m_subject.seed;
        m_report.level = m_options.level;
        m_report.warningsAsErrors = m_contract.warningsAsErrors.value_or(false);
    }

    static milliseconds millisecondsOf(std::chrono::duration<double> time) {
        return std::chrono::ceil<milliseconds>(time);
    }

    // This process loads no add-on, so the test reports the ids of the add-ons.
    void loadFirst() {
        const TestResult result = runTest(*m_loadTest, m_subject, m_setting);
        m_addOnIds = {result.addOnIds.begin(), result.addOnIds.end()};
        add(result);
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
        return isReadable;
    }

    bool isChosen(const CheckTest& test) const {
        const std::vector<std::string>& only = m_options.only;
        if (only.empty()) return test.level <= m_options.level;
        return std::find(only.begin(), only.end(), test.name) != only.end();
    }

    // Why a test is skipped; empty if it runs.
    std::string whyNot(const CheckTest& test) const {
        if (test.needs == Needs_e::File) return "";
        if (m_addOnIds.empty()) return "the add-on cannot be loaded";
        if (test.needs == Needs_e::Loading || !m_subject.steps.empty()) return "";
        return m_options.macros.empty() ? "no macro was given" : "the macros have no command";
    }

    void add(const std::string& whySkipped, const CheckTest& test) {
        if (whySkipped.empty()) return add(runTest(test, m_subject, m_setting));
        TestResult skipped;
        skipped.test = &test;
        skipped.verdict = {Outcome_e::Skipped, whySkipped};
        add(skipped);
    }

    void add(const TestResult& result) {
        ReportedTest reported = {result, ""};
        reported.result.verdict.reason = printable(result.verdict.reason);
        const Verdict& verdict = reported.result.verdict;
        const bool isOfInterest = verdict.outcome != Outcome_e::Passed && verdict.outcome != Outcome_e::Skipped;
        if (isOfInterest) reported.reproduce = reproducingCommand(result);
        std::printf("  %-9s  %-28s %6s s\n", nameOf(verdict.outcome), result.test->name,
                    decimalSeconds(result.duration, 2).c_str());
        const ToldCauses::Told told = m_causes.tell(result.test->name, verdict);
        if (!told.text.empty()) print(indented(told.text) + '\n');
        if (told.isNew) print("      reproduce: " + reported.reproduce + '\n');
        std::fflush(stdout);
        m_report.tests.push_back(reported);
    }

    std::string reproducingCommand(const TestResult& result) {
        const std::string macro = result.verdict.macro.empty() ? "" : writeMacro(result);
        std::string command = kProgramName;
        command += macro.empty() ? checkAgain(*result.test) : " run " + shellWord(macro) + " --strict --keep-going";
        command += macro.empty() ? "" : " --addon " + shellWord(m_options.addOn);
        for (const std::string& other : m_options.others) command += " --addon " + shellWord(other);
        if (m_options.style) command += " --style " + shellWord(*m_options.style);
        for (const std::string& rule : m_options.contract.suppressed) command += " --suppress " + rule;
        if (m_report.warningsAsErrors) command += " --warnings-as-errors";
        if (result.verdict.outcome == Outcome_e::TimedOut)
            command += " --timeout " + decimalSeconds(m_setting.timeout, 2);
        return command;
    }

    std::string checkAgain(const CheckTest& test) const {
        std::string command = " check " + shellWord(m_options.addOn);
        for (const std::string& file : m_options.macros) command += " --macro " + shellWord(file);
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
        for (ReportFile& report : m_reports) report.output.replace(report.text(m_report));
        if (m_isUnwritten) return ExitStatus_e::BadUsageOrInput;
        return passed ? ExitStatus_e::AllWell : ExitStatus_e::CommandFailed;
    }

    const CheckTest* m_loadTest = findCheckTest("load");
    const CheckOptions& m_options;
    ContractOptions m_contract;
    Subject m_subject;
    const AwaitedSignals m_signals;
    TestSetting m_setting{m_signals};
    std::set<std::string> m_addOnIds;
    CheckReport m_report;
    ToldCauses m_causes;
    RunFiles m_files;
    std::list<ReportFile> m_reports;
    bool m_isUnwritten = false;  // a macro could not be written
};

}  // namespace

ExitStatus_e checkAddOn(const CheckOptions& options) { return Check(options).execute(); }

}  // namespace vexa::runner
