#include "formats/Problem.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

standin::Finding lockLeftOpen() {
    standin::Finding finding;
    finding.rule = "unbalanced-lock";
    finding.message = "no finish";
    finding.addOnId = "STATS";
    finding.opened = standin::Place{6, "VexaUtilLockStart", "STATS LOAD", "m.macro:2", 1};
    finding.seen = standin::Place{0, "", "STATS SUM", "m.macro:3", 1};
    return finding;
}

TEST(Problem, OfAFindingHasBothPlaces) {
    const Problem problem = problemOf(lockLeftOpen(), "m.macro");
    EXPECT_EQ(problem.rule, "unbalanced-lock");
    EXPECT_EQ(problem.message, "no finish");
    EXPECT_EQ(problem.place.file, "m.macro");
    EXPECT_EQ(problem.place.line, 3U);
    EXPECT_EQ(problem.place.text, "STATS SUM");
    ASSERT_TRUE(problem.other);
    EXPECT_EQ(problem.other->line, 2U);
    EXPECT_EQ(problem.other->text, "call 6, VexaUtilLockStart");
    EXPECT_EQ(problem.details.rfind("    first: call 6", 0), 0U) << problem.details;
}

TEST(Problem, OfAFindingOutsideOfCommandsIsInTheFile) {
    standin::Finding finding = lockLeftOpen();
    finding.seen.macroLine = finding.opened->macroLine = "";
    const Problem problem = problemOf(finding, "m.macro");
    EXPECT_EQ(problem.place.file, "m.macro");
    EXPECT_EQ(problem.place.line, 0U);
    EXPECT_FALSE(problem.other);
}

TEST(Problem, HasAPlaceWhoseFileMayContainAColon) {
    EXPECT_EQ(placeOf("a:b.macro:12").file, "a:b.macro");
    EXPECT_EQ(placeOf("a:b.macro:12").line, 12U);
    EXPECT_EQ(placeOf("a:b.macro").file, "a:b.macro");
    EXPECT_EQ(placeOf("a:b.macro").line, 0U);
}

TEST(Problem, OfARefusedMacroHasTheLine) {
    const Problem ofLine = problemOf("a:b.macro", "a:b.macro:3: expected a command: none");
    EXPECT_EQ(ofLine.rule, kMacroRefused);
    EXPECT_EQ(ofLine.place.line, 3U);
    EXPECT_EQ(ofLine.message, "expected a command: none");
    const Problem ofFile = problemOf("m.macro", "m.macro: cannot be read: Permission denied");
    EXPECT_EQ(ofFile.place.file, "m.macro");
    EXPECT_EQ(ofFile.place.line, 0U);
    EXPECT_EQ(ofFile.message, "cannot be read: Permission denied");
}

TEST(Problem, SurvivesPacking) {
    Problem problem = problemOf(lockLeftOpen(), "m.macro");
    problem.debug = "vexa-standin debug m.macro";
    const Problem read = unpackedProblem(packed(problem));
    EXPECT_EQ(packed(read), packed(problem));
    EXPECT_EQ(read.severity, problem.severity);
    EXPECT_EQ(read.other->line, 2U);
    EXPECT_EQ(read.debug, problem.debug);
    EXPECT_FALSE(unpackedProblem(packed(problemOf({"m.macro:1", "A", "B"}, kCommandFailed, "no"))).other);
}

TEST(Problem, ShowsBytesOfTheAddOnThatCannotBePrinted) {
    EXPECT_EQ(problemOf({"m.macro:1", "A", "B\xFF"}, kCommandFailed, std::string("a\0\xFF", 3)).message, "a\\x00\\xFF");
    EXPECT_EQ(problemOf({"m.macro:1", "A", "B\xFF"}, kCommandFailed, "").place.text, "A B\\xFF");
}

TEST(Problem, KeepsItsFingerprintWhenItsLineMoves) {
    const Problem first = problemOf({"m.macro:1", "A", "B"}, kCommandFailed, "no");
    const Problem moved = problemOf({"m.macro:9", "A", "B"}, kCommandFailed, "no");
    EXPECT_EQ(fingerprintsOf({first}), fingerprintsOf({moved}));
}

TEST(Problem, HasAFingerprintOfItsOwn) {
    const Problem first = problemOf({"m.macro:1", "A", "B"}, kCommandFailed, "no");
    const Problem other = problemOf({"m.macro:1", "A", "C"}, kCommandFailed, "no");
    const std::vector<std::string> all = fingerprintsOf({first, other, first});
    EXPECT_NE(all[0], all[1]);
    EXPECT_NE(all[0], all[2]);
}

TEST(Problem, HasARuleWithHelp) {
    const ProblemReport report{"check", {}, {{"load", "Tests", standin::Severity_e::Error, "s", "w", "h"}}};
    for (const char* name : {"unbalanced-lock", kCommandFailed, kMacroRefused, kProcessEnded, kMacroFailed, "load"}) {
        const standin::Rule* const rule = findRule(report, name);
        ASSERT_NE(rule, nullptr) << name;
        EXPECT_STREQ(rule->name, name);
        EXPECT_STRNE(rule->hint, "");
    }
    EXPECT_EQ(findRule(report, "no-such-rule"), nullptr);
}

}  // namespace
}  // namespace vexa::runner
