// Tests the parts of the page's data that sum up or choose events.

#include <gtest/gtest.h>

#include "commands/report/BoundedText.h"
#include "commands/report/FlameTree.h"
#include "commands/report/KeptEntries.h"
#include "commands/report/KeptSpans.h"
#include "commands/report/PercentSteps.h"
#include "commands/report/TimeBins.h"

namespace vexa::runner {
namespace {

using Kind_e = TracedSpan::Kind_e;

TracedSpan spanOf(std::int64_t start, std::int64_t end, const std::string& name = "f", Kind_e kind = Kind_e::Call) {
    TracedSpan span;
    span.kind = kind;
    span.name = name;
    span.start = start;
    span.end = end;
    return span;
}

// ---- Texts

TEST(TextBudget, CutsALongTextBetweenCharacters) {
    EXPECT_EQ(TextBudget(100, 4).cut("abcd"), "abcd");
    EXPECT_EQ(TextBudget(100, 4).cut("abcde"), "abcd...");
    EXPECT_EQ(TextBudget(100, 4).cut("abc\xC3\xA9"), "abc...");
}

TEST(TextBudget, CountsWhatAPageEscapes) { EXPECT_EQ(TextBudget(100, 12).cut("<<<"), "<<..."); }

TEST(TextBudget, HasNothingLeftWhenItIsUsedUp) {
    TextBudget budget(5, 4);
    EXPECT_EQ(budget.cut("abcd"), "abcd");
    EXPECT_EQ(budget.cut("abcd"), "a...");
    EXPECT_EQ(budget.cut("abcd"), "...");
}

TEST(TextTable, StoresEachTextOnce) {
    TextTable table(TextBudget(100, 3));
    EXPECT_EQ(table.numberOf("abcd"), 0U);
    EXPECT_EQ(table.numberOf("x"), 1U);
    EXPECT_EQ(table.numberOf("abcd"), 0U);
    EXPECT_EQ(table.numberOf("abce"), 0U) << "it looks the same";
    EXPECT_EQ(table.texts(), (std::vector<std::string>{"abc...", "x"}));
}

// ---- Intervals

TEST(TimeBins, CountASpanWhereItStartsAndItsTimeWhereItIs) {
    TimeBins bins;
    const std::int64_t width = bins.width();
    bins.add(spanOf(width / 2, 2 * width + 10, "long"), 2 * width + 10);
    bins.add(spanOf(2 * width + 20, 2 * width + 50, "short"), 2 * width + 50);
    const auto& row = bins.rows().at({0, 0});
    ASSERT_EQ(row.size(), 3U);
    EXPECT_EQ(row[0].count, 1U);
    EXPECT_EQ(row[0].busy, width / 2);
    EXPECT_EQ(row[0].longest, width + width / 2 + 10);
    EXPECT_EQ(bins.names().at(row[0].name), "long");
    EXPECT_EQ(row[1].count, 0U);
    EXPECT_EQ(row[1].busy, width);
    EXPECT_EQ(row[2].count, 1U);
    EXPECT_EQ(row[2].busy, 10 + 30);
    EXPECT_EQ(bins.names().at(row[2].name), "short");
}

TEST(TimeBins, AreFewAndKeepTheirSumsHoweverManySpansThereAre) {
    TimeBins bins;
    constexpr std::int64_t kSpans = 200000;
    constexpr std::int64_t kApart = 5000;
    for (std::int64_t i = 0; i < kSpans; ++i) bins.add(spanOf(i * kApart, i * kApart + 7), i * kApart + 7);
    std::size_t count = 0;
    std::int64_t busy = 0;
    for (const TimeBins::Bin& bin : bins.rows().at({0, 0})) {
        count += bin.count;
        busy += bin.busy;
    }
    EXPECT_EQ(count, kSpans);
    EXPECT_EQ(busy, 7 * kSpans);
    EXPECT_LE(bins.rows().at({0, 0}).size(), 30000U);
    EXPECT_GT(bins.rows().at({0, 0}).size(), 5000U);
}

TEST(TimeBins, TakeASpanOfDays) {
    TimeBins bins;
    constexpr std::int64_t kEnd = 1LL << 53;
    bins.add(spanOf(0, kEnd), kEnd);
    std::int64_t busy = 0;
    for (const TimeBins::Bin& bin : bins.rows().at({0, 0})) busy += bin.busy;
    EXPECT_EQ(busy, kEnd);
}

// ---- The flame view

// Returns "a/b/c count self" for each node that was open, in the order of the nodes.
std::vector<std::string> linesOf(const FlameTree& flame) {
    std::vector<std::string> paths;
    std::vector<std::string> lines;
    for (const FlameTree::Node& node : flame.nodes()) {
        const std::string parent = paths.empty() || node.parent == 0 ? "" : paths[node.parent] + '/';
        paths.push_back(paths.empty() ? "" : parent + flame.names()[node.name]);
        if (paths.size() == 1 || (node.count == 0 && node.self == 0)) continue;
        lines.push_back(paths.back() + ' ' + std::to_string(node.count) + ' ' + std::to_string(node.self));
    }
    return lines;
}

class FlameTreeTest : public testing::Test {
protected:
    std::size_t begin(std::int64_t time, const std::string& name, Kind_e kind, std::size_t track = 0) {
        TracedSpan span = spanOf(time, time, name, kind);
        span.track = track;
        m_spans.push_back(span);
        m_flame.began(m_spans.size() - 1, span, "thread " + std::to_string(track + 1));
        return m_spans.size() - 1;
    }
    void end(std::size_t index, std::int64_t time) { m_flame.ended(index, m_spans[index], time); }
    void call(std::int64_t from, std::int64_t to, const std::string& name, std::size_t track = 0) {
        end(begin(from, name, Kind_e::Call, track), to);
    }

