#include "commands/results/ResultsSummary.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

MacroResult resultOf(const std::string& file, std::optional<int> status, const std::string& error = "") {
    MacroResult result;
    result.macroFile = file;
    result.exitStatus = status;
    result.error = error;
    result.commands = 2;
    result.seconds = 0.5;
    return result;
}

TEST(ResultsSummary, CountsResultsAndNamesFailures) {
    ResultsSummary summary;
    summary.add(resultOf("a", 0), "1");
    summary.add(resultOf("b", 1), "1");
    summary.add(resultOf("c", 5, "the process ended: SIGSEGV"), "2");
    summary.add(resultOf("d", 99), "2");
    EXPECT_EQ(summary.text(),
              "4 macro files, 4 results: 1 succeeded, 3 failed\n"
              "0 macro files without a result\n"
              "8 commands in 2.0 s\n"
              "    b: a command failed\n"
              "    c: an add-on ended its process (the process ended: SIGSEGV)\n"
              "    d: exit status 99\n");
    EXPECT_EQ(static_cast<int>(summary.status()), 99);
}

TEST(ResultsSummary, IsWellIfEachMacroFileSucceeded) {
    ResultsSummary summary;
    summary.expect({"a", "b", "a"});
    for (const char* file : {"a", "a", "b"}) summary.add(resultOf(file, 0), "1");
    EXPECT_EQ(summary.text(),
              "2 macro files, 3 results: 3 succeeded, 0 failed\n"
              "0 macro files without a result, 0 with unexpected results\n"
              "6 commands in 1.5 s\n");
    EXPECT_EQ(summary.status(), ExitStatus_e::AllWell);
}

TEST(ResultsSummary, ComparesTheResultsWithTheList) {
    ResultsSummary summary;
    summary.expect({"a", "b", "c", "c", "c"});
    for (const char* file : {"d", "c", "b", "c", "b"}) summary.add(resultOf(file, 0), "1");
    EXPECT_EQ(summary.text(),
              "4 macro files, 5 results: 5 succeeded, 0 failed\n"
              "1 macro files without a result, 3 with unexpected results\n"
              "10 commands in 2.5 s\n"
              "    a: no result: it was not run, or the runner was killed\n"
              "    b: 2 results; it is in the list 1 time\n"
              "    c: 2 results; it is in the list 3 times\n"
              "    d: it has a result, and is not in the list\n");
    EXPECT_EQ(summary.status(), ExitStatus_e::BadUsageOrInput);
}

TEST(ResultsSummary, HasAHigherStatusIfAMacroHas) {
    ResultsSummary summary;
    summary.expect({"a", "b"});
    summary.add(resultOf("a", 4), "1");
    EXPECT_EQ(summary.status(), ExitStatus_e::CommandHung);
}

TEST(ResultsSummary, NamesRunsThatWereCutOff) {
    ResultsSummary summary;
    summary.add(resultOf("a", {}), "1");
    summary.add(resultOf("", {}), "2");
    summary.add(resultOf("b", {}), "3");
    summary.add(resultOf("b", 0), "4");
    EXPECT_EQ(summary.text(),
              "2 macro files, 1 results: 1 succeeded, 0 failed\n"
              "1 macro files without a result\n"
              "8 commands in 2.0 s\n"
              "    a: no result: it was not run, or the runner was killed\n"
              "    2: the end is missing: the runner was killed\n");
    EXPECT_EQ(summary.status(), ExitStatus_e::BadUsageOrInput);
}

TEST(ResultsSummary, ForgivesACutOffRunIfTheListIsComplete) {
    ResultsSummary summary;
    summary.expect({"b"});
    summary.add(resultOf("b", {}), "1");
    summary.add(resultOf("", {}), "1");
    summary.add(resultOf("b", 0), "2");
    EXPECT_EQ(summary.status(), ExitStatus_e::AllWell);
}

TEST(ResultsSummary, AllowsSeveralResultsWithoutAList) {
    ResultsSummary summary;
    summary.add(resultOf("a", 0), "1");
    summary.add(resultOf("a", 0), "1");
    EXPECT_EQ(summary.status(), ExitStatus_e::AllWell);
}

TEST(ResultsSummary, HasATestCaseForEachResultAndEachMissingOne) {
    ResultsSummary summary;
    summary.expect({"x/a.macro", "b.macro", "c.macro"});
    MacroResult failed = resultOf("x/a.macro", 1);
    failed.failures = "x/a.macro:2: no zone";
    summary.add(failed, "1");
    summary.add(resultOf("b.macro", 5), "1");
    const std::vector<JunitCase> cases = summary.cases();
    ASSERT_EQ(cases.size(), 3U);
    EXPECT_EQ(cases[0].className, "x");
    EXPECT_EQ(cases[0].name, "a");
    EXPECT_EQ(cases[0].seconds, 0.5);
    EXPECT_EQ(cases[0].outcome, JunitOutcome_e::Failure);
    EXPECT_EQ(cases[0].type, "exit status 1");
    EXPECT_EQ(cases[0].message, "a command failed");
    EXPECT_EQ(cases[0].text, "x/a.macro:2: no zone");
    EXPECT_EQ(cases[1].outcome, JunitOutcome_e::Error);
    EXPECT_EQ(cases[2].outcome, JunitOutcome_e::Error);
    EXPECT_EQ(cases[2].message, "no result: it was not run, or the runner was killed");
}

}  // namespace
}  // namespace vexa::runner
