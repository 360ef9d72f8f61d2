#include "formats/AnnotationText.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace vexa::runner {
namespace {

using nlohmann::json;

Problem failedCommand(const std::string& place, const std::string& message) {
    return problemOf({place, "ONE", "LOAD"}, kCommandFailed, message);
}

TEST(AnnotationText, IsAWorkflowCommandForEachProblem) {
    Problem warning = failedCommand("m.macro:1", "slow");
    warning.severity = standin::Severity_e::Warning;
    EXPECT_EQ(githubText({"run", {failedCommand("t/m.macro:3", "no such zone"), warning}}),
              "::error file=t/m.macro,line=3,title=command-failed::no such zone\n"
              "::warning file=m.macro,line=1,title=command-failed::slow\n");
}

TEST(AnnotationText, EscapesWhatAWorkflowCommandWouldRead) {
    EXPECT_EQ(githubText({"run", {failedCommand("a:b,100%.macro:3", "100% done:\r\na, b")}}),
              "::error file=a%3Ab%2C100%25.macro,line=3,title=command-failed::100%25 done:\\x0D%0Aa, b\n");
}

TEST(AnnotationText, HasTheDetailsOfAProblemInItsMessage) {
    Problem problem = failedCommand("m.macro:3", "no such zone");
    problem.details = "    hint: zones are 1 to 4\n";
    EXPECT_EQ(githubText({"run", {problem}}),
              "::error file=m.macro,line=3,title=command-failed::no such zone%0A    hint: zones are 1 to 4\n");
}

TEST(AnnotationText, IsACodeQualityReport) {
    Problem warning = failedCommand("m.macro", "slow");
    warning.severity = standin::Severity_e::Warning;
    const ProblemReport report{"run", {failedCommand("./t/m.macro:3", "no such zone"), warning}};
    json issues = json::parse(gitlabText(report));
    ASSERT_EQ(issues.size(), 2U);
    const std::string fingerprint = issues[0].at("fingerprint");
    EXPECT_EQ(fingerprint, fingerprintsOf(report.problems).front());
    issues[0].erase("fingerprint");
    EXPECT_EQ(issues[0], json::parse(R"({"description": "no such zone", "check_name": "command-failed",
        "severity": "major", "location": {"path": "t/m.macro", "lines": {"begin": 3}}})"));
    EXPECT_EQ(issues[1].at("severity"), "minor");
    EXPECT_EQ(issues[1].at("location").at("lines").at("begin"), 1);
}

TEST(AnnotationText, IsAnEmptyReportWithoutProblems) {
    EXPECT_EQ(githubText({"run", {}}), "");
    EXPECT_EQ(json::parse(gitlabText({"run", {}})), json::array());
}

}  // namespace
}  // namespace vexa::runner
