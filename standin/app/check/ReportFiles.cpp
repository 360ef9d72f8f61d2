#include "check/ReportFiles.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <string_view>

namespace vexa::runner {
namespace {

using Json = nlohmann::ordered_json;

constexpr char kTool[] = "vexa-standin check";
constexpr int kJsonFormat = 1;
constexpr int kIndent = 2;

double secondsOf(const TestResult& result) { return std::chrono::duration<double>(result.duration).count(); }

std::string dumped(const Json& json) { return json.dump(kIndent) + '\n'; }

std::string withReproduction(const ReportedTest& test) {
    const std::string& reason = test.result.verdict.reason;
    if (test.reproduce.empty()) return reason;
    return reason + (reason.empty() ? "" : "\n") + "reproduce: " + printable(test.reproduce);
}

// ---- JUnit

std::string escaped(const std::string& text) {
    std::string xml;
    for (const char c : printable(text)) {
        switch (c) {
            case '&': xml += "&amp;"; break;
            case '<': xml += "&lt;"; break;
            case '>': xml += "&gt;"; break;
            case '"': xml += "&quot;"; break;
            case '\n': xml += "&#10;"; break;  // in an attribute a line feed itself would become a blank
            default: xml += c;
        }
    }
    return xml;
}

std::string attribute(const char* name, const std::string& value) {
    return std::string(" ") + name + "=\"" + escaped(value) + '"';
}

std::string element(const char* name, const std::string& attributes, const std::string& text) {
    return std::string("      <") + name + attributes + '>' + escaped(text) + "</" + name + ">\n";
}

std::string secondsText(double seconds) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.3f", seconds);
    return text.data();
}

std::string firstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

std::string junitOutcome(const ReportedTest& test, bool warningsAsErrors) {
    const Verdict& verdict = test.result.verdict;
    const std::string message = attribute("message", firstLine(verdict.reason));
    const std::string type = attribute("type", nameOf(verdict.outcome));
    switch (verdict.outcome) {
        case Outcome_e::Passed: return "";
        case Outcome_e::Skipped: return "      <skipped" + message + "/>\n";
        case Outcome_e::Warned:
            return warningsAsErrors ? element("failure", message + type, withReproduction(test))
                                    : element("system-out", "", withReproduction(test));
        case Outcome_e::Failed: return element("failure", message + type, withReproduction(test));
        case Outcome_e::Crashed:
        case Outcome_e::TimedOut: break;
    }
    return element("error", message + type, withReproduction(test));
}

template <class Is>
std::string countOf(const CheckReport& report, const Is& is) {
    return std::to_string(std::count_if(report.tests.begin(), report.tests.end(),
                                        [&](const ReportedTest& test) { return is(test.result.verdict.outcome); }));
}

std::string junitCounts(const CheckReport& report) {
    const auto isError = [](Outcome_e outcome) {
        return outcome == Outcome_e::Crashed || outcome == Outcome_e::TimedOut;
    };
    const auto isFailure = [&](Outcome_e outcome) {
        return isBad(outcome, report.warningsAsErrors) && !isError(outcome);
    };
    double seconds = 0;
    for (const ReportedTest& test : report.tests) seconds += secondsOf(test.result);
    return attribute("tests", std::to_string(report.tests.size())) + attribute("failures", countOf(report, isFailure)) +
           attribute("errors", countOf(report, isError)) +
           attribute("skipped", countOf(report, [](Outcome_e outcome) { return outcome == Outcome_e::Skipped; })) +
           attribute("time", secondsText(seconds));
}

std::string junitProperty(const char* name, const std::string& value) {
    return "      <property" + attribute("name", name) + attribute("value", value) + "/>\n";
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
    for (const ReportedTest& test : report.tests) {
        rules.push_back({{"id", test.result.test->name},
                         {"shortDescription", {{"text", test.result.test->summary}}},
                         {"fullDescription", {{"text", test.result.test->why}}}});
    }
    return rules;
}

Json sarifResult(const CheckReport& report, std::size_t index) {
    const ReportedTest& test = report.tests[index];
    const Outcome_e outcome = test.result.verdict.outcome;
    const Json file = {{"physicalLocation", {{"artifactLocation", {{"uri", asUri(report.addOn)}}}}}};
    return {{"ruleId", test.result.test->name},
            {"ruleIndex", index},
            {"level", isBad(outcome, report.warningsAsErrors) ? "error" : "warning"},
            {"message", {{"text", withReproduction(test)}}},
            {"locations", Json::array({file})},
            {"properties", {{"outcome", nameOf(outcome)}, {"seed", report.seed}}}};
}

}  // namespace

std::string jsonText(const CheckReport& report) {
    Json tests = Json::array();
    for (const ReportedTest& test : report.tests) {
        tests.push_back({{"name", test.result.test->name},
                         {"summary", test.result.test->summary},
                         {"outcome", nameOf(test.result.verdict.outcome)},
                         {"seconds", secondsOf(test.result)},
                         {"reason", test.result.verdict.reason},
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
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites>\n  <testsuite" +
                      attribute("name", std::string(kTool) + ' ' + report.addOn) + junitCounts(report) +
                      ">\n    <properties>\n" + junitProperty("seed", std::to_string(report.seed)) +
                      junitProperty("level", std::to_string(report.level)) + "    </properties>\n";
    for (const ReportedTest& test : report.tests) {
        const std::string outcome = junitOutcome(test, report.warningsAsErrors);
        xml += "    <testcase" + attribute("classname", report.addOn) + attribute("name", test.result.test->name) +
               attribute("time", secondsText(secondsOf(test.result))) +
               (outcome.empty() ? "/>\n" : ">\n" + outcome + "    </testcase>\n");
    }
    return xml + "  </testsuite>\n</testsuites>\n";
}

std::string sarifText(const CheckReport& report) {
    Json results = Json::array();
    for (std::size_t i = 0; i != report.tests.size(); ++i) {
        const Outcome_e outcome = report.tests[i].result.verdict.outcome;
        if (outcome == Outcome_e::Warned || isBad(outcome, false)) results.push_back(sarifResult(report, i));
    }
    const Json driver = {{"name", kTool}, {"version", VEXA_STANDIN_VERSION}, {"rules", sarifRules(report)}};
    return dumped({{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"},
                   {"version", "2.1.0"},
                   {"runs", Json::array({{{"tool", {{"driver", driver}}},
                                          {"invocations", Json::array({{{"executionSuccessful", true}}})},
                                          {"results", results}}})}});
}

}  // namespace vexa::runner
