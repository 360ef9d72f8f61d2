// Tests what AsciiFile::open() does if one of its steps fails.

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include "FailingStreams.h"
#include "support/FailingAllocator.h"
#include "support/TemporaryFolder.h"
#include "vexautilutil/AsciiFile.h"

namespace vexa::vexautilutil {
namespace {

using tests::Failing;
using tests::FailingAllocator;
using tests::FailingStream;
using tests::StreamCall;

class AsciiFileFailure : public testing::Test {
protected:
    ~AsciiFileFailure() override { EXPECT_EQ(tests::openStreams(), m_streamsBefore); }

    const tests::TemporaryFolder m_folder;
    const std::string m_path = m_folder.write("a name of more than fifteen characters.txt", "one\ntwo\nthree\n");

private:
    long m_streamsBefore = tests::openStreams();
};

TEST_F(AsciiFileFailure, LeavesTheReasonOfAMissingFileInErrno) {
    AsciiFile file;
    EXPECT_FALSE(file.open(m_folder.path("missing.txt")));
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(file.fileName(), m_folder.path("missing.txt"));
    EXPECT_FALSE(file.isOpen());
}

TEST_F(AsciiFileFailure, KeepsTheTextBeforeWhenTheNextFileIsMissing) {
    AsciiFile file;
    ASSERT_TRUE(file.open(m_path));
    EXPECT_FALSE(file.open(m_folder.path("missing.txt")));
    EXPECT_TRUE(file.isOpen());
    EXPECT_EQ(file.numLinesInFile(), 3u);
    EXPECT_EQ(file.readLine(), "one");
    EXPECT_EQ(file.fileName(), m_folder.path("missing.txt"));
}

TEST_F(AsciiFileFailure, KeepsTheTextBeforeWhenTheNextIsADirectory) {
    AsciiFile file;
    ASSERT_TRUE(file.open(m_path));
    EXPECT_FALSE(file.open(m_folder.path()));
    EXPECT_TRUE(file.isOpen());
    EXPECT_EQ(file.readLineAtOffset(2), "three");
}

TEST_F(AsciiFileFailure, RefusesADirectory) {
    AsciiFile file;
    errno = 0;  // creating the folder may have set the same value
    EXPECT_FALSE(file.open(m_folder.path()));
    EXPECT_EQ(errno, EISDIR);
    EXPECT_FALSE(file.isOpen());
}

TEST_F(AsciiFileFailure, RefusesADirectoryThatTellsASize) {
    AsciiFile file;
    EXPECT_FALSE(file.open("/proc")) << "of 0 bytes";
    EXPECT_EQ(errno, EISDIR);
    EXPECT_FALSE(file.isOpen());
}

TEST_F(AsciiFileFailure, KeepsTheTextBeforeWhenTheFileCannotBeSized) {
    for (const StreamCall call : {StreamCall::SeekToEnd, StreamCall::Tell, StreamCall::SeekToBegin}) {
        AsciiFile file;
        ASSERT_TRUE(file.open(m_path));
        const FailingStream failing(call);
        EXPECT_FALSE(file.open(m_path));
        EXPECT_EQ(errno, EIO);
        EXPECT_TRUE(FailingStream::hasFailed());
        EXPECT_TRUE(file.isOpen());
        EXPECT_EQ(file.readLineAtOffset(2), "three");
    }
}

TEST_F(AsciiFileFailure, LetsGoOfTheTextWhenTheFileCannotBeReadWhole) {
    for (const StreamCall call : {StreamCall::FailedRead, StreamCall::ShortRead}) {
        AsciiFile file;
        ASSERT_TRUE(file.open(m_path));
        const FailingStream failing(call);
        EXPECT_FALSE(file.open(m_path));
        EXPECT_TRUE(FailingStream::hasFailed());
        EXPECT_FALSE(file.isOpen());
        EXPECT_EQ(file.numLinesInFile(), 3u) << "the lines counted before";
    }
}

TEST_F(AsciiFileFailure, LeavesTheReasonInErrnoWhenReadingFails) {
    AsciiFile file;
    const FailingStream failing(StreamCall::FailedRead);
    EXPECT_FALSE(file.open(m_path));
    EXPECT_EQ(errno, tests::kReadFailure);
}

TEST_F(AsciiFileFailure, TakesAFileThatBecameShorterForAnInputError) {
    AsciiFile file;
    const FailingStream failing(StreamCall::ShortRead);
    EXPECT_FALSE(file.open(m_path));
    EXPECT_EQ(errno, EIO);
}

TEST_F(AsciiFileFailure, OpensAnotherFileAfterwards) {
    AsciiFile file;
    {
        const FailingStream failing(StreamCall::ShortRead);
        EXPECT_FALSE(file.open(m_path));
    }
    ASSERT_TRUE(file.open(m_path));
    EXPECT_EQ(file.numLinesInFile(), 3u);
}

TEST_F(AsciiFileFailure, ReadsWithASingleCall) {
    AsciiFile file;
    const long before = tests::readCalls();
    ASSERT_TRUE(file.open(m_path));
    EXPECT_EQ(tests::readCalls(), before + 1);
}

// Opens a file. Allocations after the first `allowed` ones fail. Returns true if one failed.
bool openWith(AsciiFile& file, const std::string& path, long allowed, Failing failing, bool& opened) {
    const FailingAllocator allocator(allowed, failing);
    opened = file.open(path);
    return FailingAllocator::hasFailed();
}

TEST_F(AsciiFileFailure, ReportsThatMemoryRanOutWhereverItDoes) {
    for (const Failing failing : {Failing::Once, Failing::EverAfter}) {
        const long points = tests::sweepAllocations(failing, [&](long allowed, Failing how) {
            const long before = FailingAllocator::liveBlocks();
            bool hasFailed = false;
            {
                AsciiFile file;
                bool opened = false;
                hasFailed = openWith(file, m_path, allowed, how, opened);
                const bool isForTable = allowed == 2 && how == Failing::Once;  // the table then grows line by line
                EXPECT_EQ(opened, !hasFailed || isForTable) << allowed;
                EXPECT_EQ(file.isOpen(), opened) << allowed;
                EXPECT_TRUE(opened || errno == ENOMEM) << allowed;
            }
            EXPECT_EQ(FailingAllocator::liveBlocks(), before) << allowed;
            return hasFailed;
        });
        EXPECT_EQ(points, 3) << "the name, the text, and the table of lines";
    }
}

TEST_F(AsciiFileFailure, KeepsTheTextBeforeWhenThereIsNoMemoryForTheNext) {
    AsciiFile file;
    ASSERT_TRUE(file.open(m_path));  // the memory for its name is allocated now
    bool opened = true;
    EXPECT_TRUE(openWith(file, m_path, 0, Failing::Once, opened));
    EXPECT_FALSE(opened);
    EXPECT_TRUE(file.isOpen());
    EXPECT_EQ(file.readLineAtOffset(1), "two");
    EXPECT_EQ(file.numLinesInFile(), 3u);
}

TEST_F(AsciiFileFailure, LetsGoOfTheTextWhenThereIsNoMemoryForItsLines) {
    AsciiFile file;
    ASSERT_TRUE(file.open(m_path));
    bool opened = true;
    EXPECT_TRUE(openWith(file, m_path, 1, Failing::EverAfter, opened));
    EXPECT_FALSE(opened);
    EXPECT_FALSE(file.isOpen());
    EXPECT_EQ(file.numLinesInFile(), 1u) << "the line for which there was no memory counts";
}

// The third allocation fails, which is for the estimated number of lines.
TEST_F(AsciiFileFailure, OpensWhenThereIsNoMemoryForAGuessAtItsLines) {
    AsciiFile file;
    bool opened = false;
    EXPECT_TRUE(openWith(file, m_path, 2, Failing::Once, opened));
    ASSERT_TRUE(opened);
    EXPECT_EQ(file.numLinesInFile(), 3u);
    EXPECT_EQ(file.readLineAtOffset(2), "three");
}

TEST_F(AsciiFileFailure, KeepsTheCurrentLineWhenThereIsNoMemoryForItsCopy) {
    const std::string line = "a line of more than fifteen characters";
    AsciiFile file;
    ASSERT_TRUE(file.open(m_folder.write("long.txt", line + "\nnext\n")));
    bool hasThrown = false;
    {
        const FailingAllocator allocator(0, Failing::Once);
        try {
            file.readLine();
        } catch (const std::bad_alloc&) {
            hasThrown = true;
        }
    }
    EXPECT_TRUE(hasThrown);
    EXPECT_EQ(file.currentLineNumber(), 0u);
    EXPECT_EQ(file.readLine(), line);
}

TEST_F(AsciiFileFailure, NeedsNoMemoryForTheLinesOfAnEmptyFile) {
    const std::string path = m_folder.write("empty", "");
    AsciiFile file;
    bool opened = false;
    EXPECT_FALSE(openWith(file, path, 3, Failing::EverAfter, opened));
    EXPECT_TRUE(opened);
}

TEST_F(AsciiFileFailure, MakesOneTextAndOneTable) {
    AsciiFile file;
    ASSERT_TRUE(file.open(m_path));
    file.close();
    const long before = FailingAllocator::liveBlocks();
    ASSERT_TRUE(file.open(m_path));
    EXPECT_EQ(FailingAllocator::liveBlocks(), before + 1) << "the text; the table was there and has grown";
}

}  // namespace
}  // namespace vexa::vexautilutil
