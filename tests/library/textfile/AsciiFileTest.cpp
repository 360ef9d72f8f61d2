#include "vexautilutil/AsciiFile.h"

#include <gtest/gtest.h>

#include <clocale>
#include <type_traits>

#include "support/TemporaryFolder.h"

namespace vexa::vexautilutil {
namespace {

using Lines = std::vector<std::string>;

class AsciiFileTest : public testing::Test {
protected:
    bool open(std::string_view bytes) { return m_file.open(m_folder.write("file.txt", bytes)); }

    // Returns all lines of a file with these bytes.
    Lines linesOf(std::string_view bytes) {
        AsciiFile file;
        Lines lines;
        if (!file.open(m_folder.write("lines.txt", bytes))) return {"not opened"};
        while (!file.isEOF()) lines.push_back(file.readLine());
        return lines;
    }

    const tests::TemporaryFolder m_folder;
    AsciiFile m_file;
};

TEST_F(AsciiFileTest, HoldsNothingAtFirst) {
    EXPECT_FALSE(m_file.isOpen());
    EXPECT_EQ(m_file.fileName(), "");
    EXPECT_EQ(m_file.currentLineNumber(), 0u);
    EXPECT_EQ(m_file.numLinesInFile(), 0u);
    EXPECT_TRUE(m_file.isEOF());
}

TEST_F(AsciiFileTest, IsOnePointerThatIsNotCopied) {
    EXPECT_EQ(sizeof(AsciiFile), sizeof(void*));
    EXPECT_FALSE(std::is_copy_constructible_v<AsciiFile>);
    EXPECT_FALSE(std::is_copy_assignable_v<AsciiFile>);
    EXPECT_FALSE(std::is_polymorphic_v<AsciiFile>);
}

TEST_F(AsciiFileTest, OpensAndCloses) {
    ASSERT_TRUE(open("one\ntwo\n"));
    EXPECT_TRUE(m_file.isOpen());
    m_file.close();
    EXPECT_FALSE(m_file.isOpen());
}

TEST_F(AsciiFileTest, KeepsNameCountAndPlaceWhenClosed) {
    ASSERT_TRUE(open("one\ntwo\n"));
    m_file.readLine();
    m_file.close();
    EXPECT_EQ(m_file.fileName(), m_folder.path("file.txt"));
    EXPECT_EQ(m_file.numLinesInFile(), 2u);
    EXPECT_EQ(m_file.currentLineNumber(), 1u);
}

TEST_F(AsciiFileTest, MayBeClosedTwice) {
    ASSERT_TRUE(open("one\n"));
    m_file.close();
    m_file.close();
    EXPECT_FALSE(m_file.isOpen());
}

TEST_F(AsciiFileTest, SplitsAtLineFeeds) { EXPECT_EQ(linesOf("one\ntwo\n"), (Lines{"one", "two"})); }

TEST_F(AsciiFileTest, TakesALastLineWithoutLineFeed) { EXPECT_EQ(linesOf("one\ntwo"), (Lines{"one", "two"})); }

TEST_F(AsciiFileTest, CountsEmptyLines) { EXPECT_EQ(linesOf("\n\n"), (Lines{"", ""})); }

TEST_F(AsciiFileTest, CountsALineOfOneByte) { EXPECT_EQ(linesOf("x"), Lines{"x"}); }

TEST_F(AsciiFileTest, OpensAnEmptyFileAtItsEnd) {
    ASSERT_TRUE(open(""));
    EXPECT_TRUE(m_file.isOpen());
    EXPECT_EQ(m_file.numLinesInFile(), 0u);
    EXPECT_TRUE(m_file.isEOF());
}

TEST_F(AsciiFileTest, CutsTheCarriageReturnBeforeALineFeed) { EXPECT_EQ(linesOf("a\r\nb\r\n"), (Lines{"a", "b"})); }

TEST_F(AsciiFileTest, EndsTheTextOfALineAtACarriageReturn) { EXPECT_EQ(linesOf("a\rb\n"), Lines{"a"}); }

TEST_F(AsciiFileTest, TakesAFileOfLoneCarriageReturnsForOneLine) { EXPECT_EQ(linesOf("a\rb\rc"), Lines{"a"}); }

TEST_F(AsciiFileTest, MakesEveryCarriageReturnANul) {
    ASSERT_TRUE(open("a\rb\r\rc\r\nd"));
    EXPECT_EQ(std::string(m_file.readRawLineAtOffset(0), 10), std::string("a\0b\0\0c\0\0d\0", 10));
}

TEST_F(AsciiFileTest, TakesALineThatBeginsWithACarriageReturnForEmpty) {
    EXPECT_EQ(linesOf("\ra\nb"), (Lines{"", "b"}));
}

TEST_F(AsciiFileTest, CountsALoneCarriageReturnAsALine) { EXPECT_EQ(linesOf("\r"), Lines{""}); }

TEST_F(AsciiFileTest, EndsTheFileAtANul) {
    EXPECT_EQ(linesOf(std::string_view("one\ntw\0o\nthree\n", 15)), (Lines{"one", "tw"}));
}

TEST_F(AsciiFileTest, TakesANulAtTheBeginningOfALineForTheEnd) {
    EXPECT_EQ(linesOf(std::string_view("one\n\0two\n", 9)), Lines{"one"});
    EXPECT_EQ(linesOf(std::string_view("\0one\n", 5)), Lines{});
}

TEST_F(AsciiFileTest, LeavesOtherBytesAlone) {
    const std::string odd = "\xEF\xBB\xBF\xE4\x80\xff\v\f\t\x1a\x85";
    EXPECT_EQ(linesOf(odd + "\n"), Lines{odd});
}

TEST_F(AsciiFileTest, ReadsLinesOfAnyLength) {
    const std::string longLine(3000000, 'x');
    EXPECT_EQ(linesOf(longLine + "\n" + longLine), (Lines{longLine, longLine}));
}

TEST_F(AsciiFileTest, ReadsManyLines) {
    std::string bytes;
    for (int i = 0; i < 100000; ++i) bytes += std::to_string(i) + '\n';
    ASSERT_TRUE(open(bytes));
    ASSERT_EQ(m_file.numLinesInFile(), 100000u);
    for (uint64_t i = 0; i < 100000; ++i) ASSERT_EQ(m_file.readLineAtOffset(i), std::to_string(i));
}

TEST_F(AsciiFileTest, ServesLinesByIndex) {
    ASSERT_TRUE(open("one\ntwo\nthree\n"));
    EXPECT_EQ(m_file.readLineAtOffset(2), "three");
    EXPECT_STREQ(m_file.readRawLineAtOffset(0), "one");
    EXPECT_EQ(m_file.currentLineNumber(), 0u);
}

TEST_F(AsciiFileTest, MovesOnWhenALineIsRead) {
    ASSERT_TRUE(open("one\ntwo\nthree\n"));
    EXPECT_EQ(m_file.readLine(), "one");
    EXPECT_EQ(m_file.currentLineNumber(), 1u);
    EXPECT_STREQ(m_file.readRawLine(), "two");
    EXPECT_EQ(m_file.currentLineNumber(), 2u);
}

TEST_F(AsciiFileTest, DoesNotCopyRawLines) {
    ASSERT_TRUE(open("one\ntwo\n"));
    EXPECT_EQ(m_file.readRawLineAtOffset(1), m_file.readRawLineAtOffset(0) + 4);
    EXPECT_EQ(m_file.readRawLine(), m_file.readRawLineAtOffset(0));
}

TEST_F(AsciiFileTest, IsAtItsEndWhenAllLinesAreRead) {
    ASSERT_TRUE(open("one\ntwo\n"));
    for (uint64_t i = 0; i < m_file.numLinesInFile(); ++i) {
        EXPECT_FALSE(m_file.isEOF());
        m_file.readLine();
    }
    EXPECT_TRUE(m_file.isEOF());
}

TEST_F(AsciiFileTest, IsNotAtItsEndBeyondIt) {
    ASSERT_TRUE(open("one\ntwo\n"));
    for (int i = 0; i < 3; ++i) m_file.advanceToNextLine();
    EXPECT_EQ(m_file.currentLineNumber(), 3u);
    EXPECT_FALSE(m_file.isEOF());
}

TEST_F(AsciiFileTest, Rewinds) {
    ASSERT_TRUE(open("one\ntwo\n"));
    m_file.readLine();
    m_file.rewind();
    EXPECT_EQ(m_file.currentLineNumber(), 0u);
    EXPECT_EQ(m_file.readLine(), "one");
}

TEST_F(AsciiFileTest, KeepsTheFirstFilesOffsetsAndPlaceWhenReopened) {
    ASSERT_TRUE(open("one\ntwo\nthree\n"));
    m_file.readLine();
    ASSERT_TRUE(m_file.open(m_folder.write("second.txt", "a line that is long\nand another one\n")));
    EXPECT_EQ(m_file.numLinesInFile(), 2u);
    EXPECT_EQ(m_file.currentLineNumber(), 1u);
    EXPECT_EQ(m_file.fileName(), m_folder.path("second.txt"));
    EXPECT_EQ(m_file.readLineAtOffset(0), "a line that is long");
    EXPECT_EQ(m_file.readLineAtOffset(1), "ne that is long") << "the offset of the first file's second line";
    EXPECT_EQ(m_file.readLineAtOffset(3), "a line that is long") << "the second file's offsets follow";
    EXPECT_EQ(m_file.readLineAtOffset(4), "and another one");
}

TEST_F(AsciiFileTest, OpensItsOwnFileName) {
    ASSERT_TRUE(open("one\n"));
    EXPECT_TRUE(m_file.open(m_file.fileName()));
    EXPECT_EQ(m_file.fileName(), m_folder.path("file.txt"));
}

TEST_F(AsciiFileTest, LeavesTheFileAsItIs) {
    ASSERT_TRUE(open("one\r\ntwo"));
    std::ifstream file(m_folder.path("file.txt"), std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "one\r\ntwo");
}

TEST_F(AsciiFileTest, TellsEmptyLines) {
    ASSERT_TRUE(open(" \t \n\nx\n  x\n\v\f \r\n\xa0\n"));
    EXPECT_TRUE(m_file.isEmptyLine(0));
    EXPECT_TRUE(m_file.isEmptyLine(1));
    EXPECT_FALSE(m_file.isEmptyLine(2));
    EXPECT_FALSE(m_file.isEmptyLine(3));
    EXPECT_TRUE(m_file.isEmptyLine(4));
    EXPECT_FALSE(m_file.isEmptyLine(5)) << "white space in some locales, not in the default one";
}

TEST_F(AsciiFileTest, TellsCommentLines) {
    ASSERT_TRUE(open("   # text\nx # text\n\n  \n#\n\t\v\f#x\n"));
    EXPECT_TRUE(m_file.isCommentLine(0, '#'));
    EXPECT_FALSE(m_file.isCommentLine(1, '#'));
    EXPECT_FALSE(m_file.isCommentLine(2, '#'));
    EXPECT_FALSE(m_file.isCommentLine(3, '#'));
    EXPECT_TRUE(m_file.isCommentLine(4, '#'));
    EXPECT_TRUE(m_file.isCommentLine(5, '#'));
    EXPECT_FALSE(m_file.isCommentLine(0, '!'));
}

TEST_F(AsciiFileTest, TakesOnlyEmptyLinesForCommentsOfNul) {
    ASSERT_TRUE(open("\n  \nx\n"));
    EXPECT_TRUE(m_file.isCommentLine(0, '\0'));
    EXPECT_TRUE(m_file.isCommentLine(1, '\0'));
    EXPECT_FALSE(m_file.isCommentLine(2, '\0'));
}

TEST_F(AsciiFileTest, TellsCommentsThatBeginWithABlankFromNone) {
    ASSERT_TRUE(open(" x\n"));
    EXPECT_FALSE(m_file.isCommentLine(0, ' ')) << "white space is passed over first";
}

TEST_F(AsciiFileTest, DoesNotMoveOnWhenAskedAboutALine) {
    ASSERT_TRUE(open("#\n"));
    m_file.isEmptyLine(0);
    m_file.isCommentLine(0, '#');
    EXPECT_EQ(m_file.currentLineNumber(), 0u);
}

}  // namespace
}  // namespace vexa::vexautilutil
