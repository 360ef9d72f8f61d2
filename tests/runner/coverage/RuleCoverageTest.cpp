#include "coverage/RuleCoverage.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vexa::runner {
namespace {

TracedSpan callOf(const std::string& function) {
    TracedSpan span;
    span.name = function;
    return span;
}

std::vector<RuleCoverage> coverageOf(const TracedRun& run) {
    RuleCoverageCollector collector;
    collector.runBegan(run);
    for (std::size_t i = 0; i < run.tracks.size(); ++i) collector.trackChanged(i, run.tracks[i]);
    for (std::size_t i = 0; i < run.spans.size(); ++i) {
        const auto isOfSpan = [=](const TracedEntry& entry) { return entry.span == i; };
        const auto entry = std::find_if(run.entries.begin(), run.entries.end(), isOfSpan);
        collector.spanEnded(run.spans[i], entry == run.entries.end() ? nullptr : &*entry);
    }
    for (const TracedFinding& finding : run.findings) collector.findingMade(finding.rule);
    return collector.coverage();
}

RuleCoverage coverageOf(const TracedRun& run, const std::string& rule) {
    const std::vector<RuleCoverage> all = coverageOf(run);
    return *std::find_if(all.begin(), all.end(), [&](const RuleCoverage& one) { return rule == one.rule->name; });
}

TracedRun runOf(const std::string& kind, bool succeeded) {
    TracedRun run;
    run.spans.emplace_back().kind = TracedSpan::Kind_e::Entry;
    run.spans.back().end = 1;
    run.entries.push_back({0, kind, "ONE", "", "", succeeded, "", 0});
    return run;
}

TEST(RuleCoverage, KnowsWhatTouchesEveryRule) {
    for (const standin::Rule& rule : standin::rules()) EXPECT_NE(whatTouches(rule.name), "") << rule.name;
    EXPECT_EQ(whatTouches("none"), "");
    EXPECT_EQ(coverageOf(TracedRun()).size(), standin::rules().size());
}

TEST(RuleCoverage, OfARunThatDidNothingIsNone) {
    for (const RuleCoverage& one : coverageOf(TracedRun())) {
        EXPECT_EQ(one.coverage, Coverage_e::Untouched) << one.rule->name;
    }
}

TEST(RuleCoverage, NamesTheFunctionsThatTouchARule) {
    EXPECT_EQ(whatTouches("unbalanced-lock"), "VexaUtilLockStart, VexaUtilLockFinish");
}

TEST(RuleCoverage, IsTouchedByACallOfAFunction) {
    TracedRun run;
    run.spans = {callOf("VexaUtilLockStart")};
    EXPECT_EQ(coverageOf(run, "unbalanced-lock").coverage, Coverage_e::Touched);
    EXPECT_EQ(coverageOf(run, "leaked-set").coverage, Coverage_e::Untouched);
}

TEST(RuleCoverage, IsBrokenByAFinding) {
    TracedRun run;
    run.findings = {{0, 0, "leaked-set", "{}"}, {0, 0, "leaked-set", "{}"}};
    EXPECT_EQ(coverageOf(run, "leaked-set").coverage, Coverage_e::Broken);
    EXPECT_EQ(coverageOf(run, "leaked-set").findings, 2U);
}

TEST(RuleCoverage, IsSuppressedOnRequest) {
    TracedRun run;
    run.suppressed = {"leaked-set", "null-handle"};
    run.spans = {callOf("VexaUtilSetAlloc")};
    EXPECT_EQ(coverageOf(run, "leaked-set").coverage, Coverage_e::Suppressed);
    EXPECT_EQ(coverageOf(run, "leaked-string").coverage, Coverage_e::Untouched);
}

TEST(RuleCoverage, IsTouchedByWhatBecameOfACommand) {
    EXPECT_EQ(coverageOf(runOf("command", false), "missing-errmsg").coverage, Coverage_e::Touched);
    EXPECT_EQ(coverageOf(runOf("command", true), "missing-errmsg").coverage, Coverage_e::Untouched);
    EXPECT_EQ(coverageOf(runOf("loading", false), "missing-errmsg").coverage, Coverage_e::Untouched);
    EXPECT_EQ(coverageOf(runOf("command", true), "errmsg-on-success").coverage, Coverage_e::Touched);
    EXPECT_EQ(coverageOf(runOf("loading", true), "escaped-exception").coverage, Coverage_e::Touched);
}

TEST(RuleCoverage, IsTouchedByASecondThreadAndNoScope) {
    TracedRun run;
    run.tracks = {{"thread 1", false}, {"lock", true}};
    EXPECT_EQ(coverageOf(run, "wrong-thread").coverage, Coverage_e::Untouched);
    run.tracks.push_back({"thread 2", false});
    EXPECT_EQ(coverageOf(run, "wrong-thread").coverage, Coverage_e::Touched);
}

TEST(RuleCoverage, IsTouchedByOptionsThatCheckMore) {
    TracedRun run;
    run.hasTimeLimit = true;
    run.isStrict = true;
    EXPECT_EQ(coverageOf(run, "command-timeout").coverage, Coverage_e::Touched);
    EXPECT_EQ(coverageOf(run, "recording-not-replayable").coverage, Coverage_e::Untouched) << "nothing was recorded";
    run.spans = {callOf("VexaUtilMacroRecordExtCommand")};
    run.spans[0].result = "1";
    EXPECT_EQ(coverageOf(run, "recording-not-replayable").coverage, Coverage_e::Touched);
}

}  // namespace
}  // namespace vexa::runner
