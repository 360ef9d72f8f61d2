#include "coverage/TraceCoverage.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

using Kind_e = TracedSpan::Kind_e;

// A run in which a thread other than the host's makes the second call.
class TraceCoverageTest : public ::testing::Test {
protected:
    void enter(std::int64_t start, std::optional<std::int64_t> end, const std::string& command, bool succeeded) {
        m_run.entries.push_back({m_run.spans.size(), "command", "ONE", command, "", succeeded, "", 0});
        span(Kind_e::Entry, 0, start, end).name = "ONE " + command;
    }
    void call(std::size_t track, std::int64_t start, std::optional<std::int64_t> end, const std::string& result) {
        TracedSpan& made = span(Kind_e::Call, track, start, end);
        made.name = "VexaUtilStringAlloc";
        made.result = result;
    }
    const CommandCoverage& coverageOf(const std::string& command) {
        m_coverage = coverageOfTrace(m_run);
        return m_coverage.commands[command];
    }

    TracedRun m_run;

private:
    TracedSpan& span(Kind_e kind, std::size_t track, std::int64_t start, std::optional<std::int64_t> end) {
        TracedSpan& made = m_run.spans.emplace_back();
        made.kind = kind;
        made.track = track;
        made.start = start;
        made.end = end;
        m_run.end = std::max({m_run.end, start, end.value_or(0)});
        return made;
    }

    Coverage m_coverage;
};

TEST_F(TraceCoverageTest, GivesEachCallToItsCommand) {
    enter(1, 4, "A", true);
    call(0, 2, 3, "string#1");
    enter(5, 8, "B FILE=1", false);
    call(1, 6, 7, "null");
    call(0, 9, 10, "string#2");
    EXPECT_EQ(coverageOf("ONE A").calls.at("VexaUtilStringAlloc"), Names{"handle"});
    EXPECT_EQ(coverageOf("ONE A").ends, Names{kAccepted});
    EXPECT_EQ(coverageOf("ONE B").calls.at("VexaUtilStringAlloc"), Names{"null"});
    EXPECT_EQ(coverageOf("ONE B").ends, Names{kFailed});
    EXPECT_EQ(coverageOf("ONE B").options, Names{"FILE"});
    EXPECT_EQ(coverageOf(kOutside).calls.at("VexaUtilStringAlloc"), Names{"handle"});
    EXPECT_EQ(coverageOfTrace(m_run).rules.count("wrong-thread"), 1U);
}

TEST_F(TraceCoverageTest, CountsNoAnswerOfACallThatDidNotReturn) {
    enter(1, std::nullopt, "A", false);
    call(0, 2, 3, "threw");
    call(0, 4, std::nullopt, "");
    EXPECT_EQ(coverageOf("ONE A").calls.at("VexaUtilStringAlloc"), Names());
    EXPECT_EQ(coverageOf("ONE A").ends, Names());
}

}  // namespace
}  // namespace vexa::runner
