#include "Report.h"

#include <gtest/gtest.h>

#include <limits>
#include <locale>

namespace probestats {
namespace {

const ProbeData kData{"p.txt", {{2, {1, 2, 3}}, {3, {4, 5, 6}}, {5, {7, 8, 9}}}, 2000.0};

const std::vector<SummaryRow> kRows = {
    {2, {3, 1.0 / 3.0, 1e-7, -12345678.0, 2.5}, 78.4},
    {10, {1000000, 0.0, 0.0, 0.0, 0.0}, std::nullopt},
};

// Digits in groups, and a comma before the decimals.
struct ForeignNumbers : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(LoadReport, TellsRowsColumnsAndRate) {
    EXPECT_EQ(loadReport(kData), "Loaded p.txt: 3 rows of columns [2-3,5], 2000 Hz\n");
}

TEST(LoadReport, TellsThatThereIsNoRate) {
    EXPECT_EQ(loadReport({"p.txt", {{1, {1, 2}}}, std::nullopt}),
              "Loaded p.txt: 2 rows of columns [1], no sample rate\n");
}

TEST(WindowReport, TellsTheRowsLeft) {
    EXPECT_EQ(windowReport({1, 100, 1}), "Window: 100 rows, from 1 to 100\n");
    EXPECT_EQ(windowReport({11, 100, 3}), "Window: 30 rows, from 11 to 100 in steps of 3\n");
}

TEST(SummaryReport, AlignsTheTable) {
    EXPECT_EQ(summaryReport(kData, {1, 3, 2}, kRows, FrequencyColumn::Shown),
              "p.txt: 2 rows, from 1 to 3 in steps of 2, 1000 Hz\n"
              "column    count          mean     deviation       minimum       maximum     frequency\n"
              "     2        3      0.333333         1e-07  -1.23457e+07           2.5          78.4\n"
              "    10  1000000             0             0             0             0             -\n");
}

TEST(SummaryReport, HidesTheFrequencies) {
    EXPECT_EQ(summaryReport(kData, {1, 3, 1}, {kRows[1]}, FrequencyColumn::Hidden),
              "p.txt: 3 rows, from 1 to 3, 2000 Hz\n"
              "column    count          mean     deviation       minimum       maximum\n"
              "    10  1000000             0             0             0             0\n");
}

TEST(SpectrumReport, ListsThePeaksOfEachColumn) {
    const std::vector<SpectrumRow> rows = {
        {2, "speed", {{78.5, 0.125}, {157.0, 1e-7}}}, {3, "", {}}, {5, "", {{50.0, 2.0}}}};
    EXPECT_EQ(spectrumReport(kData, {1, 3, 1}, {2000.0, 2, 1, 10.0, 0.5, 21}, rows),
              "p.txt: 3 rows, from 1 to 3, 2000 Hz\n"
              "sections: 2 of 2 rows; frequencies: 21, from 10 to 20 Hz\n"
              "column     frequency     amplitude\n"
              "     2          78.5         0.125  speed\n"
              "     2           157         1e-07  speed\n"
              "     3             -             -\n"
              "     5            50             2\n");
}

TEST(SummaryReport, FollowsTheStyle) {
    EXPECT_EQ(summaryReport(kData, {1, 3, 1}, {kRows[0]}, FrequencyColumn::Shown, {3, "Wake"}),
              "Wake\n"
              "p.txt: 3 rows, from 1 to 3, 2000 Hz\n"
              "column    count       mean  deviation    minimum    maximum  frequency\n"
              "     2        3      0.333      1e-07  -1.23e+07        2.5       78.4\n");
}

TEST(SummaryReport, KeepsItsColumnsApartWhateverTheDigits) {
    const double longest = -std::numeric_limits<double>::min();
    const std::vector<SummaryRow> rows = {{2, {3, longest, longest, 0.0, 0.0}, std::nullopt}};
    EXPECT_NE(summaryReport(kData, {1, 3, 1}, rows, FrequencyColumn::Hidden, {17, ""})
                  .find(" -2.2250738585072014e-308 -2.2250738585072014e-308 "),
              std::string::npos);
}

TEST(SpectrumReport, FollowsTheStyle) {
    EXPECT_EQ(
        spectrumReport(kData, {1, 3, 1}, {2000.0, 2, 1, 10.0, 0.5, 21}, {{2, "", {{78.125, 0.0625}}}}, {2, "Wake"}),
        "Wake\n"
        "p.txt: 3 rows, from 1 to 3, 2000 Hz\n"
        "sections: 2 of 2 rows; frequencies: 21, from 10 to 20 Hz\n"
        "column  frequency  amplitude\n"
        "     2         78      0.062\n");
}

TEST(SummaryReport, IsTheSameInEveryLocale) {
    const std::string classic = summaryReport(kData, {1, 3, 1}, kRows, FrequencyColumn::Shown);
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new ForeignNumbers));
    const std::string foreign = summaryReport(kData, {1, 3, 1}, kRows, FrequencyColumn::Shown);
    std::locale::global(before);
    EXPECT_EQ(foreign, classic);
}

}  // namespace
}  // namespace probestats
