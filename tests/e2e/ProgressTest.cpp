#include <chrono>

#include "TerminalTest.h"

namespace vexa::e2e {
namespace {

using StatusLine = TerminalTest;

bool startsWith(const std::string& text, const std::string& start) { return text.rfind(start, 0) == 0; }

TEST_F(StatusLine, IsDrawnInPlaceAndRemoved) {
    PtyProgram program(
        progressRunner("PROGRESS START Reading rows;PERCENT 10;WAITFOR go;PERCENT 60;WAITFOR on;FINISH\n"), kColumns,
        plainTerminal());
    ASSERT_TRUE(program.waitFor(" 10 %") && program.waitFor("stops\r")) << program.output();
    EXPECT_TRUE(startsWith(screenOf(program).currentRow(), "Reading rows  [##                  ]  10 %  0:0"))
        << screenOf(program).currentRow();
    write("go", "");
    ASSERT_TRUE(program.waitFor(" 60 %") && program.waitFor("stops\r")) << program.output();
    EXPECT_TRUE(startsWith(screenOf(program).currentRow(), "Reading rows  [############        ]  60 %  0:0"))
        << screenOf(program).currentRow();
    EXPECT_EQ(program.output().find('\n'), std::string::npos);
    write("on", "");
    EXPECT_EQ(program.finish(), 0);
    EXPECT_EQ(screenOf(program).rows(), Rows());
}

TEST_F(StatusLine, ShowsTheTimePassedAndTheTimeLeft) {
    PtyProgram program(progressRunner("PROGRESS START Reading;PERCENT 50;WAITFOR go;FINISH\n"), kColumns,
                       plainTerminal());
    EXPECT_TRUE(program.waitFor(" 50 %  0:00  Ctrl-C stops")) << program.output();
    EXPECT_TRUE(program.waitFor(" 50 %  0:01, 0:01 left  Ctrl-C stops")) << program.output();
    write("go", "");
    EXPECT_EQ(program.finish(), 0);
}

TEST_F(StatusLine, ShowsNoMoreThanTheTaskAsksFor) {
    struct Case {
        const char* start;
        const char* row;
    };
    const Case cases[] = {
        {"STARTWITHOUTBUTTON Reading", "Reading  [                    ]   0 %  0:00\r"},
        {"STARTWITHOUTBAR Reading", "Reading  0:00  Ctrl-C stops\r"},
        {"START", "\033[J[                    ]   0 %  0:00  Ctrl-C stops\r"},
    };
    for (const Case& c : cases) {
        PtyProgram program(progressRunner("PROGRESS " + std::string(c.start) + ";FINISH\n"), kColumns, plainTerminal());
        EXPECT_EQ(program.finish(), 0);
        EXPECT_NE(program.output().find(c.row), std::string::npos) << program.output();
    }
}

TEST_F(StatusLine, ShowsItsLastTextThoughItCameTooSoonToDraw) {
    PtyProgram program(progressRunner("PROGRESS START Reading;TEXT Sorting;TEXT Writing;WAITFOR go;FINISH\n"), kColumns,
                       plainTerminal());
    EXPECT_TRUE(program.waitFor("Writing")) << program.output();
    write("go", "");
    EXPECT_EQ(program.finish(), 0);
}

// The add-on's output is among it, so that the line makes room for it again and again.
TEST_F(StatusLine, IsDrawnAtMostTenTimesASecond) {
    for (const char* const flood : {"SWEEP 10000", "RESTART 10000", "RETITLE 10000", "SAYMUCH 1000"}) {
        SCOPED_TRACE(flood);
        const auto begin = std::chrono::steady_clock::now();
        PtyProgram program(progressRunner("PROGRESS START Working;" + std::string(flood) + ";FINISH\n",
                                          {"--suppress", "percent-backwards"}),
                           kColumns, plainTerminal());
        EXPECT_EQ(program.finish(), 0);
        const auto duration = std::chrono::steady_clock::now() - begin;
        const auto tenths = static_cast<std::size_t>(duration / std::chrono::milliseconds(100));
        EXPECT_LE(countOf(program.output(), "  [#") + countOf(program.output(), "  [ "), 1 + tenths);
        EXPECT_GE(countOf(program.output(), "Working  ["), 1U);
    }
}

TEST_F(StatusLine, IsRemovedWhenTheAddOnForgotIt) {
    PtyProgram program(
        progressRunner("PROGRESS START Reading;PERCENT 10\nPROGRESS SAY next\n", {"--suppress", "unbalanced-status"}),
        kColumns, plainTerminal());
    EXPECT_EQ(program.finish(), 0);
    EXPECT_EQ(screenOf(program).rows(), Rows({"next"}));
}

TEST_F(StatusLine, FitsANarrowWindow) {
    struct Case {
        unsigned short columns;
        const char* row;
    };
    const Case cases[] = {
        {80, "Reading the rows of all zones  [                    ]   0 %  0:00  Ctrl-C stops"},
        {79, "Reading the rows of all zones  [                    ]   0 %  0:00"},
        {62, "Reading the rows of all …  [                    ]   0 %  0:00"},
        {45, "Reading…  [                    ]   0 %  0:00"},
        {44, "Reading the rows of all zones   0 %  0:00"},
        {30, "Reading the rows…   0 %  0:00"},
        {20, "Reading the …   0 %"},
        {8, "Readin…"},
        {2, "…"},
        {1, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.columns);
        PtyProgram program(progressRunner("PROGRESS START Reading the rows of all zones;WAITFOR go;FINISH\n"),
                           c.columns, plainTerminal());
        ASSERT_TRUE(program.waitFor("\r\033[J") && program.waitFor("\r"));
        EXPECT_EQ(screenOf(program, c.columns).rows(), *c.row == '\0' ? Rows() : Rows({c.row}));
        write("go", "");
        EXPECT_EQ(program.finish(), 0);
        std::filesystem::remove(folder() / "go");
    }
}

TEST_F(StatusLine, FollowsTheWindowThatBecomesNarrower) {
    PtyProgram program(progressRunner("PROGRESS START Reading;WAITFOR go;PERCENT 70;WAITFOR on;FINISH\n"), kColumns,
                       plainTerminal());
    ASSERT_TRUE(program.waitFor("stops\r"));
    TerminalScreen screen = screenOf(program);
    const std::size_t before = program.output().size();
    screen.narrow(20);
    EXPECT_EQ(screen.rows().size(), 3U) << "the line that was drawn is wrapped";
    program.resize(20);
    write("go", "");
    ASSERT_TRUE(program.waitFor(" 70 %") && program.waitFor("\r"));
    write("on", "");
    EXPECT_EQ(program.finish(), 0);
    const std::string after = program.output().substr(before);
    const std::size_t removal = after.rfind("\r\033[J");
    screen.feed(after.substr(0, removal));
    EXPECT_EQ(screen.rows(), Rows({"Reading  70 %  0:00"}));
    screen.feed(after.substr(removal));
    EXPECT_EQ(screen.rows(), Rows());
}

TEST_F(StatusLine, CutsTextBetweenCharacters) {
    PtyProgram program(progressRunner("PROGRESS START ÄÖÜäöüßÄÖÜäöüßÄÖÜ;WAITFOR go;FINISH\n"), 20, plainTerminal());
    ASSERT_TRUE(program.waitFor("%\r")) << program.output();
    EXPECT_EQ(screenOf(program, 20).rows(), Rows({"ÄÖÜäöüßÄÖÜäö…   0 %"}));
    write("go", "");
    EXPECT_EQ(program.finish(), 0);
}

TEST_F(StatusLine, CountsTheColumnsOfWideCharacters) {
    PtyProgram program(progressRunner("PROGRESS START 中文中文中文中文中文;WAITFOR go;FINISH\n"), 20, plainTerminal());
    ASSERT_TRUE(program.waitFor("%\r")) << program.output();
    EXPECT_EQ(screenOf(program, 20).rows(), Rows({"中文中文中文…   0 %"}));  // 13 and 6 columns
    write("go", "");
    EXPECT_EQ(program.finish(), 0);
}

TEST_F(StatusLine, StaysOneLineWhateverItsText) {
    PtyProgram program(progressRunner("PROGRESS START a\tb\033[31mc\xFFz;FINISH\n"), kColumns, plainTerminal());
    EXPECT_EQ(program.finish(), 0);
    EXPECT_NE(program.output().find("a b [31mc?z  [ "), std::string::npos) << program.output();
}

TEST_F(StatusLine, IsColouredUnlessTheUserWantsNone) {
    struct Case {
        const char* noColour;
        bool isColoured;
    };
    for (const Case& c : {Case{"NO_COLOR=", true}, Case{"NO_COLOR=1", false}}) {
        SCOPED_TRACE(c.noColour);
        PtyProgram program(progressRunner("PROGRESS START Reading;FINISH\n"), kColumns, {"TERM=xterm", c.noColour});
        EXPECT_EQ(program.finish(), 0);
        EXPECT_EQ(program.output().find("\033[32m") != std::string::npos, c.isColoured) << program.output();
    }
}

TEST_F(StatusLine, DoesNotMixWithMessagesAndOutput) {
    PtyProgram program(
        progressRunner("PROGRESS START Reading;SAY one;DIALOG two;SAY three;PERCENT 40;WAITFOR go;FINISH\n"
                       "PROGRESS START Writing;SAY four;DIALOG five\n",
                       {"--verbose", "--suppress", "unbalanced-status"}),
        kColumns, plainTerminal());
    ASSERT_TRUE(program.waitFor("three\r\n") && program.waitFor(" 40 %") && program.waitFor("stops\r"));
    Rows rows = screenOf(program, 200).rows();
    ASSERT_EQ(rows.size(), 5U);
    EXPECT_EQ(rows[3], "three");
    EXPECT_TRUE(startsWith(rows[4], "Reading  [########            ]  40 %")) << rows[4];
    write("go", "");
    EXPECT_EQ(program.finish(), 0);
    rows = screenOf(program, 200).rows();
    rows.erase(rows.begin(), rows.begin() + 1);  // the command itself
    EXPECT_EQ(rows, Rows({"one", "m.macro:1: PROGRESS: dialog: two", "three",
                          "m.macro:2: PROGRESS START Writing;SAY four;DIALOG five", "four",
                          "m.macro:2: PROGRESS: dialog: five", "2 commands run, 0 failed"}));
}

TEST_F(StatusLine, LetsALineOfOutputWaitUntilItIsWhole) {
    PtyProgram program(
        progressRunner("PROGRESS START Reading;PART half;PERCENT 30;WAITFOR go;SAY  a line;PART end;FINISH\n"),
        kColumns, plainTerminal());
    ASSERT_TRUE(program.waitFor(" 30 %") && program.waitFor("stops\r"));
    EXPECT_EQ(screenOf(program).rows().size(), 1U);
    EXPECT_EQ(program.output().find("half"), std::string::npos) << program.output();
    write("go", "");
    EXPECT_EQ(program.finish(), 0);
    EXPECT_EQ(screenOf(program).rows(), Rows({"half a line", "end"}));
}

TEST_F(StatusLine, LeavesTheStartOfALineOfOutputToBeRead) {
    PtyProgram program(progressRunner("PROGRESS PART Loading;START Reading;PERCENT 30;FINISH;SAY done\n"), kColumns,
                       plainTerminal());
    EXPECT_EQ(program.finish(), 0);
    EXPECT_EQ(screenOf(program).rows(), Rows({"Loading", "done"}));
}

TEST_F(StatusLine, KeepsMuchOutputWholeAndInOrder) {
    PtyProgram program(progressRunner("PROGRESS START Reading;SAYMUCH 5000;FINISH;DIALOG end\n"), kColumns,
                       plainTerminal());
    EXPECT_EQ(program.finish(), 0);
    Rows expected;
    for (int line = 0; line < 5000; ++line) expected.push_back("line " + std::to_string(line));
    expected.emplace_back("m.macro:1: PROGRESS: dialog: end");
    EXPECT_EQ(screenOf(program).rows(), expected);
}

TEST_F(StatusLine, LeavesAStandardOutputThatIsAFileAlone) {
    PtyProgram program(shellRunner("PROGRESS START Reading;SAY a;FINISH\n", "exec ", "> out.txt"), kColumns,
                       plainTerminal());
    EXPECT_EQ(program.finish(), 0);
    EXPECT_NE(program.output().find("Reading  [ "), std::string::npos) << program.output();
    EXPECT_EQ(screenOf(program).rows(), Rows());
    EXPECT_EQ(read("out.txt"), "a\n");
}

TEST_F(StatusLine, IsAFewMessagesWithoutATerminal) {
    struct Case {
        const char* why;
        const char* command;
        const char* err;
    };
    const Case cases[] = {
        {"every ten percent", "START Reading;PERCENT 5;PERCENT 10;PERCENT 19;PERCENT 35;PERCENT 100;FINISH",
         "m.macro:1: PROGRESS: Reading\n"
         "m.macro:1: PROGRESS: Reading: 10 %\n"
         "m.macro:1: PROGRESS: Reading: 30 %\n"
         "m.macro:1: PROGRESS: Reading: done\n"},
        {"not all was done", "START Reading;PERCENT 9;FINISH",
         "m.macro:1: PROGRESS: Reading\n"
         "m.macro:1: PROGRESS: Reading: ended at 9 %\n"},
        {"another text", "START Reading;TEXT Writing;PERCENT 20;PERCENT 100;FINISH",
         "m.macro:1: PROGRESS: Reading\n"
         "m.macro:1: PROGRESS: Writing: 20 %\n"
         "m.macro:1: PROGRESS: Writing: done\n"},
        {"no bar", "STARTWITHOUTBAR Reading;PERCENT 20;FINISH",
         "m.macro:1: PROGRESS: Reading\n"
         "m.macro:1: PROGRESS: Reading: done\n"},
        {"two tasks", "START A;PERCENT 20;FINISH;START B;PERCENT 100;FINISH",
         "m.macro:1: PROGRESS: A\n"
         "m.macro:1: PROGRESS: A: 20 %\n"
         "m.macro:1: PROGRESS: A: ended at 20 %\n"
         "m.macro:1: PROGRESS: B\n"
         "m.macro:1: PROGRESS: B: done\n"},
        {"output after the end", "START A;PERCENT 100;FINISH;DIALOG b",
         "m.macro:1: PROGRESS: A\n"
         "m.macro:1: PROGRESS: dialog: b\n"
         "m.macro:1: PROGRESS: A: done\n"},
        {"nothing to show", "STARTBARE;PERCENT 20;FINISH", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        const ProgramResult result = runProgram(progressRunner("PROGRESS " + std::string(c.command) + '\n'));
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, c.err);
    }
}

TEST_F(StatusLine, IsNotDoneWhenItsCommandFailed) {
    struct Case {
        const char* why;
        const char* macro;
        const char* err;
    };
    const Case cases[] = {
        {"a bar that finished", "PROGRESS START A;PERCENT 100;FINISH;FAIL b\n",
         "m.macro:1: PROGRESS: A\n"
         "m.macro:1: PROGRESS: A: failed\n"
         "m.macro:1: PROGRESS: b\n"},
        {"no bar", "PROGRESS STARTWITHOUTBAR A;FINISH;FAIL b\n",
         "m.macro:1: PROGRESS: A\n"
         "m.macro:1: PROGRESS: A: failed\n"
         "m.macro:1: PROGRESS: b\n"},
        {"the last of two tasks", "PROGRESS START A;PERCENT 100;FINISH;START B;FINISH;FAIL b\n",
         "m.macro:1: PROGRESS: A\n"
         "m.macro:1: PROGRESS: A: done\n"
         "m.macro:1: PROGRESS: B\n"
         "m.macro:1: PROGRESS: B: failed\n"
         "m.macro:1: PROGRESS: b\n"},
        {"a command before", "PROGRESS START A;PERCENT 100;FINISH\nPROGRESS FAIL b\n",
         "m.macro:1: PROGRESS: A\n"
         "m.macro:1: PROGRESS: A: done\n"
         "m.macro:2: PROGRESS: b\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        EXPECT_EQ(runProgram(progressRunner(c.macro)).err, c.err);
    }
    Program repl = runner({"repl", "--addon", ADDON_PROGRESS});
    repl.input = "PROGRESS START A;PERCENT 100;FINISH;FAIL b\n";
    EXPECT_EQ(runProgram(repl).err, "PROGRESS: A\nPROGRESS: A: failed\nPROGRESS: b\n");
}

TEST_F(StatusLine, FillsNoLog) {
    for (const char* const flood : {"SWEEP 10000", "RESTART 10000", "RETITLE 10000"}) {
        SCOPED_TRACE(flood);
        const auto begin = std::chrono::steady_clock::now();
        const ProgramResult result = runProgram(progressRunner(
            "PROGRESS START Working;" + std::string(flood) + ";FINISH\n", {"--suppress", "percent-backwards"}));
        const auto duration = std::chrono::steady_clock::now() - begin;
        const auto seconds = static_cast<std::size_t>(duration / std::chrono::seconds(1));
        EXPECT_LE(countOf(result.err, "m.macro:1: PROGRESS: "), 21 + 10 * seconds) << result.err;
    }
}

TEST_F(StatusLine, CountsTheTasksThatItLeavesOut) {
    const std::string err =
        runProgram(progressRunner("PROGRESS START Working;RESTART 1000;FINISH\nPROGRESS START A;FINISH\n")).err;
    EXPECT_NE(err.find("m.macro:1: PROGRESS: Restarting 8\n"), std::string::npos) << err;
    EXPECT_NE(err.find("m.macro:1: PROGRESS: and 99"), std::string::npos) << err;
    EXPECT_NE(err.find(" more tasks\nm.macro:2: PROGRESS: A\nm.macro:2: PROGRESS: A: ended at 0 %\n"),
              std::string::npos)
        << err;
}

TEST_F(StatusLine, IsMessagesInATerminalThatCannotDraw) {
    PtyProgram program(progressRunner("PROGRESS START Reading;PERCENT 100;SAY a;FINISH\n"), kColumns, {"TERM=dumb"});
    EXPECT_EQ(program.finish(), 0);
    EXPECT_EQ(program.output(), "m.macro:1: PROGRESS: Reading\r\na\r\nm.macro:1: PROGRESS: Reading: done\r\n");
}

TEST_F(StatusLine, IsAbsentInBatchMode) {
    const Program program = progressRunner("PROGRESS START Reading;PERCENT 50;SAY a;FINISH\n", {"--batch"});
    PtyProgram inTerminal(program, kColumns, plainTerminal());
    EXPECT_EQ(inTerminal.finish(), 0);
    EXPECT_EQ(inTerminal.output(), "a\r\n");
    EXPECT_EQ(runProgram(program).err, "");
}

}  // namespace
}  // namespace vexa::e2e
