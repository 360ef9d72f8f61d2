#include <nlohmann/json.hpp>

#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

using Arguments = std::vector<std::string>;
using nlohmann::json;

class Lint : public RunnerTest {
protected:
    Lint() {
        write("stats.commands.json", R"({"addon": "STATS", "commands": [
            {"name": "MEAN", "kind": "processor", "purpose": "Prints the mean.", "options": [
                {"name": "TITLE", "type": "String", "help": "a title"},
                {"name": "TIMES", "type": "Int64", "max": 9, "help": "how often"}]},
            {"name": "LOAD", "kind": "command", "purpose": "Loads."}]})");
    }

    /// `vexa-standin lint m.macro --describe stats.commands.json ARGUMENTS`, where m.macro holds \p macro
    ProgramResult lint(const std::string& macro, const Arguments& more = {}) const {
        write("m.macro", macro);
        Arguments arguments = {"lint", "m.macro", "--describe", "stats.commands.json"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return runProgram(runner(arguments));
    }
};

TEST_F(Lint, PassesAMacroWithoutMistakes) {
    const ProgramResult result = lint("# a comment\nSTATS MEAN TIMES = 9\n");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "");
}

TEST_F(Lint, PrintsEachMistakeWithItsPlace) {
    const ProgramResult result = lint("STATS MEAN TITLE = 'Größe' TIMS = 1\n\nSTATZ MEAN\n");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out,
              "m.macro:1:28: error: MEAN has no option TIMS; did you mean TIMES? [unknown-option]\n"
              "m.macro:3:1: error: no description has the add-on STATZ; did you mean STATS? [unknown-add-on]\n");
    EXPECT_EQ(result.err, "2 errors, 0 warnings\n");
}

TEST_F(Lint, FailsForWarningsOnlyOnRequest) {
    const ProgramResult result = lint("STATS load\n");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out,
              "m.macro:1:7: warning: the add-on may expect LOAD, in this letter case, but found load "
              "[unknown-command]\n");
    EXPECT_EQ(lint("STATS load\n", {"--warnings-as-errors"}).status, 1);
}

TEST_F(Lint, FindsTheDescriptionBesideAnAddOnThatDoesNotExist) {
    write("m.macro", "STATS MEAN X = 1\n");
    EXPECT_EQ(runProgram(runner({"lint", "m.macro", "--addon", "./stats.so"})).status, 1);
    const ProgramResult missing = runProgram(runner({"lint", "m.macro", "--addon", "./other.so"}));
    EXPECT_EQ(missing.status, 2);
    EXPECT_EQ(missing.err, "./other.commands.json: cannot be read: No such file or directory\n");
}

TEST_F(Lint, NeedsADescription) {
    write("m.macro", "STATS MEAN\n");
    const ProgramResult result = runProgram(runner({"lint", "m.macro"}));
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("--describe or --addon is required"), std::string::npos) << result.err;
}

TEST_F(Lint, RefusesAnEndlessDescription) {
    write("m.macro", "STATS MEAN\n");
    const ProgramResult result = runProgram(runner({"lint", "m.macro", "--describe", "/dev/zero"}));
    EXPECT_EQ(result.err, "/dev/zero: cannot be read: File too large\n");
    EXPECT_EQ(result.status, 2);
}

TEST_F(Lint, RefusesAWrongDescriptionWithPointerAndPlace) {
    write("stats.commands.json",
          "{\"addon\": \"STATS\",\n"
          " \"commands\": [{\"name\": \"M\", \"kind\": \"processor\", \"purpose\": \"p\",\n"
          "  \"options\": [{\"name\": \"N\", \"type\": \"Int46\", \"help\": \"h\"}]}]}");
    const ProgramResult result = lint("STATS M\n");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err,
              "stats.commands.json: /commands/0/options/0/type: \"Int46\" is no type of an option of "
              "kind processor; is Int64 meant? (3:37)\n");
}

TEST_F(Lint, ReportsAMacroThatCannotBeReadAndGoesOn) {
    write("m.macro", "STATS X\n");
    const ProgramResult result =
        runProgram(runner({"lint", "nowhere.macro", "m.macro", "--describe", "stats.commands.json"}));
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.out.find("m.macro:1:7: error: STATS has no command X"), std::string::npos) << result.out;
    EXPECT_NE(result.err.find("nowhere.macro: cannot be read: No such file or directory"), std::string::npos);
}

TEST_F(Lint, ReadsTheStandardInput) {
    Program program = runner({"lint", "-", "--describe", "stats.commands.json"});
    program.input = "STATS X";
    EXPECT_EQ(runProgram(program).out.substr(0, 23), "<stdin>:1:7: error: STA");
}

TEST_F(Lint, WritesJson) {
    EXPECT_EQ(lint("\nSTATS MEAN TITLE = 'Größe' TIMES = 10\n", {"--json", "out.jsonl"}).status, 1);
    const json line = json::parse(read("out.jsonl"));
    EXPECT_EQ(line, json({{"file", "m.macro"},
                          {"line", 2},
                          {"column", 36},
                          {"endColumn", 38},
                          {"severity", "error"},
                          {"rule", "value-out-of-range"},
                          {"message", "TIMES: 10 is greater than 9"}}));
}

TEST_F(Lint, WritesSarifWithTheMarkedColumns) {
    EXPECT_EQ(lint("STATS MEAN TIMES = 10\n", {"--sarif", "out.sarif"}).status, 1);
    const json result = json::parse(read("out.sarif")).at("runs").at(0).at("results").at(0);
    EXPECT_EQ(result.at("ruleId"), "value-out-of-range");
    EXPECT_EQ(result.at("locations").at(0).at("physicalLocation").at("region"),
              json({{"startLine", 1}, {"startColumn", 20}, {"endLine", 1}, {"endColumn", 22}}));
}

TEST_F(Lint, AnnotatesThePlaceForGithub) {
    const ProgramResult result = lint("STATS MEAN TIMES = 10\n", {"--annotate", "github"});
    EXPECT_NE(result.out.find("::error file=m.macro,line=1,col=20,title=value-out-of-range::TIMES: 10 is greater"),
              std::string::npos)
        << result.out;
}

TEST_F(Lint, TakesALongMacro) {
    std::string macro;
    for (int i = 0; i < 10000; ++i) macro += "STATS MEAN TITLE = 'a b' TIMES = 3\n";
    const ProgramResult result = lint(macro);
    EXPECT_EQ(result.status, 0);
}

TEST_F(RunnerTest, SchemaPrintsTheSchemaOfDescriptions) {
    const ProgramResult result = runProgram(runner({"schema"}));
    EXPECT_EQ(result.status, 0);
    const json schema = json::parse(result.out);
    EXPECT_EQ(schema.at("$schema"), "http://json-schema.org/draft-07/schema#");
    EXPECT_EQ(schema.at("required"), json({"addon", "commands"}));
}

}  // namespace
}  // namespace vexa::e2e
