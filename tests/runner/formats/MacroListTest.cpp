#include "formats/MacroList.h"

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"

namespace vexa::runner {
namespace {

using Names = std::vector<std::string>;

class MacroList : public ::testing::Test {
protected:
    std::string write(const std::string& text) const { return m_folder.write("list.txt", text); }

    std::string refusal(const std::string& path) const {
        try {
            readMacroList(path);
        } catch (const MacroListError& error) {
            return error.what();
        }
        return "(none)";
    }

private:
    const tests::TemporaryFolder m_folder;
};

TEST_F(MacroList, HasANameOnEachLine) {
    EXPECT_EQ(readMacroList(write("b.macro\na b.macro\nb.macro\n")), Names({"b.macro", "a b.macro", "b.macro"}));
}

TEST_F(MacroList, MayLackTheLastLineFeed) { EXPECT_EQ(readMacroList(write("a\nb")), Names({"a", "b"})); }

TEST_F(MacroList, MayHaveBlankLinesAndLineEndsOfOtherSystems) {
    EXPECT_EQ(readMacroList(write("\na\r\n \t\r\nb\n\n")), Names({"a", "b"}));
}

TEST_F(MacroList, KeepsBlanksAndMarksInNames) {
    EXPECT_EQ(readMacroList(write(" a\nb \n@c\n#d\n")), Names({" a", "b ", "@c", "#d"}));
}

TEST_F(MacroList, IsRefusedIfItNamesNoFile) {
    const std::string path = write("\n \n");
    EXPECT_EQ(refusal(path), path + ": it names no macro file");
}

TEST_F(MacroList, IsRefusedIfItNamesTheStandardInput) {
    const std::string path = write("a\n\n-\n");
    EXPECT_EQ(refusal(path), path + ":3: expected a file, not the standard input");
}

TEST_F(MacroList, IsRefusedIfItCannotBeRead) {
    EXPECT_EQ(refusal("/missing/list.txt"), "/missing/list.txt: cannot be read: No such file or directory");
}

TEST_F(MacroList, ReplacesItsArgument) {
    const std::string path = write("b\nc\n");
    EXPECT_EQ(macroFilesOf({"a", '@' + path, "d"}), Names({"a", "b", "c", "d"}));
}

}  // namespace
}  // namespace vexa::runner
