#include "formats/MacroText.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "formats/MacroFile.h"
#include "support/TemporaryFolder.h"
#include "vexa/VexaUtil.h"
#include "vexastandin/Host.h"

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

// Every text of up to `length` of the characters that mean something in a macro file.
std::vector<std::string> textsUpTo(std::size_t length) {
    std::vector<std::string> texts = {""};
    for (std::size_t i = 0; i < texts.size() && texts[i].size() < length; ++i) {
        for (const char c : std::string_view("a# \t\n\v\f\r'")) texts.push_back(texts[i] + c);
    }
    return texts;
}

template <class Command>
void expectReadBack(const std::string& text, const std::vector<Command>& commands) {
    std::set<std::string> addOnIds;
    for (const Command& command : commands) addOnIds.insert(command.addOnId);
    const tests::TemporaryFolder folder;
    const MacroFile macro = readMacroFile(folder.write("m.macro", text), addOnIds);
    EXPECT_EQ(macro.problems, std::vector<std::string>());
    ASSERT_EQ(macro.commands.size(), commands.size());
    for (std::size_t i = 0; i < commands.size(); ++i) {
        ASSERT_EQ(macro.commands[i].addOnId, commands[i].addOnId);
        ASSERT_EQ(macro.commands[i].text, commands[i].command);
    }
}

TEST(MacroText, GivesBackEveryCommandThatTheHostTakes) {
    standin::Host host;
    host.setKeepsCalls(false);
    host.setRecording(true);
    std::size_t accepted = 0;
    for (const std::string& addOnId : textsUpTo(2)) {
        for (const std::string& command : textsUpTo(3)) {
            const VexaBoolean isRecorded = VexaUtilMacroRecordExtCommand(addOnId.c_str(), command.c_str());
            EXPECT_EQ(VexaUtilDataSetAddJournalCommand(addOnId.c_str(), command.c_str(), command.c_str()), isRecorded);
            if (isRecorded == 1) ++accepted;
        }
    }
    EXPECT_EQ(host.recordedCommands().size(), accepted);
    EXPECT_GT(accepted, 1000U);
    expectReadBack(recordingText(host.recordedCommands()), host.recordedCommands());
    expectReadBack(journalText(host.journalEntries()), host.journalEntries());
}

TEST(JournalText, HasALineOfDataForEachOfItsLineEnds) {
    const std::string text = journalText({{"ONE", "SAY a", "a\nb\r\nc\rd"}});
    EXPECT_EQ(text.substr(text.find("ONE")), "ONE SAY a\n#   a\n#   b\n#   c\n#   d\n");
}

}  // namespace
}  // namespace vexa::runner
