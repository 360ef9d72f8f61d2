// Tests an add-on that closes the standard output of its process. Its later output is lost, and the runner says so.

#include <nlohmann/json.hpp>

#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

const char* const kLost = "vexa-standin: the standard output could not be written\n";

class ClosedOutput : public RunnerTest {
protected:
    ClosedOutput() {
        write("closing.macro", "ONE ECHO before\nONE CLOSEOUT\nONE ECHO after\n");
        write("silent.macro", "ONE CLOSEOUT\n");
        write("other.macro", "ONE ECHO other\n");
    }

    ProgramResult run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.end(), {"--addon", ADDON_ONE});
        return runProgram(runner(arguments));
    }
};

TEST_F(ClosedOutput, MakesARunFail) {
    for (const char* macro : {"closing.macro", "silent.macro"}) {
        SCOPED_TRACE(macro);
        const ProgramResult result = run({"run", macro, "--json", "r.jsonl", "--record", "recorded.macro"});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err, kLost);
        const std::string results = read("r.jsonl");
        const std::string last = results.substr(results.rfind('\n', results.size() - 2) + 1);
        EXPECT_EQ(nlohmann::json::parse(last).at("exitStatus"), 2);
        EXPECT_EQ(read("recorded.macro").rfind("# Macro commands", 0), 0U);
    }
}

TEST_F(ClosedOutput, FailsOneOfManyRuns) {
    const ProgramResult result = run({"run", "closing.macro", "silent.macro", "other.macro"});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.out.find("other\n"), std::string::npos) << result.out;
    EXPECT_EQ(result.err, std::string(kLost) + kLost +
                              "vexa-standin: 3 macro files run, 2 failed\n"
                              "    closing.macro: wrong input, or a file could not be read or written\n"
                              "    silent.macro: wrong input, or a file could not be read or written\n");
}

TEST_F(ClosedOutput, FailsATestOfAMacro) {
    const ProgramResult result = run({"test", "closing.macro", "silent.macro", "other.macro", "--accept"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out,
              "failed closing.macro: the standard output could not be written\n"
              "> ONE ECHO before\n"
              "  before\n"
              "> ONE CLOSEOUT\n"
              "> ONE ECHO after\n"
              "failed silent.macro: the standard output could not be written\n"
              "> ONE CLOSEOUT\n"
              "passed other.macro: accepted\n"
              "1 of 3 macros passed\n");
    EXPECT_FALSE(std::filesystem::exists(folder() / "closing.expected"));
}

}  // namespace
}  // namespace vexa::e2e
