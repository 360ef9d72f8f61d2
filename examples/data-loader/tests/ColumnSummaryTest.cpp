#include "ColumnSummary.h"

#include <gtest/gtest.h>

#include <limits>
#include <locale>

namespace dataloader {
namespace {

constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();

TEST(Summarize, MatchesValuesComputedByHand) {
    const ColumnSummary summary = summarize({"a", {2, 4, 4, 4, 5, 5, 7, 9}});
    EXPECT_EQ(summary.count, 8u);
    EXPECT_EQ(summary.missing, 0u);
    EXPECT_EQ(summary.minimum, 2);
    EXPECT_EQ(summary.maximum, 9);
    EXPECT_DOUBLE_EQ(summary.mean, 5);
    EXPECT_DOUBLE_EQ(summary.deviation * summary.deviation, 32.0 / 7.0);
}

TEST(Summarize, LeavesMissingValuesOut) {
    const ColumnSummary summary = summarize({"a", {kMissing, -3, kMissing, -1}});
    EXPECT_EQ(summary.count, 2u);
    EXPECT_EQ(summary.missing, 2u);
    EXPECT_EQ(summary.minimum, -3);
    EXPECT_EQ(summary.maximum, -1);
    EXPECT_EQ(summary.mean, -2);
}

TEST(Summarize, KeepsSmallDeviationsBesideLargeMeans) {
    EXPECT_NEAR(summarize({"a", {1e9 + 1, 1e9 + 2, 1e9 + 3}}).deviation, 1.0, 1e-6);
}

const Table kTable{"t.csv",
                   {{"hour", {0, 1}}, {"wind \xC3\xB8 speed", {1.0 / 3.0, kMissing}}, {"rain", {kMissing, kMissing}}}};

TEST(SummaryText, AlignsTheTableAndShowsWhatIsUnknown) {
    EXPECT_EQ(summaryText(kTable),
              "column          count  missing       minimum       maximum          mean     deviation\n"
              "hour                2        0             0             1           0.5      0.707107\n"
              "wind \xC3\xB8 speed        1        1      0.333333      0.333333      0.333333             -\n"
              "rain                0        2             -             -             -             -\n");
}

// A comma before the decimals, and digits in groups of two.
struct ForeignNumbers : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    std::string do_grouping() const override { return "\2"; }
};

TEST(SummaryText, IsTheSameInEveryLocale) {
    const Table table{"t.csv", {{"a", {1234.5, 0.25}}}};
    const std::string classic = summaryText(table);
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new ForeignNumbers));
    const std::string foreign = summaryText(table);
    std::locale::global(before);
    EXPECT_EQ(foreign, classic);
}

}  // namespace
}  // namespace dataloader
