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
              "ID COMMAND       run a command of an add-on\n"
              ":reload          unload all add-ons, and load their files again\n"
              ":findings        show all findings of the session\n"
              ":calls           show the host calls of the last command\n"
              ":help [COMMAND]  show this list, or more about a command or an add-on\n"
              "help [COMMAND]   the same as :help\n"
              "quit             end the program\n"
              "Loaded add-ons:\n  ONE  The first\n  UNTITLED\n");
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

TEST_F(Repl, HelpsWithOneCommand) {
    const std::string out = typed(":help :calls\n:help calls\n").out;
    EXPECT_EQ(out.rfind(":calls\n  Shows the lines", 0), 0U) << out;
    EXPECT_EQ(countOf(out, ":calls\n"), 2U) << out;
}

TEST_F(Repl, HelpsWithWhatIsKnownOfAnAddOn) {
    const std::string loadedFrom = std::string("ONE  The first\n  loaded from ") + ADDON_ONE + '\n';
    EXPECT_EQ(typed(":help ONE\n").out, loadedFrom + "  no command has run since the add-on was loaded\n");
    const std::string known = "Commands since the add-on was loaded; the host does not know the others:\n";
    EXPECT_EQ(typed("ONE FAIL COUNT = 2\nONE BATCH\n:help ONE FAIL\n:help ONE SUM\n").out,
              "interactive\n" + loadedFrom + known + "  FAIL  run 1 time, 1 failed; options: COUNT\n" + loadedFrom +
                  "  no command SUM has run since the add-on was loaded\n");
}

TEST_F(Repl, TellsWhichOfItsCommandsIsMeant) {
    EXPECT_EQ(typed(":reloa\n:frob\n:help frob\n").err,
              "there is no command ':reloa'; did you mean :reload?\n"
              "there is no command ':frob'; ':help' lists the commands\n"
              "there is no command and no add-on 'frob'; ':help' lists them\n");
}

TEST_F(Repl, HelpsWithTheDescriptionBesideAnAddOn) {
    std::filesystem::copy_file(ADDON_ONE, folder() / "one.so");
    write("one.commands.json", R"({"addon": "ONE", "commands": [{"name": "ECHO", "kind": "processor",
        "purpose": "Prints a text.", "options": [{"name": "MODE", "type": "String", "help": "how"}]}]})");
    Program program = repl({}, "./one.so");
    program.input = ":help ONE\nONE ECHO MODE = 1\n:help ONE ECHO\n:help echo\n:help ONE ECHOO\n";
    const ProgramResult result = runProgram(program);
    const std::string loadedFrom = "ONE  The first\n  loaded from ./one.so\n";
    const std::string help =
        "ONE ECHO [MODE = text]\n  Prints a text.\n  option  type  default  meaning\n  MODE    text           how\n";
    EXPECT_EQ(result.out,
              loadedFrom + "Commands; ':help ONE ECHO' shows the options of one:\n  ECHO  Prints a text.\nMODE = 1\n" +
                  loadedFrom + help + "Commands since the add-on was loaded:\n  ECHO  run 1 time; options: MODE\n" +
                  help + loadedFrom + "  the description has no command ECHOO; did you mean ECHO?\n");
    EXPECT_EQ(result.err, "");
}

TEST_F(Repl, ShowsTheCallsOfTheLastCommand) {
    EXPECT_EQ(typed(":calls\nONE DIALOG a\nONE BATCH\n:calls\n").out,
              "no command has run since the add-ons were loaded\ninteractive\n"
              "1  ONE BATCH\n1    VexaUtilMacroIsBatchModeActive() = 0\n1    => accepted\n");
}

TEST_F(Repl, ShowsAllFindings) {
    EXPECT_EQ(typed(":findings\n").out, "no findings\n");
    const std::string out = typed("ONE LEAVELOCKOPEN\nONE LEAVELOCKOPEN\nONE ECHO a\n:findings\n").out;
    EXPECT_EQ(out.rfind("a\nONE: error: ", 0), 0U) << out;
    EXPECT_EQ(countOf(out, "[unbalanced-lock]"), 2U) << out;
    EXPECT_EQ(countOf(out, "    hint: "), 1U) << out;
}

// ---- :reload

class ReloadingRepl : public Repl {
protected:
    ReloadingRepl() { std::filesystem::copy_file(ADDON_ONE, addOn()); }

    std::filesystem::path addOn() const { return folder() / "a.so"; }
    // Puts another file in the place of the add-on, as a linker does.
    void build(const std::string& from) const {
        std::filesystem::copy_file(from, folder() / "new.so");
        std::filesystem::rename(folder() / "new.so", addOn());
    }
    PtyProgram started(const std::vector<std::string>& options = {}) const {
        return PtyProgram(repl(options, "./a.so"), kColumns, terminal());
    }
    // Returns the help about the add-on ONE, which has its title.
    static bool hasTitle(PtyProgram& program, const std::string& title) {
        program.type(":help ONE\n");
        return program.waitFor("\r\nONE  " + title + "\r\n");
    }
};

