#include "ProbeData.h"

#include <sys/stat.h>

#include "AddOnTest.h"

namespace probestats {
namespace {

class ReadProbeFile : public FolderTest {
protected:
    static ProbeData read(const std::string& text, ProbeFileRequest request = {}) {
        writeText("p.txt", text);
        request.fileName = "p.txt";
        return readProbeFile(request);
    }
    static std::string refusalOf(const std::string& text, ProbeFileRequest request = {}) {
        writeText("p.txt", text);
        return refusalOfFile("p.txt", std::move(request));
    }
    static std::string refusalOfFile(const std::string& fileName, ProbeFileRequest request = {}) {
        request.fileName = fileName;
        try {
            readProbeFile(request);
        } catch (const std::exception& refusal) {
            return refusal.what();
        }
        return "accepted";
    }
};

ProbeFileRequest columns(const std::string& text) {
    ProbeFileRequest request;
    request.columns.emplace().assign(text);
    return request;
}

ProbeFileRequest timeColumn(uint64_t number) {
    ProbeFileRequest request;
    request.timeColumn = number;
    return request;
}

ProbeFileRequest withHeader() {
    ProbeFileRequest request;
    request.hasHeader = true;
    return request;
}

using Values = std::vector<double>;

TEST_F(ReadProbeFile, ReadsAllColumnsUnlessToldOtherwise) {
    const ProbeData data = read("1 2.5\n-3 4e1\n");
    ASSERT_EQ(data.columns.size(), 2u);
    EXPECT_EQ(data.columns[0].number, 1);
    EXPECT_EQ(data.columns[0].values, (Values{1, -3}));
    EXPECT_EQ(data.columns[1].values, (Values{2.5, 40}));
    EXPECT_EQ(data.rowCount(), 2);
    EXPECT_EQ(data.sampleRate, std::nullopt);
}

TEST_F(ReadProbeFile, ReadsTheColumnsAskedFor) {
    const ProbeData data = read("1 2 3\n4 5 6\n", columns("[1,3]"));
    EXPECT_EQ(data.columnNumbers().toString(), "[1,3]");
    EXPECT_EQ(data.columns[1].values, (Values{3, 6}));
}

TEST_F(ReadProbeFile, NeedsNumbersOnlyInTheColumnsAskedFor) {
    EXPECT_EQ(read("1 a\n2 b\n", columns("[1]")).columns[0].values, (Values{1, 2}));
}

TEST_F(ReadProbeFile, PassesOverCommentsAndEmptyLines) {
    const ProbeData data = read("# head\n\n1\n  \t\n  # 7\n2\n");
    EXPECT_EQ(data.columns[0].values, (Values{1, 2}));
}

TEST_F(ReadProbeFile, SkipsRowsUnread) {
    ProbeFileRequest request;
    request.skipRows = 2;
    EXPECT_EQ(read("# head\nvelocity pressure height\nm/s\n1\n2\n", request).columns[0].values, (Values{1, 2}));
}

TEST_F(ReadProbeFile, NamesTheColumnsAfterTheHeaderAndSkipsRowsBelowIt) {
    ProbeFileRequest request = columns("[1,3]");
    request.hasHeader = true;
    request.skipRows = 1;
    const ProbeData data = read("# units below\nu v p\nm/s m/s Pa\n1 2 3\n4 5 6\n", request);
    ASSERT_EQ(data.columns.size(), 2u);
    EXPECT_EQ(data.columns[0].name, "u");
    EXPECT_EQ(data.columns[1].name, "p");
    EXPECT_EQ(data.columns[1].values, (Values{3, 6}));
}

TEST_F(ReadProbeFile, TakesTheSampleRateGiven) {
    ProbeFileRequest request;
    request.sampleRate = 50.0;
    EXPECT_EQ(read("1\n2\n", request).sampleRate, 50.0);
}

TEST_F(ReadProbeFile, TakesCrLfLineEndsAndALastLineWithoutOne) {
    const ProbeData data = read("# head\r\n1 2\r\n\r\n3 4");
    EXPECT_EQ(data.columns[1].values, (Values{2, 4}));
}

TEST_F(ReadProbeFile, ComputesTheSampleRateFromTheTimes) {
    EXPECT_EQ(read("7 0.0\n8 0.25\n9 0.5\n", timeColumn(2)).sampleRate, 4.0);
}

TEST_F(ReadProbeFile, ToleratesRoundedTimes) { EXPECT_EQ(read("0\n1.009\n2\n", timeColumn(1)).sampleRate, 1.0); }

TEST_F(ReadProbeFile, SaysWhatIsWrongAndWhere) {
    const std::string word(41, 'x');
    struct Case {
        const char* why;
        std::string text;
        ProbeFileRequest request;
        std::string refusal;
    };
    const Case cases[] = {
        {"too few columns", "# c\n1 2 3\n\n1 2\n", {}, "p.txt:4: expected 3 columns, found 2"},
        {"too many columns", "1 2\n1 2 3\n", {}, "p.txt:2: expected 2 columns, found 3"},
        {"no number", "1 2\n1 abc\n", {}, "p.txt:2: column 2 is no number: \"abc\""},
        {"more than a number", "1 2x\n", {}, "p.txt:1: column 2 is no number: \"2x\""},
        {"decimal comma", "1,5\n", {}, "p.txt:1: column 1 is no number: \"1,5\""},
        {"infinite", "inf\n", {}, "p.txt:1: column 1 is no number: \"inf\""},
        {"not a number", "1\nnan\n", {}, "p.txt:2: column 1 is no number: \"nan\""},
        {"a long word is cut", word, {}, "p.txt:1: column 1 is no number: \"" + word.substr(1) + "...\""},
        {"no number in the time", "1 b\n", timeColumn(2), "p.txt:1: column 2 is no number: \"b\""},
        {"empty", "", {}, "p.txt: expected at least 2 rows, found 0"},
        {"comments only", "# 1\n# 2\n", {}, "p.txt: expected at least 2 rows, found 0"},
        {"too short", "1 2\n", {}, "p.txt: expected at least 2 rows, found 1"},
        {"column beyond the last", "1 2\n", columns("[2-3]"), "p.txt: columns are 1 to 2, but COLUMNS asks for 3"},
        {"column below the first", "1 2\n", columns("[0-1]"), "p.txt: columns are 1 to 2, but COLUMNS asks for 0"},
        {"a huge set", "1\n", columns("[1-9223372036854775807]"),
         "p.txt: columns are 1 to 1, but COLUMNS asks for 9223372036854775807"},
        {"no such time column", "1\n", timeColumn(2), "p.txt: columns are 1 to 1, but TIMECOLUMN asks for 2"},
        {"time column below the first", "1\n", timeColumn(0), "p.txt: columns are 1 to 1, but TIMECOLUMN asks for 0"},
        {"header too short", "u\n1 2\n", withHeader(), "p.txt:2: expected 1 columns, found 2"},
        {"header only", "u p\n", withHeader(), "p.txt: expected at least 2 rows, found 0"},
        {"time stands still", "1\n1\n", timeColumn(1), "p.txt: the times in column 1 do not advance evenly at row 2"},
        {"time runs backwards", "2\n1\n", timeColumn(1), "p.txt: the times in column 1 do not advance evenly at row 2"},
        {"time jumps", "0\n1\n2.03\n3\n", timeColumn(1), "p.txt: the times in column 1 do not advance evenly at row 3"},
    };
    for (const Case& c : cases) EXPECT_EQ(refusalOf(c.text, c.request), c.refusal) << c.why;
}

TEST_F(ReadProbeFile, SaysWhenAllRowsWereSkipped) {
    ProbeFileRequest request;
    request.skipRows = 3;
    EXPECT_EQ(refusalOf("1\n2\n", request), "p.txt: expected at least 2 rows, found 0");
}

TEST_F(ReadProbeFile, RefusesWhatItCannotRead) {
    std::filesystem::create_directory("folder");
    EXPECT_EQ(refusalOfFile("nowhere.txt"), "Cannot open nowhere.txt: No such file or directory");
    EXPECT_EQ(refusalOfFile("folder"), "Cannot open folder: it is no regular file");
}

TEST_F(ReadProbeFile, DoesNotWaitForTheWriterOfAPipe) {
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    EXPECT_EQ(refusalOfFile("pipe"), "Cannot open pipe: it is no regular file");
}

TEST(RowWindow, CountsItsRows) {
    EXPECT_EQ((RowWindow{1, 10, 1}.count()), 10);
    EXPECT_EQ((RowWindow{1, 10, 3}.count()), 4);
    EXPECT_EQ((RowWindow{3, 3, 5}.count()), 1);
    EXPECT_EQ((RowWindow{4, 3, 1}.count()), 0);
}

TEST(RowWindow, PicksItsValues) {
    const ProbeColumn column{1, {10, 20, 30, 40, 50, 60}};
    EXPECT_EQ(valuesIn({2, 6, 2}, column), (Values{20, 40, 60}));
    EXPECT_EQ(valuesIn({2, 5, 2}, column), (Values{20, 40}));
}

}  // namespace
}  // namespace probestats
