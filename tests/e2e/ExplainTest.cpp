#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

using Explain = RunnerTest;

TEST_F(Explain, ListsAllRulesWithSeverityAndSummary) {
    const ProgramResult result = runProgram(runner({"explain"}));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    for (const char* part :
         {"Calls in pairs\n",
          "  lock-identity             error    VexaUtilLockFinish must get the same identity as "
          "VexaUtilLockStart.\n",
          "\nMutexes\n", "  percent-backwards         warning  The percentage of a task must not decrease.\n"}) {
        EXPECT_NE(result.out.find(part), std::string::npos) << part << " in " << result.out;
    }
}

TEST_F(Explain, TellsRuleReasonAndHint) {
    const ProgramResult result = runProgram(runner({"explain", "double-free"}));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out,
              "double-free, error\n"
              "\n"
              "  Rule:  A handle must be freed only once.\n"
              "  Why:   The second call may free memory that already belongs to something\n"
              "         else. The host then crashes later, in another place.\n"
              "  Hint:  Keep the handle in only one variable: the host sets that variable to\n"
              "         null. Or let one object own the handle.\n");
}

TEST_F(Explain, OffersTheNearestRules) {
    struct Case {
        const char* why;
        const char* name;
        const char* offer;
    };
    const Case cases[] = {
        {"a slip of the pen", "duble-free", "is double-free meant?"},
        {"a part of several names", "lock", "is unbalanced-lock, lock-identity or mutex-locked-twice meant?"},
        {"a part of two", "double", "is double-free meant?"},
        {"nothing near", "frobnicate", "'vexa-standin explain' lists them"},
        {"nothing at all", "", "'vexa-standin explain' lists them"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        const ProgramResult result = runProgram(runner({"explain", c.name}));
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, "vexa-standin: there is no rule \"" + std::string(c.name) + "\"; " + c.offer + '\n');
    }
}

TEST_F(Explain, TakesARuleOrThePage) {
    EXPECT_EQ(runProgram(runner({"explain", "double-free", "--markdown"})).status, 2);
    EXPECT_EQ(runProgram(runner({"explain", "double-free", "null-handle"})).status, 2);
}

TEST_F(Explain, WritesThePageOfTheContract) {
    const ProgramResult page = runProgram(runner({"explain", "--markdown"}));
    EXPECT_EQ(page.status, 0);
    std::ifstream file(VEXA_DOCS "/contract.md", std::ios::binary);
    const std::string committed((std::istreambuf_iterator<char>(file)), {});
    EXPECT_EQ(page.out, committed)
        << "renew it: vexa-standin explain --markdown > docs/contract.md, in the folder of the sources";
}

TEST_F(Explain, ListsWhatAttachCannotSee) {
    const ProgramResult result = runProgram(runner({"explain", "--attach"}));
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.out.find("string-overrun\n  Never reported: the bytes after a host string belong to the host. "),
              std::string::npos)
        << result.out;
    EXPECT_NE(result.out.find("\n  - Add-ons that are linked to the program, instead of loaded by dlopen().\n"),
              std::string::npos);
    EXPECT_EQ(result.out.find("unbalanced-lock"), std::string::npos);
    EXPECT_EQ(runProgram(runner({"explain", "double-free", "--attach"})).status, 2);
}

TEST_F(Explain, PrintsThePageOfAttach) {
    const ProgramResult page = runProgram(runner({"explain", "--attach", "--markdown"}));
    std::ifstream file(std::filesystem::path(VEXA_DOCS) / "attach.md");
    EXPECT_EQ(page.out, std::string(std::istreambuf_iterator<char>(file), {}))
        << "renew it: vexa-standin explain --attach --markdown > docs/attach.md, in the folder of the sources";
}

}  // namespace
}  // namespace vexa::e2e
