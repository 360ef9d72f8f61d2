#include "formats/SarifText.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

namespace vexa::runner {
namespace {

using nlohmann::json;

ProblemReport reportOn(std::vector<Problem> problems) { return {"run", std::move(problems)}; }

json runOf(const ProblemReport& report) { return json::parse(sarifText(report)).at("runs").at(0); }

Problem failedCommand() { return problemOf({"t/a b.macro:3", "ONE", "Größe"}, kCommandFailed, "no such zone"); }

TEST(SarifText, HasTheRegionOfTheLine) {
    const json location = runOf(reportOn({failedCommand()})).at("results").at(0).at("locations").at(0);
    EXPECT_EQ(location.at("physicalLocation").at("region"),
              json::parse(R"({"startLine": 3, "startColumn": 1, "endLine": 3, "endColumn": 10})"));
}

TEST(SarifText, HasAUriRelativeToTheCurrentFolder) {
    const json run = runOf(reportOn({failedCommand()}));
    const json location = run.at("results").at(0).at("locations").at(0).at("physicalLocation").at("artifactLocation");
    EXPECT_EQ(location.at("uri"), "t/a%20b.macro");
    const std::string base = location.at("uriBaseId");
    EXPECT_EQ(run.at("originalUriBaseIds").at(base).at("uri"),
              "file://" + std::filesystem::current_path().string() + '/');
}

TEST(SarifText, HasAnAbsoluteUriOutsideOfTheCurrentFolder) {
    Problem problem = failedCommand();
    problem.place.file = "/no/m.macro";
    const json location = runOf(reportOn({problem})).at("results").at(0).at("locations").at(0);
    EXPECT_EQ(location.at("physicalLocation").at("artifactLocation"), json::parse(R"({"uri": "file:///no/m.macro"})"));
}

TEST(SarifText, ListsEachRuleOnceWithItsHelp) {
    Problem leak;
    leak.rule = "unbalanced-lock";
    const json run = runOf(reportOn({failedCommand(), leak, failedCommand()}));
    const json& rules = run.at("tool").at("driver").at("rules");
    ASSERT_EQ(rules.size(), 2U);
    EXPECT_EQ(run.at("results").at(1).at("ruleIndex"), 1);
    EXPECT_EQ(run.at("results").at(2).at("ruleIndex"), 0);
    EXPECT_EQ(rules.at(1).at("id"), "unbalanced-lock");
    EXPECT_NE(rules.at(1).at("help").at("text").get<std::string>().find("Use an AddOnIdLock"), std::string::npos);
    EXPECT_EQ(rules.at(1).at("defaultConfiguration").at("level"), "error");
}

TEST(SarifText, RelatesTheOtherPlace) {
    Problem problem = failedCommand();
    problem.other = ProblemPlace{"m.macro", 2, "call 6, VexaUtilLockStart"};
    const json other = runOf(reportOn({problem})).at("results").at(0).at("relatedLocations").at(0);
    EXPECT_EQ(other.at("physicalLocation").at("artifactLocation").at("uri"), "m.macro");
    EXPECT_EQ(other.at("physicalLocation").at("region").at("startLine"), 2);
    EXPECT_EQ(other.at("message").at("text"), "call 6, VexaUtilLockStart");
    EXPECT_FALSE(runOf(reportOn({failedCommand()})).at("results").at(0).contains("relatedLocations"));
}

TEST(SarifText, HasTheCommandThatShowsTheProblemInADebugger) {
    Problem problem = failedCommand();
    problem.debug = "vexa-standin debug m.macro --failure";
    const json result = runOf(reportOn({problem})).at("results").at(0);
    EXPECT_EQ(result.at("properties"), json::parse(R"({"debug": "vexa-standin debug m.macro --failure"})"));
    EXPECT_FALSE(runOf(reportOn({failedCommand()})).at("results").at(0).contains("properties"));
}

TEST(SarifText, SaysHowTheCommandEnded) {
    ProblemReport report = reportOn({});
    report.exitStatus = 2;
    report.hasRun = false;
    const json run = runOf(report);
    EXPECT_EQ(run.at("invocations").at(0), json::parse(R"({"executionSuccessful": false, "exitCode": 2})"));
    EXPECT_EQ(run.at("automationDetails").at("id"), "vexa-standin/run/");
    EXPECT_EQ(run.at("results"), json::array());
}

}  // namespace
}  // namespace vexa::runner
