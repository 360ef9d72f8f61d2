#include <signal.h>

#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <sstream>

#include "CheckRunnerTest.h"

namespace vexa::e2e {
namespace {

class CheckReports : public CheckRunnerTest {
protected:
    // A test that passes, one that crashes and one that is skipped.
    void SetUp() override {
        result = checkMacro("rogue", "ROGUE abort\n", "commands-in-order",
                            {"--only", "record-replay", "--only", "binary-hygiene", "--seed", "7", "--json", "c.json",
                             "--junit", "c.xml", "--sarif", "c.sarif"});
    }
    ProgramResult result;
};

TEST_F(CheckReports, TellProgramsAll) {
    const auto json = nlohmann::json::parse(read("c.json"));
    EXPECT_EQ(json.at("addOn"), CHECK_ADDONS "/rogue.so");
    EXPECT_EQ(json.at("seed"), 7);
    EXPECT_EQ(json.at("passed"), false);
    ASSERT_EQ(json.at("tests").size(), 4u);
    const auto& passed = json["tests"][1];
    EXPECT_EQ(passed.at("name"), "binary-hygiene");
    EXPECT_EQ(passed.at("outcome"), "passed");
    EXPECT_EQ(passed.at("reproduce"), "");
    const auto& crashed = json["tests"][2];
    EXPECT_EQ(crashed.at("name"), "commands-in-order");
    EXPECT_EQ(crashed.at("outcome"), "crashed");
    EXPECT_EQ(crashed.at("reason").get<std::string>().rfind("SIGABRT", 0), 0u);
    EXPECT_EQ(crashed.at("reproduce").get<std::string>().rfind("vexa-standin run ", 0), 0u);
    EXPECT_GE(crashed.at("seconds").get<double>(), 0.0);
}

TEST_F(CheckReports, TellEveryCauseInFull) {
    EXPECT_EQ(result.out.find("SIGABRT: "),
              result.out.rfind("SIGABRT: ", result.out.find("2 tests have the same cause")))
        << result.out;
    const auto json = nlohmann::json::parse(read("c.json"));
    const auto& again = json.at("tests").at(3);
    EXPECT_EQ(again.at("name"), "record-replay");
    EXPECT_NE(again.at("reason").get<std::string>().find("during: ROGUE abort"), std::string::npos) << again;
    EXPECT_NE(again.at("reproduce").get<std::string>().find("record-replay"), std::string::npos) << again;
}

TEST_F(CheckReports, TellBuildServersInTheFormOfJUnit) {
    boost::property_tree::ptree xml;
    std::istringstream text(read("c.xml"));
    boost::property_tree::read_xml(text, xml);
    const auto& suite = xml.get_child("testsuites.testsuite");
    EXPECT_EQ(suite.get<int>("<xmlattr>.tests"), 4);
    EXPECT_EQ(suite.get<int>("<xmlattr>.failures"), 0);
    EXPECT_EQ(suite.get<int>("<xmlattr>.errors"), 2);  // playing back crashes, too
    EXPECT_EQ(suite.get<int>("<xmlattr>.skipped"), 0);
    std::vector<std::string> outcomes;
    for (const auto& [tag, test] : suite) {
        if (tag == "testcase") outcomes.push_back(test.get<std::string>("error.<xmlattr>.type", "none"));
    }
    EXPECT_EQ(outcomes, (std::vector<std::string>{"none", "none", "crashed", "crashed"}));
}

TEST_F(CheckReports, TellInSarifWhatACommandDidOnce) {
    const auto sarif = nlohmann::json::parse(read("c.sarif"));
    EXPECT_EQ(sarif.at("version"), "2.1.0");
    const auto& run = sarif.at("runs").at(0);
    const auto& results = run.at("results");
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(results[0].at("ruleId"), "process-ended");
    EXPECT_EQ(results[0].at("level"), "error");
    const auto& place = results[0].at("locations").at(0).at("physicalLocation");
    EXPECT_EQ(place.at("artifactLocation").at("uri"), "m.macro");
    EXPECT_EQ(place.at("region").at("startLine"), 1);
    const std::string message = results[0].at("message").at("text");
    EXPECT_NE(message.find("found by the test commands-in-order\nreproduce: vexa-standin run "), std::string::npos);
}

TEST_F(CheckReports, TellInSarifWhichTestFailedWithoutACommand) {
    check("refuse", {"--sarif", "c.sarif"});
    const auto sarif = nlohmann::json::parse(read("c.sarif"));
    const auto& run = sarif.at("runs").at(0);
    const auto& problem = run.at("results").at(0);
    EXPECT_EQ(problem.at("ruleId"), "load");
    EXPECT_EQ(run.at("tool").at("driver").at("rules").at(0).at("id"), "load");
    EXPECT_EQ(problem.at("locations").at(0).at("physicalLocation").at("artifactLocation").at("uri"),
              "file://" CHECK_ADDONS "/refuse.so");
}

TEST_F(CheckReports, AreReadableWhateverTheAddOnSays) {
    checkMacro("moody", "MOODY \x01<&\"\xff]]>\n", "commands-in-order", {"--json", "c.json", "--junit", "c.xml"});
    const auto json = nlohmann::json::parse(read("c.json"));
    const std::string reason = json.at("tests").at(1).at("reason");
    EXPECT_NE(reason.find("MOODY \\x01<&\"\\xFF]]>"), std::string::npos) << reason;
    boost::property_tree::ptree xml;
    std::istringstream text(read("c.xml"));
    boost::property_tree::read_xml(text, xml);
    EXPECT_NE(xml.get<std::string>("testsuites.testsuite.<xmlattr>.name").find("moody"), std::string::npos);
}

TEST_F(CheckReports, StayAsTheyWereWhenTheCheckIsKilled) {
    write("c.json", "the report before");
    write("m.macro", "ROGUE kill\n");
    const ProgramResult killed =
        check("rogue", {"--macro", "m.macro", "--only", "commands-in-order", "--in-process", "--json", "c.json"});
    EXPECT_EQ(killed.status, -SIGKILL);
    EXPECT_FALSE(has(killed, "check passed"));
    EXPECT_EQ(read("c.json"), "the report before");
}

}  // namespace
}  // namespace vexa::e2e
