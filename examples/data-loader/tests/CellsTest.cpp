#include "Cells.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "Errors.h"

namespace dataloader {
namespace {

using Texts = std::vector<std::string>;

Texts cellsOf(std::string_view row, Separator separator) {
    Texts texts;
    Cells cells(row, separator);
    for (std::string_view cell; cells.next(cell);) texts.push_back(textIn(cell));
    return texts;
}

std::string refusalOf(std::string_view row, Separator separator) {
    try {
        cellsOf(row, separator);
    } catch (const RowError& refusal) {
        return refusal.what();
    }
    return "accepted";
}

struct Row {
    const char* why;
    const char* text;
    Texts cells;
};

TEST(Cells, StandBetweenCommas) {
    const Row rows[] = {
        {"one", "a", {"a"}},
        {"three", "1,2,3", {"1", "2", "3"}},
        {"blanks around them", "  1 ,\t2\t, 3 ", {"1", "2", "3"}},
        {"blanks within", "wind speed,rain", {"wind speed", "rain"}},
        {"nothing in the middle", "1,,3", {"1", "", "3"}},
        {"nothing at the start", ",2", {"", "2"}},
        {"nothing at the end", "1,", {"1", ""}},
        {"nothing but blanks", "1, ,3", {"1", "", "3"}},
        {"only a comma", ",", {"", ""}},
        {"a comma in quotes", "\"a, b\" ,c", {"a, b", "c"}},
        {"blanks in quotes", "\" a \",b", {" a ", "b"}},
        {"nothing in quotes", "\"\",b", {"", "b"}},
        {"doubled quotes", "\"say \"\"hi\"\"\",b", {"say \"hi\"", "b"}},
        {"quotes not at the start", "a\"b\"", {"a\"b\""}},
    };
    for (const Row& row : rows) EXPECT_EQ(cellsOf(row.text, Separator::Comma), row.cells) << row.why;
}

TEST(Cells, StandBetweenBlanks) {
    const Row rows[] = {
        {"one", "a", {"a"}},
        {"many blanks", "  1 \t 2\v\f3  ", {"1", "2", "3"}},
        {"a blank in quotes", "\"wind speed\" rain", {"wind speed", "rain"}},
        {"commas", "1,2 3", {"1,2", "3"}},
    };
    for (const Row& row : rows) EXPECT_EQ(cellsOf(row.text, Separator::Blank), row.cells) << row.why;
}

TEST(Cells, RefuseQuotesThatDoNotEncloseACell) {
    EXPECT_EQ(refusalOf("1,\"a", Separator::Comma), "Expected a closing quote");
    EXPECT_EQ(refusalOf("\"", Separator::Comma), "Expected a closing quote");
    EXPECT_EQ(refusalOf("\"a\"\"", Separator::Comma), "Expected a closing quote");
    EXPECT_EQ(refusalOf("\"a\" b,c", Separator::Comma), "Expected a comma after the closing quote");
    EXPECT_EQ(refusalOf("\"a\"b", Separator::Blank), "Expected a blank after the closing quote");
}

TEST(SeparatorIn, IsACommaThatIsNotInQuotes) {
    EXPECT_EQ(separatorIn("a,b"), Separator::Comma);
    EXPECT_EQ(separatorIn("\"a, b\",c"), Separator::Comma);
    EXPECT_EQ(separatorIn("\"a, b\" c"), Separator::Blank);
    EXPECT_EQ(separatorIn("a"), Separator::Blank);
}

TEST(ReadNumber, TakesNumbers) {
    struct Case {
        const char* cell;
        double number;
    };
    const Case cases[] = {{"0", 0},
                          {"-12.5", -12.5},
                          {"+3", 3},
                          {".5", 0.5},
                          {"5.", 5},
                          {"1e3", 1000},
                          {"1E-2", 0.01},
                          {"\"2.5\"", 2.5},
                          {"007", 7},
                          {"1e-310", 1e-310},
                          {"0.1", 0.1},
                          {"-0", -0.0},
                          {"1.7976931348623157e308", 1.7976931348623157e308}};
    for (const Case& c : cases) {
        double number = -1;
        EXPECT_EQ(readNumber(c.cell, number), CellContent::Number) << c.cell;
        EXPECT_EQ(number, c.number) << c.cell;
        EXPECT_EQ(std::signbit(number), std::signbit(c.number)) << c.cell;
    }
}

TEST(ReadNumber, KnowsWhatIsMissing) {
    for (const char* cell : {"", "\"\"", "NA", "na", "\"Na\"", "nan", "NaN", "-nan"}) {
        double number = 7;
        EXPECT_EQ(readNumber(cell, number), CellContent::Missing) << cell;
        EXPECT_EQ(number, 7) << cell;
    }
}

TEST(ReadNumber, TakesNothingElse) {
    for (const char* cell : {"x", "1x", "1 2", "1,5", "N", "NAN1", "n/a", "inf", "-Infinity", "1e999", "0x10", "+", "-",
                             "+-1", "--1", "++1", "e5", ".", "\" 1\""}) {
        double number = 7;
        EXPECT_EQ(readNumber(cell, number), CellContent::Other) << cell;
        EXPECT_EQ(number, 7) << cell;
    }
}

}  // namespace
}  // namespace dataloader
