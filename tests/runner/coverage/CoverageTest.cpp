#include "coverage/Coverage.h"

#include <gtest/gtest.h>

#include "vexastandin/Finding.h"

namespace vexa::runner {
namespace {

using standin::ResultKind_e;

Coverage coverageOfCall(const std::string& command, const std::string& function, const Names& answers) {
    Coverage coverage;
    coverage.commands[command].calls[function] = answers;
    return coverage;
}

TEST(Coverage, TellsTheTwoAnswersOfEachKindOfResultApart) {
    struct Case {
        const char* why;
        ResultKind_e kind;
        const char* result;
        const char* answer;
    };
    const Case cases[] = {
        {"nothing is returned", ResultKind_e::None, "", ""},
        {"a handle", ResultKind_e::Handle, "string#1", "handle"},
        {"no handle", ResultKind_e::Handle, "null", "null"},
        {"yes", ResultKind_e::Boolean, "1", "1"},
        {"no", ResultKind_e::Boolean, "0", "0"},
        {"a style value", ResultKind_e::ReturnCode, "GetValueReturnCode_Ok", "value"},
        {"a style value of another type", ResultKind_e::ReturnCode, "GetValueReturnCode_OtherType", "no value"},
    };
    for (const Case& c : cases) EXPECT_EQ(answerIn(c.result, c.kind), c.answer) << c.why;
}

TEST(Coverage, MergesAnswersOfAllRuns) {
    Coverage coverage = coverageOfCall("A X", "VexaUtilStringAlloc", {"handle"});
    merge(coverage, coverageOfCall("A Y", "VexaUtilStringAlloc", {"null"}));
    merge(coverage, coverageOfCall("A Y", "VexaUtilLockStart", {}));
    EXPECT_EQ(coverage.commands.size(), 2U);
    EXPECT_EQ(callsOf(coverage).at("VexaUtilStringAlloc"), (Names{"handle", "null"}));
    EXPECT_EQ(callsOf(coverage).at("VexaUtilLockStart"), Names());
}

TEST(Coverage, TellsWhetherMergedFactsWereNew) {
    Coverage coverage = coverageOfCall("A X", "VexaUtilLockStart", {});
    EXPECT_FALSE(merge(coverage, {}));
    EXPECT_FALSE(merge(coverage, coverageOfCall("A X", "VexaUtilLockStart", {})));
    EXPECT_TRUE(merge(coverage, coverageOfCall("A Y", "VexaUtilLockStart", {}))) << "another command";
    EXPECT_TRUE(merge(coverage, coverageOfCall("A X", "VexaUtilLockFinish", {}))) << "another call";
    EXPECT_TRUE(merge(coverage, coverageOfCall("A X", "VexaUtilLockFinish", {"1"}))) << "another answer";
    Coverage more;
    more.rules = {"leaked-string"};
    EXPECT_TRUE(merge(coverage, more)) << "another rule";
    more.commands["A X"].ends = {kAccepted};
    EXPECT_TRUE(merge(coverage, more)) << "another end";
    more.commands["A X"].options = {"ZONES"};
    EXPECT_TRUE(merge(coverage, more)) << "another option";
    EXPECT_FALSE(merge(coverage, more));
}

TEST(Coverage, CountsEachFactOnce) {
    Coverage coverage = coverageOfCall("A X", "VexaUtilStringAlloc", {"handle"});
    merge(coverage, coverageOfCall("A Y", "VexaUtilStringAlloc", {"handle"}));
    coverage.rules = {"leaked-string"};
    const CoverageFigures figures = figuresOf(coverage);
    EXPECT_EQ(figures.calls.seen, 1U);
    EXPECT_EQ(figures.outcomes.seen, 1U);
    EXPECT_EQ(figures.rules.seen, 1U);
    EXPECT_EQ(figures.total().seen, 3U);
}

TEST(Coverage, IsMeasuredByTheWholeContract) {
    const CoverageFigures figures = figuresOf({});
    EXPECT_EQ(figures.calls.all, standin::hostFunctions().size());
    EXPECT_EQ(figures.rules.all, standin::rules().size());
    EXPECT_GT(figures.outcomes.all, 0U);
    EXPECT_EQ(figures.total().seen, 0U);
    EXPECT_EQ(Share().percent(), 0);
}

TEST(Coverage, DoesNotCountWhatTheContractDoesNotHave) {
    Coverage coverage = coverageOfCall("A X", "VexaUtilOfAnotherVersion", {"handle"});
    merge(coverage, coverageOfCall("A X", "VexaUtilLockStart", {"handle"}));
    coverage.rules = {"rule-of-another-version"};
    EXPECT_EQ(figuresOf(coverage).total().seen, 1U);
}

}  // namespace
}  // namespace vexa::runner
