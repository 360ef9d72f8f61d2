#include <csignal>

#include "TerminalTest.h"

namespace vexa::e2e {
namespace {

using StopButton = TerminalTest;

constexpr const char* kCtrlC = "\x03";

TEST_F(StopButton, StopsTheTaskAndTheMacro) {
    PtyProgram program(progressRunner("PROGRESS START Reading;UNTILSTOPPED;FINISH;FAIL given up\nPROGRESS SAY next\n"),
                       kColumns, plainTerminal());
    ASSERT_TRUE(program.waitFor("Reading"));
    program.type(kCtrlC);
    EXPECT_EQ(program.finish(), 130);
    EXPECT_EQ(screenOf(program).rows(), Rows({"m.macro:1: PROGRESS: given up", "m.macro:1: PROGRESS: stopped"}));
}

TEST_F(StopButton, LeavesWhatWasRecordedWholeAndRunnable) {
    PtyProgram program(progressRunner("PROGRESS RECORD a\n"
                                      "PROGRESS RECORD b;START Reading;UNTILSTOPPED;FINISH\n"
                                      "PROGRESS RECORD c\n",
                                      {"--record", "r.macro", "--journal", "j.macro"}),
                       kColumns, plainTerminal());
    ASSERT_TRUE(program.waitFor("Reading"));
    program.type(kCtrlC);
    EXPECT_EQ(program.finish(), 130);
    EXPECT_EQ(fileNames().size(), 3U) << "the macro, the recording, and the journal";
    const ProgramResult playedBack = runProgram(runner({"run", "r.macro", "--addon", ADDON_PROGRESS}));
    EXPECT_EQ(playedBack.status, 0) << playedBack.err;
    EXPECT_EQ(playedBack.out, "a\nb\n");
}

TEST_F(StopButton, StopsEvenWhenAskedToKeepGoing) {
    PtyProgram program(progressRunner("PROGRESS START Reading;UNTILSTOPPED;FINISH;FAIL given up\nPROGRESS SAY next\n",
                                      {"--keep-going"}),
                       kColumns, plainTerminal());
    ASSERT_TRUE(program.waitFor("Reading"));
    program.type(kCtrlC);
    EXPECT_EQ(program.finish(), 130);
    EXPECT_EQ(program.output().find("next"), std::string::npos) << program.output();
}

TEST_F(StopButton, GoesBeforeABrokenContract) {
    PtyProgram program(progressRunner("PROGRESS START Reading;UNTILSTOPPED\n", {"--strict"}), kColumns,
                       plainTerminal());
    ASSERT_TRUE(program.waitFor("Reading"));
    program.type(kCtrlC);
    EXPECT_EQ(program.finish(), 130);
    EXPECT_NE(program.output().find("[unbalanced-"), std::string::npos) << program.output();
}

TEST_F(StopButton, StopsTheReplayOfARecording) {
    PtyProgram program(progressRunner("PROGRESS PLAYBACK\nPROGRESS SAY done\n", {"--strict", "--record", "r.macro"}),
                       kColumns, plainTerminal());
    ASSERT_TRUE(waitForFile("again"));
    program.type(kCtrlC);
    EXPECT_EQ(program.finish(), 130);
    EXPECT_NE(program.output().find("vexa-standin: stopped\r\n"), std::string::npos) << program.output();
    EXPECT_EQ(commandsOf(read("r.macro")), "PROGRESS MAKE again;START Again;UNTILSTOPPED;FINISH\n");
}

TEST_F(StopButton, ShowsThatTheTaskIsAboutToStop) {
    PtyProgram program(progressRunner("PROGRESS START Reading;WAITFOR go;FINISH\n"), kColumns, plainTerminal());
    ASSERT_TRUE(program.waitFor("Ctrl-C stops"));
    program.type(kCtrlC);
    EXPECT_TRUE(program.waitFor("stopping")) << program.output();
    write("go", "");
    EXPECT_EQ(program.finish(), 130);
    EXPECT_EQ(screenOf(program).rows(), Rows({"m.macro:1: PROGRESS: stopped"}));
}

TEST_F(StopButton, WorksWithoutAStatusLine) {
    PtyProgram program(progressRunner("PROGRESS START Reading;UNTILSTOPPED;FINISH\n"), kColumns, {"TERM=dumb"});
    ASSERT_TRUE(program.waitFor("50 %\r\n"));
    program.type(kCtrlC);
    EXPECT_EQ(program.finish(), 130);
    // Two processes print these lines, so the first may come after the others.
    for (const char* const line : {"m.macro:1: PROGRESS: stop requested; a second Ctrl-C ends the program\r\n",
                                   "m.macro:1: PROGRESS: Reading: stopped\r\n", "m.macro:1: PROGRESS: stopped\r\n"})
        EXPECT_NE(program.output().find(line), std::string::npos) << line << program.output();
}

TEST_F(StopButton, PressedAgainEndsATaskThatDoesNotLook) {
    PtyProgram program(progressRunner("PROGRESS START Reading;HANG\n", {"--record", "r.macro", "--journal", "j.macro"}),
                       kColumns, plainTerminal());
    ASSERT_TRUE(program.waitFor("Reading"));
    program.type(kCtrlC);
    ASSERT_TRUE(program.waitFor("stopping"));
    program.type(kCtrlC);
    EXPECT_EQ(program.finish(), -SIGINT);
    EXPECT_EQ(screenOf(program).rows(), Rows({"m.macro:1: PROGRESS: ended \"PROGRESS START Reading;HANG\" by SIGINT"}));
    EXPECT_EQ(fileNames(), std::vector<std::string>({"m.macro"}));
}

TEST_F(StopButton, StaysIgnoredWhereItWas) {
    PtyProgram program(
        shellRunner("PROGRESS START Reading;WAITFOR go;FINISH\nPROGRESS SAY next\n", "trap '' INT; exec ", ""),
        kColumns, plainTerminal());
    ASSERT_TRUE(program.waitFor("Reading"));
    program.type(kCtrlC);
    program.type(kCtrlC);
    ASSERT_TRUE(program.waitFor("^C")) << program.output();
    write("go", "");
    EXPECT_EQ(program.finish(), 0);
    EXPECT_NE(program.output().find("next"), std::string::npos) << program.output();
}

}  // namespace
}  // namespace vexa::e2e
