#include "commands/check/CheckReport.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <string_view>
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

// ---- SARIF

std::string asUri(const std::string& path) {
    constexpr std::string_view kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    std::string uri = path.compare(0, 1, "/") == 0 ? "file://" : "";
    for (const char c : path) {
        std::array<char, 4> code{};
        std::snprintf(code.data(), code.size(), "%%%02X", static_cast<unsigned char>(c));
        uri += kPlain.find(c) == std::string_view::npos ? code.data() : std::string(1, c);
    }
    return uri;
}

Json sarifRules(const CheckReport& report) {
    Json rules = Json::array();
    for (const TestResult& test : report.tests) {
        rules.push_back({{"id", test.test->name},
                         {"shortDescription", {{"text", test.test->summary}}},
                         {"fullDescription", {{"text", test.test->why}}}});
    }
    return rules;
}

Json sarifResult(const CheckReport& report, std::size_t index) {
    const TestResult& test = report.tests[index];
    const Outcome_e outcome = test.verdict.outcome;
    const Json file = {{"physicalLocation", {{"artifactLocation", {{"uri", asUri(report.addOn)}}}}}};
    return {{"ruleId", test.test->name},
            {"ruleIndex", index},
            {"level", isBad(outcome, report.warningsAsErrors) ? "error" : "warning"},
            {"message", {{"text", withReproduction(test)}}},
            {"locations", Json::array({file})},
            {"properties", {{"outcome", nameOf(outcome)}, {"seed", report.seed}}}};
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
        tests.push_back({{"name", test.test->name},
                         {"summary", test.test->summary},
                         {"outcome", nameOf(test.verdict.outcome)},
                         {"seconds", secondsOf(test)},
                         {"refusedWrites", test.refusedWrites},
                         {"reason", test.verdict.reason},
                         {"reproduce", printable(test.reproduce)}});
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

std::string junitText(const CheckReport& report) {
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

std::string sarifText(const CheckReport& report) {
    Json results = Json::array();
    for (std::size_t i = 0; i != report.tests.size(); ++i) {
        if (isBad(report.tests[i].verdict.outcome, true)) results.push_back(sarifResult(report, i));
    }
    const Json driver = {{"name", kTool}, {"version", VEXA_STANDIN_VERSION}, {"rules", sarifRules(report)}};
    return dumped({{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"},
                   {"version", "2.1.0"},
                   {"runs", Json::array({{{"tool", {{"driver", driver}}},
                                          {"invocations", Json::array({{{"executionSuccessful", true}}})},
                                          {"properties", {{"refusedWrites", refusedWrites(report)}}},
                                          {"results", results}}})}});
}

}  // namespace vexa::runner
