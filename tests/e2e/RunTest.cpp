#include <sstream>

#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

using MacroRun = RunnerTest;

// The messages without findings. A finding is a line with a rule in brackets, and the indented lines after it.
std::string messagesOf(const ProgramResult& result) {
    std::istringstream lines(result.err);
    std::string messages;
    bool isInFinding = false;
    for (std::string line; std::getline(lines, line);) {
        const bool isIndented = line.rfind("    ", 0) == 0;
        isInFinding = isIndented ? isInFinding : line.back() == ']';
        const bool isHint = line.find(": compile the add-on with -g ") != std::string::npos;
        if (!isInFinding && !isHint) messages += line + '\n';
    }
    return messages;
}

TEST_F(MacroRun, EndsWithTheFirstFailedCommand) {
    const ProgramResult result = runMacro("ONE ECHO a\nONE FAIL no such zone\nONE ECHO b\n");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "a\n");
    EXPECT_EQ(result.err, "m.macro:2: ONE: no such zone\n");
}

TEST_F(MacroRun, KeepsGoingWhenAsked) {
    const ProgramResult result =
        runMacro("ONE FAIL first\nONE ECHO a\nONE FAIL second\nONE ECHO b\n", {"--keep-going"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "a\nb\n");
    EXPECT_EQ(result.err, "m.macro:1: ONE: first\nm.macro:3: ONE: second\n");
}

TEST_F(MacroRun, KeepsGoingToAllWell) { EXPECT_EQ(runMacro("ONE ECHO a\n", {"--keep-going"}).status, 0); }

TEST_F(MacroRun, ShowsTheMessageOfAFailure) {
    struct Case {
        const char* why;
        const char* command;
        const char* err;
    };
    const Case cases[] = {
        {"one line", "FAIL bad", "m.macro:1: ONE: bad\n"},
        {"line feeds and blanks at the end", "FAIL bad \t| |", "m.macro:1: ONE: bad\n"},
        {"blanks at the start stay", "FAIL  bad", "m.macro:1: ONE:  bad\n"},
        {"several lines", "FAIL bad|worse|  worst|", "m.macro:1: ONE: bad\n    worse\n      worst\n"},
        {"no message", "FAILSILENTLY", "m.macro:1: ONE: the command failed without a message\n"},
        {"empty message", "FAIL ", "m.macro:1: ONE: the command failed without a message\n"},
        {"message of blanks", "FAIL | |", "m.macro:1: ONE: the command failed without a message\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        const ProgramResult result = runMacro("ONE " + std::string(c.command) + '\n');
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(messagesOf(result), c.err);
    }
}

TEST_F(MacroRun, TakesAnEscapedExceptionForAFailure) {
    const ProgramResult result = runMacro("ONE THROW boom\nONE ECHO a\n");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(messagesOf(result), "m.macro:1: ONE: an exception escaped from the add-on: boom\n");
}

TEST_F(MacroRun, ShowsDialogsAsTheyCome) {
    const ProgramResult result = runMacro("ONE DIALOG first|line|\nONE ECHO a\nONE DIALOG second\n");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "a\n");
    EXPECT_EQ(result.err, "m.macro:1: ONE: dialog: first\n    line\nm.macro:3: ONE: dialog: second\n");
}

TEST_F(MacroRun, ShowsADialogOutsideOfCommandsUnderItsOwnName) {
    const ProgramResult result = runMacro("ONE DIALOGATSHUTDOWN now\n");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "vexa-standin: dialog: goodbye\n");
}

TEST_F(MacroRun, TellsTheAddOnsOfBatchMode) {
    EXPECT_EQ(runMacro("ONE BATCH\n", {"--batch"}).out, "batch\n");
    EXPECT_EQ(runMacro("ONE BATCH\n").out, "interactive\n");
}

TEST_F(MacroRun, AnswersTheAddOnsFromAStyleFile) {
    write("s.json", R"({"FRAME": {"LINETHICKNESS": 0.4}})");
    EXPECT_EQ(runMacro("ONE STYLE FRAME LINETHICKNESS\n", {"--style", "s.json"}).out, "0.4\n");
    EXPECT_EQ(runMacro("ONE STYLE FRAME LINETHICKNESS\n").out, "no double\n");
}

