#include "formats/MacroFile.h"

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"

namespace vexa::runner {
namespace {

using namespace std::string_literals;

class MacroFileTest : public ::testing::Test {
protected:
    MacroFile read(const std::string& text) const {
        return readMacroFile(m_folder.write("m.macro", text), {"ONE", "TWO"});
    }

    /// The problems of \p text, without the path of the file.
    std::vector<std::string> problemsOf(const std::string& text) const {
        std::vector<std::string> problems = read(text).problems;
        for (std::string& problem : problems) problem.erase(0, m_folder.path("m.macro").size());
        return problems;
    }

private:
    tests::TemporaryFolder m_folder;
};

TEST_F(MacroFileTest, HasTheCommandsOfItsLines) {
    const MacroFile macro = read("# comment\nONE LOAD 'a b'\r\n\n\t TWO \t SAVE \n");
    EXPECT_TRUE(macro.problems.empty());
    ASSERT_EQ(macro.commands.size(), 2U);
    EXPECT_EQ(macro.commands[0].addOnId, "ONE");
    EXPECT_EQ(macro.commands[0].text, "LOAD 'a b'");
    EXPECT_EQ(macro.commands[1].addOnId, "TWO");
    EXPECT_EQ(macro.commands[1].text, "SAVE ");
}

TEST_F(MacroFileTest, PlacesEveryProblem) {
    EXPECT_EQ(problemsOf("ONE\nTHREE GO\nONE a\rb\nONE a\0b\n"s),
              (std::vector<std::string>{
                  ":1: expected a command after 'ONE'", ":2: no add-on 'THREE' is loaded (loaded: ONE, TWO)",
                  ":3: the line contains a carriage return", ":4: the line contains a NUL byte"}));
}

TEST_F(MacroFileTest, IsReadFromMemoryAsFromAFile) {
    const std::string texts[] = {"ONE A\nTWO B",    "\xEF\xBB\xBFONE A\r\n\r\nONE B\r",
                                 "ONE a\rb\n\rONE", "ONE A\n\nONE\0B\nONE C"s,
                                 "ONE a\rb\0c"s,    "\nTHREE X\n#\nTWO \v\n"};
    const auto shown = [](const MacroFile& macro) {
        std::string lines = macro.name + '\n';
        for (const MacroCommand& one : macro.commands) lines += one.place + '|' + one.addOnId + '|' + one.text + '\n';
        for (const std::string& problem : macro.problems) lines += problem + '\n';
        return lines;
    };
    for (const std::string& text : texts) {
        const MacroFile file = read(text);
        EXPECT_EQ(shown(macroIn(text, file.name, {"ONE", "TWO"})), shown(file));
    }
}

TEST_F(MacroFileTest, ThatIsMissingHasOneProblem) {
    EXPECT_EQ(readMacroFile("missing.macro", {}).problems,
              std::vector<std::string>{"missing.macro: cannot be read: No such file or directory"});
}

}  // namespace
}  // namespace vexa::runner
