#include <chrono>

#include "TerminalTest.h"

namespace vexa::e2e {
namespace {

class Timeout : public TerminalTest {
protected:
    /// `vexa-standin run m.macro --addon ADDON --timeout 2 OPTIONS`, where m.macro holds \p macro.
    ProgramResult runFor(const std::string& addOn, const std::string& macro,
                         const std::vector<std::string>& options = {}) const {
        write("m.macro", macro);
        Program program = runner({"run", "m.macro", "--addon", addOn, "--timeout", "2"});
        program.arguments.insert(program.arguments.end(), options.begin(), options.end());
        return runProgram(program);
    }
    ProgramResult runHanging(const std::string& macro, const std::vector<std::string>& options = {}) const {
        return runFor(ADDON_HANGING, macro, options);
    }
};

const std::string kHint =
    "    hint:  Look at the last host call and at the text of the command. Usual causes are a missing closing "
    "quote, a loop that waits for more text, and a lock that is taken twice.\n";

// The line with which the finding ends, for a run with these options.
std::string debugLine(const std::string& options) {
    return "    debug: vexa-standin debug m.macro --addon " + options + " --timeout 2 --hang\n";
}

TEST_F(Timeout, TellsWhichCommandHangsAndEndsTheProgram) {
    const ProgramResult result = runHanging("HANGING 'a'\nHANGING 'b\nHANGING 'c'\n");
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(result.out, "read 'a'\n");
    EXPECT_EQ(withoutStack(result.err),
              "m.macro:2: HANGING: error: \"HANGING 'b\" has not returned within 2 seconds; it made no host call "
              "[command-timeout]\n"
              "    first: the beginning of \"HANGING 'b\", m.macro:2, thread 1\n" +
                  kHint + debugLine(ADDON_HANGING));
}

TEST_F(Timeout, TellsTheLastHostCall) {
    const ProgramResult result =
        runFor(ADDON_MISBEHAVING, "MISBEHAVING unbalanced-lock-twin\nMISBEHAVING command-timeout\n");
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(
        withoutStack(result.err),
        "m.macro:2: MISBEHAVING: error: \"MISBEHAVING command-timeout\" has not returned within 2 seconds; its "
        "last host call was VexaUtilMacroIsBatchModeActive [command-timeout]\n"
        "    first: the beginning of \"MISBEHAVING command-timeout\", m.macro:2, thread 1\n"
        "    seen:  call 7, VexaUtilMacroIsBatchModeActive, in \"MISBEHAVING command-timeout\", m.macro:2, thread "
        "1\n" +
            kHint + debugLine(ADDON_MISBEHAVING));
}

TEST_F(Timeout, NamesTheHostCallOfALoopOfCalls) {
    const ProgramResult result = runFor(ADDON_PROGRESS, "PROGRESS START Reading;UNTILSTOPPED\n", {"--batch"});
    EXPECT_EQ(result.status, 4);
    EXPECT_NE(result.err.find("its last host call was VexaUtilStatusCheckPercentDone [command-timeout]"),
              std::string::npos)
        << result.err;
}

TEST_F(Timeout, DoesNotBotherCommandsThatReturn) {
    const ProgramResult result = runFor(ADDON_MISBEHAVING, "MISBEHAVING command-timeout-twin\n", {"--strict"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, "");
}

TEST_F(Timeout, BeginsAnewWithEachCommand) {
    std::string macro;
    for (int i = 0; i != 3; ++i) macro += "ONE SLEEP 800\n";
    const ProgramResult result = runFor(ADDON_ONE, macro);
    EXPECT_EQ(result.status, 0) << result.err;
}

TEST_F(Timeout, LeavesOutTheTimeInWhichTheSystemRunsNoProcess) {
    write("m.macro", "PROGRESS MAKE begun;WAITFOR end\n");
    const std::string command = VEXA_STANDIN " run m.macro --addon " ADDON_PROGRESS
                                             " --timeout 1 & run=$!\n"
                                             "until test -e begun; do sleep 0.01; done\n"
                                             "processes=\"$run $(cat /proc/$run/task/$run/children)\"\n"
                                             "kill -STOP $processes; sleep 2.5; kill -CONT $processes\n"
                                             "sleep 0.1; : >end; wait $run";
    const ProgramResult result = runProgram({{"/bin/sh", "-c", command}, folder(), "", false});
    EXPECT_EQ(result.status, 0) << result.err;
}

TEST_F(Timeout, NeedsNoneForAMutexThatIsLockedTwice) {
    const ProgramResult result = runFor(ADDON_MISBEHAVING, "MISBEHAVING mutex-locked-twice\n", {"--strict"});
    EXPECT_EQ(result.status, 3);
    EXPECT_NE(result.err.find("[mutex-locked-twice]"), std::string::npos) << result.err;
}

TEST_F(Timeout, WritesWhatWasRecorded) {
    const ProgramResult result = runHanging("HANGING RECORD\nHANGING RECORD AND HANG\n", {"--record", "r.macro"});
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(commandsOf(read("r.macro")), "HANGING RECORD\nHANGING RECORD\n");
    EXPECT_EQ(fileNames().size(), 2U) << "the macro, and the recording";
}

TEST_F(Timeout, LeavesNoFileOfARunThatDidNotBegin) {
    const ProgramResult result =
        runFor(ADDON_HANGING_AT_ENTRY, "HANGING RECORD\n", {"--record", "r.macro", "--journal", "j.macro"});
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(fileNames(), std::vector<std::string>({"m.macro"}));
    EXPECT_EQ(withoutStack(result.err), "error: \"loading of " ADDON_HANGING_AT_ENTRY
                                        "\" has not returned within 2 seconds; it made no host call [command-timeout]\n"
                                        "    first: the beginning of \"loading of " ADDON_HANGING_AT_ENTRY
                                        "\", thread 1\n" +
                                            kHint + debugLine(ADDON_HANGING_AT_ENTRY " --strict"));
}

TEST_F(Timeout, IsForUnloadingToo) {
    const ProgramResult result =
        runHanging("HANGING RECORD\nHANGING HANG AT SHUTDOWN\n", {"--record", "r.macro", "--strict"});
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(result.err.rfind("error: \"unloading of HANGING\" has not returned within 2 seconds", 0), 0U)
        << result.err;
    EXPECT_EQ(commandsOf(read("r.macro")), "HANGING RECORD\n");
}

TEST_F(Timeout, IsForTheReplayOfARecordingToo) {
    const ProgramResult result = runHanging("HANGING RECORD HANG\n", {"--record", "r.macro", "--strict"});
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(result.err.rfind("m.macro:1: HANGING: error: \"HANGING HANG\" has not returned within 2 seconds", 0), 0U)
        << result.err;
    EXPECT_EQ(commandsOf(read("r.macro")), "HANGING HANG\n");
}

TEST_F(Timeout, ShowsWhatWasPrintedAndFoundBefore) {
    const ProgramResult result = runHanging("HANGING PRINT AND HANG\n");
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(result.out, "a line\nhalf a line");
}

TEST_F(Timeout, GoesBeforeSuppression) {
    const ProgramResult result = runHanging("HANGING HANG\n", {"--suppress", "command-timeout"});
    EXPECT_EQ(result.status, 4);
    EXPECT_NE(result.err.find("[command-timeout]"), std::string::npos) << result.err;
}

TEST_F(Timeout, LeavesTheTerminalInOrder) {
    PtyProgram program(progressRunner("PROGRESS START Reading;SAY one;PART half;HANG\n", {"--timeout", "2"}), kColumns,
                       plainTerminal());
    EXPECT_EQ(program.finish(), 4);
    const Rows rows = screenOf(program, 400).rows();
    ASSERT_GE(rows.size(), 6U) << program.output();
    EXPECT_EQ(rows[0], "one");
    EXPECT_EQ(rows[1].rfind("m.macro:1: PROGRESS: error: ", 0), 0U) << rows[1];
    EXPECT_EQ(rows.back(), "half");
}

TEST_F(Timeout, RefusesWhatIsNoTime) {
    for (const char* text : {"0", "-1", "soon", "1s", "", " 1", "nan", "inf", "1000001"}) {
        SCOPED_TRACE(text);
        const ProgramResult result = runMacro("ONE ECHO ran\n", {"--timeout=" + std::string(text)});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_NE(result.err.find("--timeout"), std::string::npos) << result.err;
    }
}

TEST_F(Timeout, TellsWhatItTakes) {
    const ProgramResult result = runMacro("ONE ECHO ran\n", {"--timeout", "soon"});
    EXPECT_EQ(result.err,
              "vexa-standin: --timeout: expected seconds, more than 0 and at most 1000000\n"
              "run 'vexa-standin run --help' for the usage\n");
}

}  // namespace
}  // namespace vexa::e2e
