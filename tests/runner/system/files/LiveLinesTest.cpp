#include "system/files/LiveLines.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/TemporaryFolder.h"
#include "system/files/MappedTail.h"

namespace vexa::runner {
namespace {

using namespace std::string_literals;

class LiveLinesTest : public ::testing::Test {
protected:
    LiveLines linesOf(const std::string& content) const { return LiveLines(m_folder.write("file", content)); }

    static std::vector<std::string> allOf(LiveLines lines) {
        std::vector<std::string> all;
        for (std::string_view line; lines.next(line);) all.emplace_back(line);
        EXPECT_TRUE(lines.isAtEnd());
        EXPECT_EQ(lines.first(), '\0');
        EXPECT_EQ(lines.rest(), "");
        return all;
    }

    const tests::TemporaryFolder m_folder;
};

TEST_F(LiveLinesTest, EndWhereTheTextOfAKilledWriterEnds) {
    struct Case {
        const char* why;
        std::string content;
        std::vector<std::string> lines;
    };
    const std::size_t most = MappedTail::kMost;
    const Case cases[] = {
        {"an empty file", "", {}},
        {"a file that was closed", "one\n\ntwo\n", {"one", "", "two"}},
        {"zero bytes after a line", "one\n\0\0"s, {"one"}},
        {"zero bytes in a line", "one\ntw\0\0"s, {"one", "tw"}},
        {"the rest of a text without its first byte", "one\n\0wo\n\0"s, {"one"}},
        {"as many as there can be", "one\n" + std::string(most, '\0'), {"one"}},
        {"lines after the text", "one\n\0\n"s + std::string(most - 2, '\n'), {"one"}},
        {"only zero bytes", std::string(9, '\0'), {}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(allOf(linesOf(c.content)), c.lines) << c.why;
        std::string joined;
        for (const std::string& line : c.lines) joined += line + '\n';
        const std::string rest = linesOf(c.content).rest();
        EXPECT_TRUE(rest == joined || rest + '\n' == joined) << c.why;
    }
}

TEST_F(LiveLinesTest, HaveZeroBytesThatAreTooFarFromTheEndOfTheFile) {
    const std::string end(MappedTail::kMost, 'x');
    EXPECT_EQ(allOf(linesOf("on\0e\n"s + end + "\n")), std::vector<std::string>({"on\0e"s, end}));
    EXPECT_EQ(allOf(linesOf("on\0e\n"s + end + "\n\0"s)), std::vector<std::string>({"on\0e"s, end}));
}

TEST_F(LiveLinesTest, ShowTheFirstByteWithoutTakingIt) {
    LiveLines lines = linesOf("one\ntwo\n");
    EXPECT_EQ(lines.first(), 'o');
    std::string_view line;
    ASSERT_TRUE(lines.next(line));
    EXPECT_EQ(line, "one");
    EXPECT_EQ(lines.rest(), "two\n");
}

}  // namespace
}  // namespace vexa::runner
