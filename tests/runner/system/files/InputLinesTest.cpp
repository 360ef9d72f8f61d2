#include "system/files/InputLines.h"

#include <gtest/gtest.h>

#include <system_error>
#include <vector>

#include "support/TemporaryFolder.h"

namespace vexa::runner {
namespace {

std::vector<std::string> linesOf(const std::string& text) {
    const tests::TemporaryFolder folder;
    InputLines lines(folder.write("t", text));
    std::vector<std::string> all;
    for (std::string_view line; lines.next(line);) all.emplace_back(line);
    return all;
}

using Lines = std::vector<std::string>;

TEST(InputLines, AreTheLinesOfTheFile) {
    EXPECT_EQ(linesOf(""), Lines{});
    EXPECT_EQ(linesOf("a"), Lines{"a"});
    EXPECT_EQ(linesOf("a\n\nb\n"), (Lines{"a", "", "b"}));
}

TEST(InputLines, MayBeLongerThanWhatIsReadAtOnce) {
    const std::string large(1000000, 'x');
    EXPECT_EQ(linesOf("a\n" + large + "\nb\n" + large), (Lines{"a", large, "b", large}));
}

TEST(InputLines, KnowWhetherALineIsTheLast) {
    const tests::TemporaryFolder folder;
    InputLines lines(folder.write("t", "a\nb\n"));
    std::string_view line;
    lines.next(line);
    EXPECT_FALSE(lines.isAtEnd());
    lines.next(line);
    EXPECT_TRUE(lines.isAtEnd());
}

TEST(InputLines, OfAFileThatIsNotThereAreRefused) { EXPECT_THROW(InputLines("/nowhere/t"), std::system_error); }

}  // namespace
}  // namespace vexa::runner