TEST_F(MacroRun, AnswersAnAddOnThatIsJustLoadedFromAStyleFile) {
    write("s.json", R"({"LOADED": 1.5})");
    EXPECT_EQ(runMacro("ONE STYLEATLOAD\n", {"--style", "s.json"}).out, "1.5\n");
}

TEST_F(MacroRun, DoesNothingWithAStyleFileThatCannotBeUsed) {
    write("r.macro", "old\n");
    write("s.json", "{\"A\": 0.5,\n \"B\": null}");
    const ProgramResult result = runMacro("ONE SAY a\n", {"--style", "s.json", "--record", "r.macro"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "s.json:2:7: expected a number, a text, a set or keywords\n");
    EXPECT_EQ(read("r.macro"), "old\n");
}

TEST_F(MacroRun, SendsEachCommandToItsAddOn) {
    const ProgramResult result = runMacro("SECOND FAIL a\nONE FAIL b\n", {"--addon", ADDON_SECOND, "--keep-going"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "m.macro:1: SECOND: a\nm.macro:2: ONE: b\n");
}

TEST_F(MacroRun, RefusesAnAddOn) {
    write("text.so", "no shared object");
    struct Case {
        const char* why;
        const char* file;
        const char* err;
    };
    const Case cases[] = {
        {"its id is taken", ADDON_ONE_AGAIN, ADDON_ONE_AGAIN ": an add-on ONE is already loaded, from " ADDON_ONE "\n"},
        {"named twice", ADDON_ONE, ADDON_ONE ": an add-on ONE is already loaded, from " ADDON_ONE "\n"},
        {"no entry", NO_ADDON, NO_ADDON ": it does not export the function vexaAddOn, so it is not an add-on\n"},
        {"its entry refuses", ADDON_REFUSING, ADDON_REFUSING ": it refuses to be loaded (its entry returned null)\n"},
        {"no file", "gone.so", "./gone.so: no such file\n"},
        {"no shared object", "./text.so", "./text.so: not a shared object\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        const ProgramResult result = runMacro("ONE ECHO a\n", {"--addon", c.file});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, c.err);
    }
}

TEST_F(MacroRun, ShowsEachCommandAndASummaryWhenVerbose) {
    const ProgramResult result =
        runMacro("ONE SAY a\n\n  ONE   FAIL b\nONE SAY c\n", {"--verbose", "--keep-going", "--record", "r.macro"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "a\nc\n");
    EXPECT_EQ(result.err,
              "m.macro:1: ONE SAY a\n"
              "m.macro:3: ONE FAIL b\n"
              "m.macro:3: ONE: b\n"
              "m.macro:4: ONE SAY c\n"
              "3 commands run, 1 failed; 2 recorded in r.macro\n");
}

TEST_F(MacroRun, SumsUpOnlyWhatWasAskedFor) {
    EXPECT_EQ(runMacro("ONE ECHO a\n", {"--verbose"}).err, "m.macro:1: ONE ECHO a\n1 command run, 0 failed\n");
    EXPECT_EQ(runMacro("# none\n", {"--verbose", "--journal", "j.macro"}).err,
              "0 commands run, 0 failed; 0 journaled in j.macro\n");
}

TEST_F(MacroRun, KeepsBothOutputsInOrder) {
    write("m.macro", "ONE ECHO a\nONE DIALOG b\nONE ECHO c\nONE FAIL d\n");
    Program program = macroRunner({"--verbose"});
    program.asOneOutput = true;
    EXPECT_EQ(runProgram(program).out,
              "m.macro:1: ONE ECHO a\n"
              "a\n"
              "m.macro:2: ONE DIALOG b\n"
              "m.macro:2: ONE: dialog: b\n"
              "m.macro:3: ONE ECHO c\n"
              "c\n"
              "m.macro:4: ONE FAIL d\n"
              "m.macro:4: ONE: d\n"
              "4 commands run, 1 failed\n");
}

}  // namespace
}  // namespace vexa::e2e
