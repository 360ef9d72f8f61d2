#include "trace/CallLines.h"

#include <gtest/gtest.h>

#include "trace/TraceReader.h"

namespace vexa::runner {
namespace {

const std::string kHead = "# thread, then commands, and their calls of the host with arguments and results\n";

std::string callLinesOf(const std::string& trace) { return textOf(callLinesIn(kHead + trace, "t")); }

TEST(CallLines, AreTheCallsOfEachCommand) {
    const CallLines lines =
        callLinesIn(kHead +
                        "1  load libone.so\n"
                        "1    => loaded ONE\n"
                        "1  a/m.macro:3: ONE SAY a:4: b\n"
                        "1    VexaUtilMacroIsRecordingActive() = 1\n"
                        "1      ! error: it is wrong [a-rule] (first: VexaUtilLockStart, a/m.macro:3)\n"
                        "1    => failed: it is wrong\n"
                        "1  VexaUtilLockStart(ONE)\n"
                        "=> exit status 1: a command failed\n",
                    "t");
    EXPECT_EQ(textOf(lines),
              "load libone.so\n"
              "  => loaded ONE\n"
              "ONE SAY a:4: b\n"
              "  VexaUtilMacroIsRecordingActive() = 1\n"
              "  ! error: it is wrong [a-rule]\n"
              "  => failed: it is wrong\n"
              "(between commands)\n"
              "  VexaUtilLockStart(ONE)\n");
    EXPECT_EQ(lines.commands.at(1).place, "a/m.macro:3");
    EXPECT_EQ(lines.outcome, "exit status 1: a command failed");
}

TEST(CallLines, OfThreadsDoNotDependOnTheirNumbersAndTimes) {
    const std::string one =
        "1  m.macro:1: ONE A\n"
        "3    VexaUtilThreadMutexLock(mutex#8)\n"
        "2    VexaUtilThreadMutexAlloc() = mutex#7\n"
        "1    VexaUtilLockStart(ONE)\n"
        "3    VexaUtilThreadMutexUnlock(mutex#8)\n"
        "1    => accepted\n";
    const std::string other =
        "1  m.macro:1: ONE A\n"
        "1    VexaUtilLockStart(ONE)\n"
        "2    VexaUtilThreadMutexLock(mutex#3)\n"
        "2    VexaUtilThreadMutexUnlock(mutex#3)\n"
        "3    VexaUtilThreadMutexAlloc() = mutex#4\n"
        "1    => accepted\n";
    EXPECT_EQ(callLinesOf(one), callLinesOf(other));
    EXPECT_EQ(callLinesOf(one),
              "ONE A\n"
              "  VexaUtilLockStart(ONE)\n"
              "  (thread 2) VexaUtilThreadMutexAlloc() = mutex#1\n"
              "  (thread 3) VexaUtilThreadMutexLock(mutex#2)\n"
              "  (thread 3) VexaUtilThreadMutexUnlock(mutex#2)\n"
              "  => accepted\n");
}

TEST(CallLines, NumberHandlesInEachCommandButLeaveTexts) {
    const std::string lines = callLinesOf(
        "1  m.macro:1: ONE A#5\n"
        "1    VexaUtilStringAlloc(3, \"string#5 \\\" string#6\") = string#9\n"
        "1    VexaUtilStringAlloc(3, null) = string#2\n"
        "1    VexaUtilStringDealloc(string#9)\n"
        "1    => accepted\n");
    EXPECT_EQ(lines,
              "ONE A#5\n"
              "  VexaUtilStringAlloc(3, \"string#5 \\\" string#6\") = string#1\n"
              "  VexaUtilStringAlloc(3, null) = string#2\n"
              "  VexaUtilStringDealloc(string#1)\n"
              "  => accepted\n");
    EXPECT_EQ(withoutHandleNumbers("F(style-set#12, \"a#1\") = set#3"), "F(style-set#, \"a#1\") = set#");
}

TEST(CallLines, OfANestedCommandAreItsOwn) {
    EXPECT_EQ(callLinesOf("1  ONE A\n"
                          "1    TWO B\n"
                          "1      VexaUtilLockStart(TWO)\n"
                          "1      => accepted\n"
                          "1    VexaUtilLockFinish(ONE)\n"
                          "1    => accepted\n"),
              "ONE A\n"
              "  VexaUtilLockFinish(ONE)\n"
              "  => accepted\n"
              "TWO B\n"
              "  VexaUtilLockStart(TWO)\n"
              "  => accepted\n");
}

TEST(CallLines, EndWhereTheTraceWasCutOff) {
    EXPECT_EQ(callLinesOf("1  ONE A\n1    VexaUtilLockStart(ONE)\n1"), "ONE A\n  VexaUtilLockStart(ONE)\n");
    EXPECT_EQ(callLinesOf(""), "");
}

TEST(CallLines, AreRefusedInAnotherFile) {
    EXPECT_THROW(callLinesIn("", "t"), TraceError);
    EXPECT_THROW(callLinesIn("# notes\n", "t"), TraceError);
    EXPECT_THROW(callLinesIn(kHead + "a line\n1  ONE A\n", "t"), TraceError);
}

}  // namespace
}  // namespace vexa::runner
