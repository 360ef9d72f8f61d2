// Tests the command `random`.

#include <regex>

#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

class Random : public RunnerTest {
protected:
    Random() {
        write("stats.commands.json", R"({"addon": "STATS", "commands": [
            {"name": "MEAN", "kind": "processor", "purpose": "p", "before": ["LOAD", "LOAD"], "options": [
                {"name": "TIMES", "type": "Int64", "min": 1, "max": 9, "help": "h"},
                {"name": "TITLE", "type": "String", "required": true, "help": "h"}],
             "examples": ["MEAN TITLE = 'a'"]},
            {"name": "LOAD", "kind": "command", "purpose": "p"}]})");
    }

    ProgramResult random(std::vector<std::string> options) const {
        options.insert(options.begin(), {"random", "stats.commands.json"});
        return runProgram(runner(options));
    }
};

TEST_F(Random, StartsWithWhatOtherCommandsNeed) {
    const ProgramResult result = random({"--count", "1", "--seed", "4"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_TRUE(std::regex_match(
        result.out, std::regex("# Random commands of STATS, seed 4\nSTATS LOAD\n(# wrong: [^\n]*\n)?STATS [^\n]*\n")))
        << result.out;
}

TEST_F(Random, SaysWhichCommandsLintRefuses) {
    const std::string macro = random({"--count", "500"}).out;
    write("m.macro", macro);
    const ProgramResult lint = runProgram(runner({"lint", "m.macro", "--describe", "stats.commands.json"}));
    std::istringstream lines(macro);
    std::string line;
    int wrong = 0;
    bool isWrong = false;
    for (int number = 1; std::getline(lines, line); ++number) {
        const bool isFound = lint.out.find("m.macro:" + std::to_string(number) + ':') != std::string::npos;
        EXPECT_EQ(isFound, isWrong) << line;
        isWrong = line.rfind("# wrong: ", 0) == 0;
        if (isWrong) ++wrong;
    }
    EXPECT_GT(wrong, 80);
    EXPECT_LT(wrong, 170);
}

TEST_F(Random, RefusesADescriptionWithoutCommands) {
    write("stats.commands.json", R"({"addon": "STATS", "commands": []})");
    const ProgramResult result = random({});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err, "");
}

TEST_F(Random, NeedsACountAboveZero) { EXPECT_EQ(random({"--count", "0"}).status, 2); }

}  // namespace
}  // namespace vexa::e2e
