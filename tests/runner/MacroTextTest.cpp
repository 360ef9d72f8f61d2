#include "MacroText.h"

#include <gtest/gtest.h>

#include "MacroFile.h"
#include "support/TemporaryFolder.h"

namespace vexa::runner {
namespace {

MacroFile readBack(const standin::JournalEntry& entry) {
    const tests::TemporaryFolder folder;
    return readMacroFile(folder.write("j.macro", journalText({entry})), {"ONE"});
}

TEST(JournalText, IsAMacroFileWhateverTheData) {
    for (const char* data : {"a\rb", "a\r\nb", "a\r", "\r\r\n", "\n\r", "ONE SAY b\rONE SAY c"}) {
        const MacroFile macro = readBack({"ONE", "SAY a", data});
        EXPECT_TRUE(macro.problems.empty()) << testing::PrintToString(data);
        ASSERT_EQ(macro.commands.size(), 1U) << testing::PrintToString(data);
        EXPECT_EQ(macro.commands[0].text, "SAY a");
    }
}

TEST(JournalText, IsAMacroFileWhateverTheCommand) {
    for (const char* command : {"", " ", "\t ", "SAY\ra", "SAY a\r", "SAY\r\na", "\n"}) {
        const MacroFile macro = readBack({"ONE", command, std::nullopt});
        EXPECT_TRUE(macro.problems.empty()) << testing::PrintToString(command);
        EXPECT_TRUE(macro.commands.empty()) << testing::PrintToString(command);
    }
}

TEST(JournalText, HasALineOfDataForEachOfItsLineEnds) {
    const std::string text = journalText({{"ONE", "SAY a", "a\nb\r\nc\rd"}});
    EXPECT_EQ(text.substr(text.find("ONE")), "ONE SAY a\n#   a\n#   b\n#   c\n#   d\n");
}

}  // namespace
}  // namespace vexa::runner
