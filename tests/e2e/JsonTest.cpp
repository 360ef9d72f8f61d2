#include <csignal>
#include <nlohmann/json.hpp>
#include <sstream>

#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

using nlohmann::json;

class Json : public RunnerTest {
protected:
    static std::vector<json> objectsOf(const std::string& text) {
        std::istringstream lines(text);
        std::vector<json> objects;
        for (std::string line; std::getline(lines, line);) objects.push_back(json::parse(line));
        return objects;
    }
    std::vector<json> objectsIn(const std::string& name) const { return objectsOf(read(name)); }
};

TEST_F(Json, HasALineForEachCommandAndOneForTheEnd) {
    const ProgramResult result = runMacro("ONE ECHO a\n# b\nONE FAIL no|such zone|\n", {"--json", "r.jsonl"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "a\n");
    std::vector<json> lines = objectsIn("r.jsonl");
    ASSERT_EQ(lines.size(), 3U);
    for (std::size_t i = 0; i != 2; ++i) {
        EXPECT_GE(lines[i].at("seconds"), 0.0);
        lines[i].erase("seconds");
        lines[i].erase("debug");
    }
    EXPECT_EQ(lines[0], json::parse(R"({"place": "m.macro:1", "addOn": "ONE", "command": "ECHO a", "accepted": true,
                                        "error": "", "findings": []})"));
    EXPECT_EQ(lines[1], json::parse(R"({"place": "m.macro:3", "addOn": "ONE", "command": "FAIL no|such zone|",
                                        "accepted": false, "error": "no\nsuch zone", "findings": []})"));
    EXPECT_EQ(lines[2], json::parse(R"({"macroFile": "m.macro", "exitStatus": 1, "findings": []})"));
}

TEST_F(Json, OnTheStandardOutputIsAlone) {
    const ProgramResult result = runMacro("ONE ECHO a\nONE SAY b\n", {"--json", "-", "--strict"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(objectsOf(result.out).size(), 3U) << result.out;
    EXPECT_EQ(result.err, "a\nb\n");
}

TEST_F(Json, TellsTheFindingsOfEachCommandOnce) {
    runMacro("ONE LEAVELOCKOPEN\nONE ECHO a\nONE LEAVELOCKOPEN\nONE THROWATSHUTDOWN\n", {"--json", "r.jsonl"});
    const std::vector<json> lines = objectsIn("r.jsonl");
    ASSERT_EQ(lines.size(), 5U);
    std::vector<std::string> rules;
    for (const json& line : lines) {
        std::string here;
        for (const json& finding : line.at("findings")) here += finding.at("rule").get<std::string>() + ' ';
        rules.push_back(here);
    }
    EXPECT_EQ(rules, std::vector<std::string>({"unbalanced-lock ", "", "unbalanced-lock ", "", "escaped-exception "}));
    const json& finding = lines[0].at("findings").at(0);
    EXPECT_EQ(finding.at("severity"), "error");
    EXPECT_EQ(finding.at("addOn"), "ONE");
    EXPECT_NE(finding.at("message").get<std::string>().find("VexaUtilLockStart"), std::string::npos);
}

TEST_F(Json, IsThereWhenTheAddOnTakesTheProgramDown) {
    EXPECT_EQ(runMacro("ONE ECHO a\nONE KILL now\n", {"--json", "r.jsonl"}).status, 5);
    const std::vector<json> lines = objectsIn("r.jsonl");
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0].at("command"), "ECHO a");
    EXPECT_EQ(lines[1].at("place"), "m.macro:2");
    EXPECT_EQ(lines[1].at("addOn"), "ONE");
    EXPECT_EQ(lines[1].at("command"), "KILL now");
    EXPECT_EQ(lines[1].at("accepted"), false);
    EXPECT_EQ(lines[1].at("error"), "the process ended: SIGKILL (Killed)");
    EXPECT_EQ(lines[2].at("macroFile"), "m.macro");
    EXPECT_EQ(lines[2].at("exitStatus"), 5);
    EXPECT_EQ(lines[2].at("error"), "the process ended: SIGKILL (Killed)");
}

TEST_F(Json, TellsOfACommandThatHangs) {
    write("m.macro", "HANGING HANG\n");
    const ProgramResult result =
        runProgram(runner({"run", "m.macro", "--addon", ADDON_HANGING, "--timeout", "0.2", "--json", "r.jsonl"}));
    EXPECT_EQ(result.status, 4);
    const std::vector<json> lines = objectsIn("r.jsonl");
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0].at("accepted"), false);
    EXPECT_EQ(lines[0].at("findings").at(0).at("rule"), "command-timeout");
    EXPECT_EQ(lines[1].at("exitStatus"), 4);
}

TEST_F(Json, TellsOfAMacroThatCannotBeRun) {
    EXPECT_EQ(runMacro("TWO ECHO a\n", {"--json", "-"}).out,
              "{\"macroFile\":\"m.macro\",\"exitStatus\":2,\"findings\":[]}\n");
}

TEST_F(Json, HoldsWhatIsNoUtf8AsAReplacementCharacter) {
    EXPECT_EQ(objectsOf(runMacro("ONE ECHO \xFF\n", {"--json", "-"}).out).at(0).at("command"), "ECHO \xEF\xBF\xBD");
}

TEST_F(Json, RefusesAFileOfTheRun) {
    EXPECT_EQ(runMacro("ONE SAY a\n", {"--json", "m.macro"}).err,
              "m.macro: cannot be written: the command also uses it as m.macro\n");
    const ProgramResult result = runMacro("ONE SAY a\n", {"--json", "x", "--trace", "./x"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "x: cannot be written: the command also uses it as ./x\n");
    EXPECT_EQ(read("m.macro"), "ONE SAY a\n");
}

TEST_F(Json, ThatCannotBeWrittenIsAnError) {
    write("m.macro", "ONE ECHO a\n");
    const std::string command = VEXA_STANDIN " run m.macro --json - --addon " ADDON_ONE " > /dev/full";
    const ProgramResult result = runProgram({{"sh", "-c", command}, folder(), "", false});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "a\n<stdout>: cannot be written: No space left on device\n");
}

}  // namespace
}  // namespace vexa::e2e