    FlameTree m_flame;
    std::vector<TracedSpan> m_spans;
};

using Lines = std::vector<std::string>;

TEST_F(FlameTreeTest, SumsCommandsAndTheirCalls) {
    const std::size_t first = begin(0, "SAY", Kind_e::Entry);
    call(10, 12, "f");
    call(20, 25, "f");
    end(first, 100);
    const std::size_t second = begin(200, "SAY", Kind_e::Entry);
    end(second, 207);
    EXPECT_EQ(linesOf(m_flame), (Lines{"SAY 2 100", "SAY/f 2 7"}));
    EXPECT_EQ(m_flame.nodes()[2].longest, 5);
}

TEST_F(FlameTreeTest, HasCallsInTheScopesThatHoldThem) {
    const std::size_t command = begin(0, "SAY", Kind_e::Entry);
    const std::size_t start = begin(1, "start", Kind_e::Call);
    const std::size_t scope = begin(3, "lock", Kind_e::Scope, 9);
    end(start, 3);
    call(5, 9, "f");
    const std::size_t finish = begin(10, "finish", Kind_e::Call);
    end(scope, 10);
    end(finish, 14);
    end(command, 20);
    EXPECT_EQ(linesOf(m_flame),
              (Lines{"SAY 1 7", "SAY/start 1 2", "SAY/lock 1 3", "SAY/lock/f 1 4", "SAY/finish 1 4"}));
}

TEST_F(FlameTreeTest, KnowsTheThreadThatStartedAScope) {
    const std::size_t command = begin(0, "SAY", Kind_e::Entry, 0);
    const std::size_t mine = begin(1, "lock", Kind_e::Call, 1);
    const std::size_t scope = begin(2, "mutex", Kind_e::Scope, 9);
    end(mine, 2);
    call(3, 4, "f", 0);
    call(3, 5, "g", 1);
    end(scope, 6);
    end(command, 10);
    EXPECT_EQ(linesOf(m_flame),
              (Lines{"SAY 1 9", "thread 2/lock 1 1", "thread 2/mutex 1 2", "SAY/f 1 1", "thread 2/mutex/g 1 2"}));
}

TEST_F(FlameTreeTest, IsSmallHoweverManyNamesThereAre) {
    for (int i = 0; i < 30000; ++i) {
        const std::size_t command = begin(i, "SAY " + std::to_string(i), Kind_e::Entry);
        end(command, i + 1);
    }
    const std::size_t command = begin(40000, "LAST", Kind_e::Entry);
    call(40001, 40002, "f");
    end(command, 40003);
    EXPECT_LE(m_flame.nodes().size(), 20000U);
    std::int64_t sum = 0;
    for (const FlameTree::Node& node : m_flame.nodes()) sum += node.self;
    EXPECT_EQ(sum, 30000 + 3);
    EXPECT_EQ(m_flame.names().back(), "f") << "commands leave names for functions";
}

// ---- Chosen spans

TEST(KeptSpans, AreTheFirstTheSlowestAndThoseAroundFindings) {
    KeptSpans spans;
    constexpr std::size_t kSpans = 60000;
    constexpr std::size_t kSlow = 30000;
    constexpr std::size_t kFinding = 50000;
    for (std::size_t i = 0; i < kSpans; ++i) {
        spans.began(i);
        if (i == kFinding) spans.findingMade();
        const auto start = static_cast<std::int64_t>(10 * i);
        spans.ended(i, spanOf(start, start + (i == kSlow ? 9 : 1)));
    }
    const auto kept = spans.take();
    EXPECT_LT(kept.size(), 20000U);
    for (const std::size_t index : {std::size_t(0), std::size_t(9999), kSlow, kFinding - 10, kFinding, kFinding + 9}) {
        EXPECT_EQ(kept.count(index), 1U) << index;
    }
    EXPECT_EQ(kept.count(kFinding - 11), 0U);
    EXPECT_EQ(kept.count(kFinding + 100), 0U);
}

TEST(KeptSpans, HaveTheSpansThatWereOpenAtAFinding) {
    KeptSpans spans;
    constexpr std::size_t kOuter = 20000;
    for (std::size_t i = 0; i < kOuter; ++i) {
        spans.began(i);
        spans.ended(i, spanOf(0, 100));
    }
    spans.began(kOuter);
    spans.findingMade();
    for (std::size_t i = kOuter + 1; i < kOuter + 100; ++i) {
        spans.began(i);
        spans.ended(i, spanOf(0, 1));
    }
    spans.ended(kOuter, spanOf(0, 2));
    EXPECT_EQ(spans.take().count(kOuter), 1U);
}

TEST(KeptEntries, AreTheFirstAndTheFailed) {
    KeptEntries entries;
    constexpr std::size_t kFailed = 9000;
    for (std::size_t i = 0; i < 10000; ++i) {
        TracedEntry entry = {i, "command", "ONE", "SAY", "m:1", i != kFailed, "", 2};
        const bool isKept = entries.ended(spanOf(0, i == kFailed ? 1 : 5, "ONE SAY"), entry);
        if (i == 0 || i == kFailed || i == 9999) {
            EXPECT_EQ(isKept, i != 9999) << i;
        }
    }
    EXPECT_EQ(entries.commands(), 10000U);
    EXPECT_EQ(entries.failedCommands(), 1U);
    EXPECT_LE(entries.list().size(), 3500U);
    EXPECT_EQ(entries.totals().at("ONE SAY").calls, 20000U);
}

TEST(PercentSteps, AreFewAndEndWithTheLast) {
    PercentSteps percents;
    for (int i = 0; i < 100000; ++i) percents.add(10 * i, i % 100);
    EXPECT_LE(percents.steps().size(), 4000U);
    EXPECT_GE(percents.steps().size(), 1000U);
    EXPECT_EQ(percents.steps().back(), PercentSteps::Step(999990, 99));
}

}  // namespace
}  // namespace vexa::runner