TEST_F(ReloadingRepl, RunsTheNewFile) {
    PtyProgram program = started();
    ASSERT_TRUE(hasTitle(program, "The first")) << program.output();
    build(ADDON_ONE_AGAIN);
    program.type(":reload\n");
    EXPECT_TRUE(program.waitFor("loaded ONE from ./a.so")) << program.output();
    EXPECT_TRUE(hasTitle(program, "The first, again")) << program.output();
    program.type("quit\n");
    EXPECT_EQ(program.finish(), 0) << program.output();
}

TEST_F(ReloadingRepl, RunsTheNewFileThoughTheOldCodeCannotBeUnloaded) {
    build(ADDON_ONE_LASTING);
    PtyProgram program = started();
    ASSERT_TRUE(hasTitle(program, "The lasting")) << program.output();
    build(ADDON_ONE_AGAIN);
    program.type(":reload\n");
    EXPECT_TRUE(hasTitle(program, "The first, again")) << program.output();
    program.type("quit\n");
    EXPECT_EQ(program.finish(), 0) << program.output();
}

TEST_F(ReloadingRepl, RunsTheNewFileThoughTheOldOneWasOverwritten) {
    PtyProgram program = started();
    ASSERT_TRUE(hasTitle(program, "The first")) << program.output();
    std::filesystem::copy_file(ADDON_ONE_AGAIN, addOn(), std::filesystem::copy_options::overwrite_existing);
    program.type(":reload\n");
    EXPECT_TRUE(hasTitle(program, "The first, again")) << program.output();
    program.type("quit\n");
    EXPECT_EQ(program.finish(), 0) << program.output();
}

TEST_F(ReloadingRepl, GoesOnWhenTheOldCodeCrashes) {
    PtyProgram program = started();
    ASSERT_TRUE(hasTitle(program, "The first")) << program.output();
    std::filesystem::resize_file(addOn(), 0);
    program.type(":reload\n");
    EXPECT_TRUE(program.waitFor("the old code crashed while it was unloaded")) << program.output();
    EXPECT_TRUE(program.waitFor("./a.so: not a shared object")) << program.output();
    build(ADDON_ONE);
    program.type(":reload\n");
    EXPECT_TRUE(hasTitle(program, "The first")) << program.output();
    program.type("quit\n");
    EXPECT_EQ(program.finish(), 0) << program.output();
}

TEST_F(ReloadingRepl, GoesOnWithoutAFileThatCannotBeLoaded) {
    PtyProgram typing(repl({"--addon", ADDON_SECOND}, "./a.so"), kColumns, terminal());
    ASSERT_TRUE(hasTitle(typing, "The first")) << typing.output();
    write("new.so", "half of it");
    std::filesystem::rename(folder() / "new.so", addOn());
    typing.type(":reload\n");
    EXPECT_TRUE(
        typing.waitFor("./a.so: not a shared object\r\n./a.so: the old code is unloaded, too; ':reload' tries "
                       "again\r\nloaded SECOND from "))
        << typing.output();
    typing.type("ONE ECHO b\n");
    EXPECT_TRUE(typing.waitFor("no add-on 'ONE' is loaded (loaded: SECOND)")) << typing.output();
    typing.type("SECOND ECHO see\n");
    EXPECT_TRUE(typing.waitFor("\r\nsee\r\n")) << typing.output();
    build(ADDON_ONE);
    typing.type(":reload\n");
    EXPECT_TRUE(hasTitle(typing, "The first")) << typing.output();
    typing.type("quit\n");
    EXPECT_EQ(typing.finish(), 0) << typing.output();
}

TEST_F(ReloadingRepl, TellsOfOldCodeThatStaysInItsProcess) {
    Program program = repl({"--in-process"}, ADDON_ONE_LASTING);
    program.input = "ONE ECHO a\n:reload\nONE ECHO b\n";
    const ProgramResult result = runProgram(program);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "a\n");
    EXPECT_EQ(result.err.rfind(std::string(ADDON_ONE_LASTING) + ": error: the old code stays in this process", 0), 0U)
        << result.err;
    EXPECT_NE(result.err.find("no add-on 'ONE' is loaded"), std::string::npos) << result.err;
}

// Most of the other add-ons have a symbol that keeps them in the process.
TEST_F(ReloadingRepl, LoadsAgainInItsProcess) {
    Program program = repl({"--in-process"}, ADDON_HANGING);
    program.input = ":reload\n";
    EXPECT_EQ(runProgram(program).out, std::string("loaded HANGING from ") + ADDON_HANGING + '\n');
}

