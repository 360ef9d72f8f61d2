// Tests what the program suggests when an add-on refuses a command.

#include <nlohmann/json.hpp>

#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

class SuggestionOf : public RunnerTest {
protected:
    SuggestionOf() { std::filesystem::copy_file(ADDON_ONE, folder() / "one.so"); }

    void describe() const {
        write("one.commands.json", R"({"addon": "ONE", "commands": [
            {"name": "FAIL", "kind": "processor", "purpose": "Fails.", "options": [
                {"name": "TIMES", "type": "Int64", "help": "how often"}]},
            {"name": "ECHO", "kind": "processor", "purpose": "Prints."}]})");
    }

    ProgramResult run(const std::string& macro, const std::vector<std::string>& options = {}) const {
        write("m.macro", macro);
        std::vector<std::string> arguments = {"run", "m.macro", "--addon", "./one.so", "--keep-going"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return runProgram(runner(arguments));
    }
};

TEST_F(SuggestionOf, RunFollowsTheMessageOfTheAddOn) {
    describe();
    const ProgramResult result = run("ONE FAIL TIMS = 1\nONE ECO TIMES = 1\nONE FAIL TIMES = 1\n");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(withoutSources(result.err),
              "m.macro:1: ONE: TIMS = 1\n    hint:  TIMS: did you mean TIMES?\n"
              "m.macro:2: ONE: unknown command ECO\n    hint:  ECO: did you mean ECHO?\n"
              "m.macro:3: ONE: TIMES = 1\n");
}

TEST_F(SuggestionOf, RunNeedsADescription) {
    const ProgramResult result = run("ONE FAIL TIMS = 1\n");
    EXPECT_EQ(withoutSources(result.err), "m.macro:1: ONE: TIMS = 1\n");
}

TEST_F(SuggestionOf, RunReadsTheDescriptionOnlyAfterARefusal) {
    write("one.commands.json", "{");
    EXPECT_EQ(run("ONE ECHO a\n").err, "");
    const std::string refused = run("ONE FAIL a\nONE FAIL b\n").err;
    EXPECT_EQ(refused.rfind("./one.commands.json:1:", 0), 0U) << refused;
    EXPECT_EQ(refused.find("commands.json", 20), std::string::npos) << refused;
}

TEST_F(SuggestionOf, RunIsInTheResultsAndInTheAnnotations) {
    describe();
    const ProgramResult result = run("ONE FAIL TIMS = 1\nONE FAIL\n", {"--json", "r.jsonl", "--sarif", "r.sarif"});
    EXPECT_EQ(result.status, 1) << result.err;
    std::istringstream lines(read("r.jsonl"));
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(nlohmann::json::parse(line).at("suggestion"), "TIMS: did you mean TIMES?");
    EXPECT_EQ(nlohmann::json::parse(line).at("error"), "TIMS = 1");
    std::getline(lines, line);
    EXPECT_FALSE(nlohmann::json::parse(line).contains("suggestion"));
    EXPECT_NE(read("r.sarif").find("did you mean TIMES?"), std::string::npos);
}

TEST_F(SuggestionOf, ReplFollowsTheMessageOfTheAddOn) {
    describe();
    Program repl = runner({"repl", "--addon", "./one.so"});
    repl.input = "ONE FAIL TIMS = 1\n";
    EXPECT_EQ(withoutSources(runProgram(repl).err), "ONE: TIMS = 1\n    hint:  TIMS: did you mean TIMES?\n");
}

}  // namespace
}  // namespace vexa::e2e
