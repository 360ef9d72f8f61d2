#include "TerminalTest.h"

namespace vexa::e2e {
namespace {

class Repl : public TerminalTest {
protected:
    Program repl(std::vector<std::string> options = {}, const std::string& addOn = ADDON_ONE) const {
        options.insert(options.begin(), {"repl", "--addon", addOn});
        return runner(std::move(options));
    }
    ProgramResult typed(const std::string& lines, const std::vector<std::string>& options = {}) const {
        Program program = repl(options);
        program.input = lines;
        return runProgram(program);
    }
    // A terminal whose lines of before are kept in the test's folder.
    std::vector<std::string> terminal() const {
        write("inputrc", "set enable-bracketed-paste off\n");
        return {"TERM=xterm", "NO_COLOR=1", "INPUTRC=" + (folder() / "inputrc").string(),
                "XDG_STATE_HOME=" + folder().string()};
    }
};

class EditingRepl : public Repl {
protected:
    void SetUp() override {
#ifndef VEXA_EDITS_LINES
        GTEST_SKIP() << "the runner was built without readline";
#endif
    }
};

TEST_F(Repl, RunsWhatComesFromElsewhere) {
    const ProgramResult result = typed("ONE ECHO a\n\n# comment\n  ONE   ECHO b\nONE FAIL no\nONE ECHO c");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "a\nb\nc\n");
    EXPECT_EQ(result.err, "ONE: no\n");
}

TEST_F(Repl, TellsWhatIsNoCommand) {
    const ProgramResult result = typed("TWO ECHO a\nONE\n");
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err,
              "no add-on 'TWO' is loaded (loaded: ONE); 'help' lists the add-ons\n"
              "expected a command after 'ONE'\n");
}

TEST_F(Repl, HelpsAndQuits) {
    const ProgramResult result = typed("help\nquit\nONE ECHO never\n", {"--addon", ADDON_UNTITLED});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out,
              "ID COMMAND runs a command of an add-on; quit ends the program. Loaded add-ons:\n  ONE  The first\n  "
              "UNTITLED\n");
}

TEST_F(Repl, RecordsWhatWasDone) {
    EXPECT_EQ(typed("ONE SAY a\nONE FAIL no\nONE SAY b\n", {"--record", "r.macro"}).status, 0);
    EXPECT_EQ(commandsOf(read("r.macro")), "ONE SAY a\nONE SAY b\n");
}

TEST_F(Repl, TellsOfABrokenContract) {
    const ProgramResult result = typed("ONE LEAVELOCKOPEN\nONE DIALOG a\n");
    EXPECT_NE(result.err.find("[unbalanced-lock]"), std::string::npos) << result.err;
    EXPECT_NE(result.err.find("\nONE: dialog: a\n"), std::string::npos) << result.err;
}

TEST_F(Repl, AnswersFromAStyleFile) {
    write("s.json", R"({"FRAME": 0.5})");
    EXPECT_EQ(typed("ONE STYLE FRAME\n", {"--style", "s.json"}).out, "0.5\n");
    const ProgramResult refused = typed("ONE ECHO a\n", {"--style", "none.json"});
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.out, "");
}

TEST_F(Repl, RefusesAnAddOn) {
    const ProgramResult result = runProgram(repl({}, "none.so"));
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err.rfind("./none.so: ", 0), 0U) << result.err;
}

TEST_F(EditingRepl, CompletesIdsAndFilesInATerminal) {
    write("sweep.txt", "");
    PtyProgram program(repl(), kColumns, terminal());
    ASSERT_TRUE(program.waitFor("> ")) << program.output();
    program.type("O\tECHO swe\t\n");
    EXPECT_TRUE(program.waitFor("\r\nsweep.txt")) << program.output();
    program.type("qu\t\n");
    EXPECT_EQ(program.finish(), 0) << program.output();
}

TEST_F(EditingRepl, CompletesNoIdThatATerminalWouldObey) {
    PtyProgram program(runner({"repl", "--addon", ADDON_HARMFUL}), kColumns, terminal());
    ASSERT_TRUE(program.waitFor("> ")) << program.output();
    program.type("EV\t\nquit\n");
    EXPECT_EQ(program.finish(), 0) << program.output();
    EXPECT_EQ(program.output().find("> EVIL"), std::string::npos) << program.output();
    EXPECT_NE(program.output().find("no add-on 'EV' is loaded"), std::string::npos) << program.output();
}

TEST_F(EditingRepl, BringsLinesOfBeforeBack) {
    for (const char* keys : {"ONE ECHO first\n", "\x1b[A\n"}) {
        PtyProgram program(repl(), kColumns, terminal());
        ASSERT_TRUE(program.waitFor("> ")) << program.output();
        program.type(keys);
        EXPECT_TRUE(program.waitFor("\r\nfirst\r\n> ")) << program.output();
        program.type("\x04");
        EXPECT_EQ(program.finish(), 0) << program.output();
    }
}

TEST_F(EditingRepl, GivesALineUpOnCtrlC) {
    PtyProgram program(repl(), kColumns, terminal());
    ASSERT_TRUE(program.waitFor("> "));
    program.type("ONE ECHO lost");
    ASSERT_TRUE(program.waitFor("lost"));
    program.type("\x03");
    ASSERT_TRUE(program.waitFor("> ")) << program.output();
    program.type("ONE ECHO kept\n");
    EXPECT_TRUE(program.waitFor("\r\nkept")) << program.output();
    EXPECT_EQ(program.output().find("\r\nlost"), std::string::npos) << program.output();
    program.type("quit\n");
    EXPECT_EQ(program.finish(), 0);
}

TEST_F(Repl, StopsATaskOnCtrlC) {
    PtyProgram program(repl({}, ADDON_PROGRESS), kColumns, terminal());
    ASSERT_TRUE(program.waitFor("> "));
    program.type("PROGRESS START Reading;UNTILSTOPPED;FINISH;FAIL given up\n");
    ASSERT_TRUE(program.waitFor("Ctrl-C stops")) << program.output();
    program.type("\x03");
    ASSERT_TRUE(program.waitFor("PROGRESS: given up")) << program.output();
    program.type("PROGRESS SAY next\n");
    EXPECT_TRUE(program.waitFor("\r\nnext")) << program.output();
    program.type("quit\n");
    EXPECT_EQ(program.finish(), 0) << program.output();
}

}  // namespace
}  // namespace vexa::e2e