TEST_F(ReloadingRepl, KeepsRecordingStyleAndFindings) {
    write("s.json", R"({"FRAME": 0.5})");
    const ProgramResult result = typed(
        "ONE SAY a\nONE LEAVELOCKOPEN\n:reload\nONE SAY b\nONE STYLE FRAME\n:findings\nONE FAILSILENTLY\n:findings\n",
        {"--record", "r.macro", "--style", "s.json"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(commandsOf(read("r.macro")), "ONE SAY a\nONE SAY b\n");
    EXPECT_NE(result.out.find("\nb\n0.5\nbefore the last :reload:\nONE: error: "), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("\nsince then:\nONE: warning: "), std::string::npos) << result.out;
    EXPECT_EQ(countOf(result.out, "[unbalanced-lock]"), 2U) << result.out;
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

TEST_F(EditingRepl, CompletesWhatTheDescriptionBesideTheAddOnHas) {
    std::filesystem::copy_file(ADDON_ONE, folder() / "one.so");
    write("one.commands.json", R"({"addon": "ONE", "commands": [{"name": "ECHO", "kind": "processor", "purpose": "p",
        "options": [{"name": "MODE", "type": "Choice", "values": ["fast", "slow"], "help": "h"}]}]})");
    write("swe.txt", "");
    PtyProgram program(runner({"repl", "--addon", "./one.so"}), kColumns, terminal());
    ASSERT_TRUE(program.waitFor("> ")) << program.output();
    program.type("O\tE\tm\t's\t\n");
    EXPECT_TRUE(program.waitFor("\r\nMODE = 'slow'")) << program.output();
    program.type("ONE ECHO swe\t\n");
    EXPECT_TRUE(program.waitFor("\r\nswe.txt")) << program.output();
    program.type("quit\n");
    EXPECT_EQ(program.finish(), 0) << program.output();
}

TEST_F(EditingRepl, OffersRequiredOptionsFirstAndOthersInTheOrderOfTheDescription) {
    std::filesystem::copy_file(ADDON_ONE, folder() / "one.so");
    write("one.commands.json", R"({"addon": "ONE", "commands": [{"name": "ECHO", "kind": "command", "purpose": "p",
        "options": [{"name": "MODE", "type": "String", "help": "h"}, {"name": "AREA", "type": "String", "help": "h"},
                    {"name": "ZONE", "type": "String", "required": true, "help": "h"}]}]})");
    PtyProgram program(repl({}, "./one.so"), kColumns, terminal());
    ASSERT_TRUE(program.waitFor("> ")) << program.output();
    program.type("ONE ECHO \t\t");
    EXPECT_TRUE(program.waitFor("ZONE=  MODE=  AREA=")) << program.output();
    program.type("\nquit\n");
    EXPECT_EQ(program.finish(), 0) << program.output();
}

TEST_F(EditingRepl, CompletesItsCommandsAndTheirNamesInHelp) {
    PtyProgram program(repl(), kColumns, terminal());
    ASSERT_TRUE(program.waitFor("> ")) << program.output();
    program.type(":fin\t\n");
    EXPECT_TRUE(program.waitFor("no findings")) << program.output();
    program.type(":help :ca\t\n");
    EXPECT_TRUE(program.waitFor("Shows the lines")) << program.output();
    program.type("quit\n");
    EXPECT_EQ(program.finish(), 0) << program.output();
}

TEST_F(EditingRepl, CompletesDescribedCommandsInHelp) {
    std::filesystem::copy_file(ADDON_ONE, folder() / "one.so");
    write("one.commands.json", R"({"addon": "ONE", "commands": [{"name": "ECHO", "kind": "processor",
        "purpose": "Prints a text.", "options": [{"name": "MODE", "type": "String", "help": "how"}]}]})");
    PtyProgram program(repl({}, "./one.so"), kColumns, terminal());
    ASSERT_TRUE(program.waitFor("> ")) << program.output();
    program.type(":help O\tE\tM\t\n");
    EXPECT_TRUE(program.waitFor("Prints a text.")) << program.output();
    program.type("quit\n");
    EXPECT_EQ(program.finish(), 0) << program.output();
    EXPECT_EQ(countOf(program.output(), "MODE = "), 1U) << program.output();  // in the help, not completed
}

TEST_F(EditingRepl, CompletesFromTheNewDescriptionAfterAReload) {
    std::filesystem::copy_file(ADDON_ONE, folder() / "one.so");
    PtyProgram program(repl({}, "./one.so"), kColumns, terminal());
    ASSERT_TRUE(program.waitFor("> ")) << program.output();
    write("one.commands.json",
          R"({"addon": "ONE", "commands": [{"name": "ECHO", "kind": "processor", "purpose": "p"}]})");
    program.type(":reload\n");
    ASSERT_TRUE(program.waitFor("loaded ONE from ")) << program.output();
    program.type("ONE E\tnew\n");
    EXPECT_TRUE(program.waitFor("\r\nnew\r\n")) << program.output();
    program.type("quit\n");
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
