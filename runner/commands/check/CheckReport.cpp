#include "commands/check/CheckReport.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <vector>

#include "formats/JunitText.h"
#include "text/Printable.h"

namespace vexa::runner {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::array<const char*, 6> kNames = {"passed", "warned", "skipped", "failed", "crashed", "timed out"};
constexpr char kTool[] = "vexa-standin check";
constexpr int kJsonFormat = 1;
constexpr int kIndent = 2;

bool isBad(Outcome_e outcome, bool warningsAsErrors) {
    return outcome > Outcome_e::Skipped || (warningsAsErrors && outcome == Outcome_e::Warned);
}

std::size_t refusedWrites(const CheckReport& report) {
    std::size_t count = 0;
    for (const TestResult& test : report.tests) count += test.refusedWrites;
    return count;
}

double secondsOf(const TestResult& result) { return std::chrono::duration<double>(result.duration).count(); }

std::string dumped(const Json& json) { return json.dump(kIndent) + '\n'; }

std::string withReproduction(const TestResult& test) {
    const std::string& reason = test.verdict.reason;
    if (test.reproduce.empty()) return reason;
    return reason + (reason.empty() ? "" : "\n") + "reproduce: " + printable(test.reproduce);
}

// ---- JUnit

std::string firstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

JunitOutcome_e junitOutcome(Outcome_e outcome, bool warningsAsErrors) {
    constexpr JunitOutcome_e kOutcomes[] = {JunitOutcome_e::Passed,  JunitOutcome_e::Remarked, JunitOutcome_e::Skipped,
                                            JunitOutcome_e::Failure, JunitOutcome_e::Error,    JunitOutcome_e::Error};
    const bool isWarningBad = outcome == Outcome_e::Warned && warningsAsErrors;
    return isWarningBad ? JunitOutcome_e::Failure : kOutcomes[static_cast<std::size_t>(outcome)];
}

// ---- Problems

// Tells which test found a problem, and how to see it again.
std::string origin(const TestResult& test) {
    return std::string("found by the test ") + test.test->name + "\nreproduce: " + printable(test.reproduce);
}

std::vector<Problem> problemsOf(const TestResult& test) {
    std::vector<Problem> problems = test.verdict.problems;
    for (Problem& problem : problems) {
        problem.details += origin(test);
        problem.debug = test.debug;
    }
    return problems;
}

// The problem of a test whose failure has no place in a macro.
Problem problemOf(const CheckReport& report, const TestResult& test) {
    Problem problem;
    problem.rule = test.test->name;
    const bool isError = isBad(test.verdict.outcome, report.warningsAsErrors);
    problem.severity = isError ? standin::Severity_e::Error : standin::Severity_e::Warning;
    problem.message = withReproduction(test);
    problem.place.file = report.addOn;
    return problem;
}

// One mistake often makes many tests fail. Its problem is listed once.
void addNew(std::vector<Problem>& problems, Problem problem, bool isError) {
    const auto isSame = [&](const Problem& known) {
        return known.rule == problem.rule && known.message == problem.message &&
               known.place.file == problem.place.file && known.place.line == problem.place.line;
    };
    if (isError) problem.severity = standin::Severity_e::Error;
    if (std::none_of(problems.begin(), problems.end(), isSame)) problems.push_back(std::move(problem));
}

std::vector<standin::Rule> rulesOf(const CheckReport& report) {
    std::vector<standin::Rule> rules;
    for (const TestResult& result : report.tests) {
        const CheckTest& test = *result.test;
        rules.push_back({test.name, "Tests of check", standin::Severity_e::Error, test.summary, test.why,
                         "Run the command that reproduces the failure."});
    }
    return rules;
}

}  // namespace

const char* nameOf(Outcome_e outcome) { return kNames[static_cast<std::size_t>(outcome)]; }

bool isPassed(const CheckReport& report) {
    const std::vector<TestResult>& tests = report.tests;
    const auto hasRun = [](const TestResult& test) { return test.verdict.outcome <= Outcome_e::Warned; };
    const auto isWrong = [&](const TestResult& test) { return isBad(test.verdict.outcome, report.warningsAsErrors); };
    return std::any_of(tests.begin(), tests.end(), hasRun) && std::none_of(tests.begin(), tests.end(), isWrong);
}

std::string countsText(const CheckReport& report) {
    std::string text;
    for (std::size_t i = 0; i != kNames.size(); ++i) {
        const auto count = std::count_if(report.tests.begin(), report.tests.end(), [&](const TestResult& test) {
            return test.verdict.outcome == static_cast<Outcome_e>(i);
        });
        if (count > 0) text += (text.empty() ? "" : ", ") + std::to_string(count) + ' ' + kNames[i];
    }
    return text;
}

std::string jsonText(const CheckReport& report) {
    Json tests = Json::array();
    for (const TestResult& test : report.tests) {
        Json object = {{"name", test.test->name},
                       {"summary", test.test->summary},
                       {"outcome", nameOf(test.verdict.outcome)},
                       {"seconds", secondsOf(test)},
                       {"refusedWrites", test.refusedWrites},
                       {"reason", test.verdict.reason},
                       {"reproduce", printable(test.reproduce)}};
        if (!test.debug.empty()) object["debug"] = printable(test.debug);
        tests.push_back(std::move(object));
    }
    return dumped({{"tool", kTool},
                   {"version", VEXA_STANDIN_VERSION},
                   {"format", kJsonFormat},
                   {"addOn", printable(report.addOn)},
                   {"seed", report.seed},
                   {"level", report.level},
                   {"passed", isPassed(report)},
                   {"tests", tests}});
}

std::string checkJunitText(const CheckReport& report) {
    std::vector<JunitCase> cases;
    for (const TestResult& test : report.tests) {
        const Verdict& verdict = test.verdict;
        cases.push_back({report.addOn, test.test->name, secondsOf(test),
                         junitOutcome(verdict.outcome, report.warningsAsErrors), nameOf(verdict.outcome),
                         firstLine(verdict.reason), withReproduction(test)});
    }
    return junitText(std::string(kTool) + ' ' + report.addOn,
                     {{"seed", std::to_string(report.seed)},
                      {"level", std::to_string(report.level)},
                      {"refused-writes", std::to_string(refusedWrites(report))}},
                     cases);
}

ProblemReport problemReport(const CheckReport& report, ExitStatus_e status) {
    ProblemReport all{"check", {}, rulesOf(report), static_cast<int>(status)};
    for (const TestResult& test : report.tests) {
        if (!isBad(test.verdict.outcome, true)) continue;
        for (Problem& problem : problemsOf(test)) addNew(all.problems, std::move(problem), report.warningsAsErrors);
        if (test.verdict.problems.empty()) all.problems.push_back(problemOf(report, test));
    }
    all.properties = {{"seed", report.seed}, {"refusedWrites", refusedWrites(report)}};
    return all;
}

}  // namespace vexa::runner
