#include "TableReader.h"

#include <sys/stat.h>

#include <cmath>

#include "Errors.h"
#include "LoaderTest.h"

namespace dataloader {
namespace {

using Values = std::vector<double>;

class ReadTable : public HostTest {
protected:
    static Table read(const std::string& text, LoadRequest request = {}) {
        write("t.csv", text);
        request.fileName = "t.csv";
        return readTable(request);
    }

    /// What the user sees of a file that is refused: the dialogs, then the error of the command.
    std::string refusalOfFile(LoadRequest request) {
        try {
            readTable(request);
        } catch (const LoaderError& refusal) {
            std::string seen;
            for (const std::string& dialog : host.dialogs()) seen += dialog + '\n';
            return seen + refusal.what();
        }
        return "accepted";
    }
    std::string refusalOf(const std::string& text, LoadRequest request = {}) {
        write("t.csv", text);
        request.fileName = "t.csv";
        return refusalOfFile(request);
    }
};

LoadRequest with(MissingValues missing) { return {"", std::nullopt, missing}; }
LoadRequest with(Separator separator) { return {"", separator, MissingValues::Refuse}; }

TEST_F(ReadTable, TakesNamesAndValues) {
    const Table table = read("hour,\"wind, mean\"\n0,3.5\n1,-4e1\n");
    EXPECT_EQ(table.fileName, "t.csv");
    ASSERT_EQ(table.columns.size(), 2u);
    EXPECT_EQ(table.columns[0].name, "hour");
    EXPECT_EQ(table.columns[0].values, (Values{0, 1}));
    EXPECT_EQ(table.columns[1].name, "wind, mean");
    EXPECT_EQ(table.columns[1].values, (Values{3.5, -40}));
    EXPECT_EQ(table.rowCount(), 2u);
    EXPECT_EQ(table.rowsLeftOut, 0u);
}

TEST_F(ReadTable, TakesBlanksForSeparatorsWhereTheHeaderHasNoComma) {
    const Table table = read("hour \"wind speed\"\n 0  3.5\n1\t4\n");
    ASSERT_EQ(table.columns.size(), 2u);
    EXPECT_EQ(table.columns[1].name, "wind speed");
    EXPECT_EQ(table.columns[1].values, (Values{3.5, 4}));
}

TEST_F(ReadTable, TakesTheSeparatorItIsTold) {
    const Table table = read("wind speed\n3.5\n", with(Separator::Comma));
    ASSERT_EQ(table.columns.size(), 1u);
    EXPECT_EQ(table.columns[0].name, "wind speed");
    EXPECT_EQ(read("a,b c\n1 2\n", with(Separator::Blank)).columns[0].name, "a,b");
}

TEST_F(ReadTable, PassesOverCommentsAndEmptyLines) {
    EXPECT_EQ(read("# weather\n\n  # of May\na\n\n1\n#2\n \t\n3\n").columns[0].values, (Values{1, 3}));
}

TEST_F(ReadTable, TakesCrLfLineEndsAndALastLineWithoutOne) {
    EXPECT_EQ(read("a,b\r\n1,2\r\n\r\n3,4\r\n").columns[1].values, (Values{2, 4}));
    EXPECT_EQ(read("a,b\r\n1,2\r\n3,4").columns[1].values, (Values{2, 4}));
    EXPECT_EQ(read("a,b\r\n1,2\r\n3,4\r").columns[1].values, (Values{2, 4}));
}

TEST_F(ReadTable, PassesOverAByteOrderMark) { EXPECT_EQ(read("\xEF\xBB\xBFhour\n1\n").columns[0].name, "hour"); }

TEST_F(ReadTable, LeavesOutRowsWithMissingValuesWhenTold) {
    const Table table = read("a,b\n1,2\nNA,4\n5,\n7,8\n", with(MissingValues::Skip));
    EXPECT_EQ(table.columns[0].values, (Values{1, 7}));
    EXPECT_EQ(table.columns[1].values, (Values{2, 8}));
    EXPECT_EQ(table.rowsLeftOut, 2u);
}

TEST_F(ReadTable, KeepsMissingValuesWhenTold) {
    const Table table = read("a,b\n1,2\nNA,4\n5,\n", with(MissingValues::Keep));
    ASSERT_EQ(table.rowCount(), 3u);
    EXPECT_TRUE(std::isnan(table.columns[0].values[1]));
    EXPECT_EQ(table.columns[1].values[1], 4);
    EXPECT_TRUE(std::isnan(table.columns[1].values[2]));
    EXPECT_EQ(table.rowsLeftOut, 0u);
}

TEST_F(ReadTable, ShowsOnceWhatIsWrongInALineWithItsNumberAndTheFile) {
    struct Case {
        const char* why;
        std::string text;
        const char* dialog;
    };
    const Case cases[] = {
        {"no number", "# c\na,b\n\n1,x\n", "Expected a number in column 2 (b), but found \"x\" on line 4"},
        {"no number, in quotes", "a\n\"n/a\"\n", "Expected a number in column 1 (a), but found \"n/a\" on line 2"},
        {"too large", "a\n1e999\n", "Expected a number in column 1 (a), but found \"1e999\" on line 2"},
        {"a percent sign", "a\n5%s\n", "Expected a number in column 1 (a), but found \"5%s\" on line 2"},
        {"a long cell", "a\n" + std::string(50, 'x') + "\n",
         "Expected a number in column 1 (a), but found \"xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx...\" on line 2"},
        {"too short", "a,b,c\n1,2,3\r\n1,2\r\n", "Expected 3 columns, but found 2 on line 3"},
        {"too long", "a,b\n1,2,3,x\n", "Expected 2 columns, but found 4 on line 2"},
        {"a comma too many", "a,b\n1,2,\n", "Expected 2 columns, but found 3 on line 2"},
        {"missing", "a,b\n1,2\n3,NA\n", "Missing value in column 2 (b) on line 3"},
        {"quote left open", "a,b\n1,\"2\n3,4\n", "Expected a closing quote on line 2"},
        {"no name", "a,,c\n1,2,3\n", "Expected a name for column 2 on line 1"},
        {"no header", "1,2\n3,4\n", "Expected the names of the columns, but found numbers on line 1"},
        {"header left open", "a,\"b\n1,2\n", "Expected a closing quote on line 1"},
        {"a NUL", std::string("a,b\n1,2\n3,4\0\n5,6\n", 17),
         "The text has a NUL, or a carriage return without a line feed, on line 3"},
        {"carriage returns only", "a,b\r1,2\r3,4\r",
         "The text has a NUL, or a carriage return without a line feed, on line 1"},
        {"a NUL at the start", std::string("\0a\n1\n", 5),
         "The text has a NUL, or a carriage return without a line feed, on line 1"},
    };
    std::string seen;
    for (const Case& c : cases) {
        seen += std::string(c.dialog) + " in file: t.csv\n";
        EXPECT_EQ(refusalOf(c.text), seen + "Nothing was loaded from t.csv") << c.why;
    }
}

TEST_F(ReadTable, RefusesRowsThatAreWrongThoughTheyWouldBeLeftOut) {
    EXPECT_EQ(refusalOf("a,b\nNA,x\n", with(MissingValues::Skip)),
              "Expected a number in column 2 (b), but found \"x\" on line 2 in file: t.csv\n"
              "Nothing was loaded from t.csv");
}

TEST_F(ReadTable, TakesTheStatusLineDownBeforeTheDialogComesUp) {
    bool wasUp = true;
    host.onDialog([&](const std::string&) { wasUp = host.statusLine().active; });
    refusalOf("a\nx\n");
    ASSERT_EQ(host.dialogs().size(), 1u);
    EXPECT_FALSE(wasUp);
}

TEST_F(ReadTable, RefusesAFileWithoutRowsInNoDialog) {
    EXPECT_EQ(refusalOf(""), "There is no table in t.csv");
    EXPECT_EQ(refusalOf("# weather\n\n"), "There is no table in t.csv");
    EXPECT_EQ(refusalOf("a,b\n# 1,2\n"), "There are no rows in t.csv");
    EXPECT_EQ(refusalOf("a\nNA\n", with(MissingValues::Skip)), "There are no rows without missing values in t.csv");
}

TEST_F(ReadTable, RefusesWhatIsNoRegularFile) {
    std::filesystem::create_directory("folder");
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    EXPECT_EQ(refusalOfFile({"folder", {}, {}}), "Cannot open folder: it is no regular file");
    EXPECT_EQ(refusalOfFile({"pipe", {}, {}}), "Cannot open pipe: it is no regular file");
    EXPECT_EQ(refusalOfFile({"nowhere.csv", {}, {}}), "Cannot open nowhere.csv: No such file or directory");
}

TEST_F(ReadTable, ReadsALargeTableAndShowsHowFarItHasCome) {
    const Table table = read(largeTable(200000));
    ASSERT_EQ(table.rowCount(), 200000u);
    for (std::size_t row = 0; row < table.rowCount(); ++row) {
        const auto number = static_cast<double>(row);
        ASSERT_EQ(table.columns[0].values[row], number);
        ASSERT_EQ(table.columns[1].values[row], number / 2);
        ASSERT_EQ(table.columns[2].values[row], number / 4);
    }
    std::vector<int> percentages;
    for (const vexa::standin::StatusLine& line : host.statusHistory()) {
        EXPECT_EQ(line.text, "Loading t.csv");
        EXPECT_TRUE(line.showStopButton);
        percentages.push_back(line.percent);
    }
    EXPECT_TRUE(std::is_sorted(percentages.begin(), percentages.end()));
    EXPECT_GT(std::set<int>(percentages.begin(), percentages.end()).size(), 20u);
    EXPECT_FALSE(host.statusLine().active);
}

TEST_F(ReadTable, EndsWhenTheUserStopsIt) {
    host.pressStopAtPercent(50);
    EXPECT_EQ(refusalOf(largeTable()), "LOAD was stopped by the user");
    for (const vexa::standin::StatusLine& line : host.statusHistory()) {
        // A line that is taken down shows 100 percent before.
        if (line.percent == 100) continue;
        EXPECT_LT(line.percent, 60);
    }
    EXPECT_FALSE(host.statusLine().active);
}

TEST_F(ReadTable, EndsWhenStopWasPressedBefore) {
    host.pressStop();
    EXPECT_EQ(refusalOf("a\n1\n"), "LOAD was stopped by the user");
}

TEST_F(ReadTable, ShowsNothingInBatchMode) {
    host.setBatchMode(true);
    EXPECT_EQ(read(largeTable()).rowCount(), 100000u);
    EXPECT_TRUE(host.statusHistory().empty());
}

}  // namespace
}  // namespace dataloader
