#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

class Docs : public RunnerTest {
protected:
    Docs() {
        write("a.commands.json", R"({"addon": "A", "commands": [{"name": "C", "kind": "command", "purpose": "p"}]})");
    }
};

TEST_F(Docs, PrintsAPageInEachForm) {
    EXPECT_EQ(runProgram(runner({"docs", "a.commands.json"})).out, "# Commands of A\n\n## C\n\np\n\n    A C\n");
    EXPECT_EQ(runProgram(runner({"docs", "a.commands.json", "--html"})).out.substr(0, 15), "<!DOCTYPE html>");
    EXPECT_EQ(runProgram(runner({"docs", "a.commands.json", "--table"})).out,
              "| command | option | type | default | meaning |\n|---|---|---|---|---|\n| `C` | | | | p |\n");
}

TEST_F(Docs, RefusesAWrongDescription) {
    write("a.commands.json", "[]");
    const ProgramResult result = runProgram(runner({"docs", "a.commands.json"}));
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "a.commands.json: /: expected an object (1:1)\n");
}

TEST_F(Docs, RefusesAWrongExample) {
    write("a.commands.json",
          R"({"addon": "A", "commands": [{"name": "C", "kind": "command", "purpose": "p", "examples": ["C", "D"]}]})");
    for (const char* const command : {"docs", "random"}) {
        const ProgramResult result = runProgram(runner({command, "a.commands.json"}));
        EXPECT_EQ(result.status, 2) << command;
        EXPECT_EQ(result.out, "") << command;
        EXPECT_EQ(result.err, "a.commands.json: /commands/0/examples/1: A has no command D; did you mean C?\n");
    }
}

TEST_F(Docs, MakeTheTablesOfTheExamples) {
    for (const std::string name : {"hello-command", "data-loader", "probe-stats"}) {
        const std::string example = VEXA_DOCS "/../examples/" + name;
        const ProgramResult result = runProgram(runner({"docs", example + "/" + name + ".commands.json", "--table"}));
        EXPECT_EQ(result.status, 0) << result.err;
        std::ifstream file(example + "/README.md");
        const std::string readme{std::istreambuf_iterator<char>(file), {}};
        EXPECT_NE(readme.find(result.out), std::string::npos) << "examples/" << name << "/README.md lacks\n"
                                                              << result.out;
    }
}

}  // namespace
}  // namespace vexa::e2e
