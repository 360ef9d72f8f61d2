#include <gtest/gtest.h>

#include <climits>
#include <new>

#include "support/FailingAllocator.h"
#include "support/TemporaryFolder.h"
#include "vexastandin/Host.h"
#include "vexautilutil/AsciiFile.h"

namespace vexa::vexautilutil {
namespace {

class AsciiFileError : public testing::Test {
protected:
    // Opens a file of ten lines and reads some of them.
    void read(int lines) {
        ASSERT_TRUE(m_file.open(m_path));
        for (int i = 0; i < lines; ++i) m_file.readLine();
    }

    // Returns the text of the only dialog shown so far, without the file's path.
    std::string shown() const {
        const std::vector<std::string> dialogs = m_host.dialogs();
        if (dialogs.size() != 1) return std::to_string(dialogs.size()) + " dialogs";
        const std::string& text = dialogs[0];
        const std::size_t end = text.size() - std::min(text.size(), m_path.size());
        return text.substr(end) == m_path ? text.substr(0, end) + "FILE" : text;
    }

    const standin::Host m_host;
    const tests::TemporaryFolder m_folder;
    const std::string m_path = m_folder.write("in.txt", "1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n");
    AsciiFile m_file;
};

TEST_F(AsciiFileError, ShowsMessageLineAndFile) {
    read(0);
    m_file.error("Bad value", 12);
    EXPECT_EQ(shown(), "Bad value on line 12 in file: FILE");
}

TEST_F(AsciiFileError, ShowsTheLineAsGiven) {
    read(0);
    m_file.error("x", 0);
    EXPECT_EQ(shown(), "x on line 0 in file: FILE");
}

TEST_F(AsciiFileError, ShowsTheLargestLineWithoutGrouping) {
    read(0);
    m_file.error("x", SIZE_MAX);
    EXPECT_EQ(shown(), "x on line 18446744073709551615 in file: FILE");
}

TEST_F(AsciiFileError, ShowsAnEmptyNameBeforeAnyOpen) {
    m_file.error("x", 0);
    EXPECT_EQ(m_host.dialogs(), std::vector<std::string>{"x on line 0 in file: "});
}

TEST_F(AsciiFileError, ShowsTheNameOfAFileThatCouldNotBeOpened) {
    m_file.open("/no/such/file");
    m_file.error("Cannot be opened", 0);
    EXPECT_EQ(m_host.dialogs(), std::vector<std::string>{"Cannot be opened on line 0 in file: /no/such/file"});
}

TEST_F(AsciiFileError, ShowsAfterClose) {
    read(2);
    m_file.close();
    m_file.error("x");
    EXPECT_EQ(shown(), "x on line 2 in file: FILE");
}

TEST_F(AsciiFileError, CountsTheLineJustReadFromOne) {
    read(1);
    m_file.error("Bad value");
    EXPECT_EQ(shown(), "Bad value on line 1 in file: FILE");
}

TEST_F(AsciiFileError, CountsTheLineJustReadRawFromOne) {
    read(4);
    m_file.readRawLine();
    m_file.error("Bad value");
    EXPECT_EQ(shown(), "Bad value on line 5 in file: FILE");
}

TEST_F(AsciiFileError, LeavesAMessageWithPercentSignsAlone) {
    read(0);
    m_file.error("100%s %n %%", 1);
    EXPECT_EQ(shown(), "100%s %n %% on line 1 in file: FILE");
}

TEST_F(AsciiFileError, DoesNotCutALongMessage) {
    read(0);
    m_file.error(std::string(10000, 'm'), 1);
    EXPECT_EQ(shown(), std::string(10000, 'm') + " on line 1 in file: FILE");
}

TEST_F(AsciiFileError, MakesOneHostCall) {
    read(1);
    m_file.error("x");
    EXPECT_EQ(m_host.calledFunctions(), std::vector<std::string>{"VexaUtilDialogErrMsg"});
}

TEST_F(AsciiFileError, ShowsNothingWhenMemoryRunsOut) {
    read(1);
    const long points = tests::sweepAllocations(tests::Failing::Once, [&](long allowed, tests::Failing failing) {
        const long before = static_cast<long>(m_host.dialogs().size());
        bool hasFailed = false;
        bool hasThrown = false;
        {
            const tests::FailingAllocator allocator(allowed, failing);
            try {
                m_file.errorWithFormattedString("A message of more than fifteen characters: %s", "value");
            } catch (const std::bad_alloc&) {
                hasThrown = true;
            }
            hasFailed = tests::FailingAllocator::hasFailed();
        }
        EXPECT_TRUE(!hasThrown || static_cast<long>(m_host.dialogs().size()) == before) << allowed;
        return hasFailed;
    });
    EXPECT_GT(points, 0);
}

TEST_F(AsciiFileError, FormatsAString) {
    read(3);
    m_file.errorWithFormattedString("Unknown keyword '%s' found", "ZONE");
    EXPECT_EQ(shown(), "Unknown keyword 'ZONE' found on line 3 in file: FILE");
}

TEST_F(AsciiFileError, FormatsAStringWithFlagsAndWidth) {
    read(3);
    m_file.errorWithFormattedString("100%% of [%-6.2s]", "ZONE");
    EXPECT_EQ(shown(), "100% of [ZO    ] on line 3 in file: FILE");
}

TEST_F(AsciiFileError, FormatsAnIntegerRightAfterTheFifthLine) {
    read(5);
    m_file.errorWithFormattedInteger("Value %ld out of range", -3);
    EXPECT_EQ(shown(), "Value -3 out of range on line 5 in file: FILE");
}

TEST_F(AsciiFileError, FormatsTheSmallestInteger) {
    read(1);
    m_file.errorWithFormattedInteger("%ld", LONG_MIN);
    EXPECT_EQ(shown(), "-9223372036854775808 on line 1 in file: FILE");
}

TEST_F(AsciiFileError, FormatsAnIntegerInOtherWays) {
    read(1);
    m_file.errorWithFormattedInteger("%%%08lx %%", 255);
    EXPECT_EQ(shown(), "%000000ff % on line 1 in file: FILE");
}

TEST_F(AsciiFileError, FormatsAValueThatIsNamedByItsNumber) {
    read(1);
    m_file.errorWithFormattedString("<%1$-6.2s> %%", "ZONE");
    m_file.errorWithFormattedInteger("<%1$5ld>", -3);
    EXPECT_EQ(m_host.dialogs(), (std::vector<std::string>{"<ZO    > % on line 1 in file: " + m_path,
                                                          "<   -3> on line 1 in file: " + m_path}));
}

TEST_F(AsciiFileError, EndsAFormatAtItsFirstNul) {
    const struct {
        const char* why;
        std::string format;
        const char* text;
    } cases[] = {{"a conversion before it", std::string("<%s>\0 %s", 8), "<value>"},
                 {"none before it", std::string("none\0 %s", 8), "none"},
                 {"two before it", std::string("%s %s\0", 6), "%s %s"},
                 {"in the middle of a conversion", std::string("%\0s", 3), "%"},
                 {"at once", std::string("\0%s", 3), ""}};
    read(1);
    for (const auto& c : cases) {
        m_file.errorWithFormattedString(c.format, "value");
        EXPECT_EQ(m_host.dialogs().back(), c.text + (" on line 1 in file: " + m_path)) << c.why;
    }
    m_file.errorWithFormattedInteger(std::string("%ld\0%ld", 7), 7);
    EXPECT_EQ(m_host.dialogs().back(), "7 on line 1 in file: " + m_path);
}

TEST_F(AsciiFileError, CutsAFormattedTextAndKeepsWhatFollows) {
    read(1);
    m_file.errorWithFormattedString("%s", std::string(5000, 'v'));
    EXPECT_EQ(shown(), std::string(4095, 'v') + " on line 1 in file: FILE");
}

TEST_F(AsciiFileError, KeepsAFormattedTextThatJustFits) {
    read(1);
    m_file.errorWithFormattedString("%s", std::string(4095, 'v'));
    EXPECT_EQ(shown(), std::string(4095, 'v') + " on line 1 in file: FILE");
}

TEST_F(AsciiFileError, CutsALongFormatLikeALongValue) {
    read(1);
    m_file.errorWithFormattedInteger(std::string(4090, 'f') + "%ld", 1234567);
    EXPECT_EQ(shown(), std::string(4090, 'f') + "12345 on line 1 in file: FILE");
}

TEST_F(AsciiFileError, FormatsValuesWithPercentSigns) {
    read(1);
    m_file.errorWithFormattedString("%s", "50%s%n");
    EXPECT_EQ(shown(), "50%s%n on line 1 in file: FILE");
}

TEST_F(AsciiFileError, ShowsAFormatThatDoesNotFitTheValueAsItStands) {
    read(1);
    const char* const stringFormats[] = {"none",  "%s %s", "two %s%s", "%ld", "%n",     "%*s",       "%",    "%-",
                                         "100%%", "%ls",   "%2$s",     "%1$", "%1$1$s", "%1$s %1$s", "%11$s"};
    for (const char* format : stringFormats) m_file.errorWithFormattedString(format, "value");
    const char* const integerFormats[] = {"none", "%ld %ld", "%d", "%dx", "%s",    "%lf",
                                          "%ln",  "%*ld",    "%l", "%",   "%2$ld", "%1$d"};
    for (const char* format : integerFormats) m_file.errorWithFormattedInteger(format, 7);

    const std::vector<std::string> dialogs = m_host.dialogs();
    ASSERT_EQ(dialogs.size(), std::size(stringFormats) + std::size(integerFormats));
    for (std::size_t i = 0; i < dialogs.size(); ++i) {
        const std::size_t strings = std::size(stringFormats);
        const std::string format = i < strings ? stringFormats[i] : integerFormats[i - strings];
        EXPECT_EQ(dialogs[i], format + " on line 1 in file: " + m_path);
    }
}

}  // namespace
}  // namespace vexa::vexautilutil
