#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

using TraceText = RunnerTest;

TEST_F(TraceText, TellsTheWholeRun) {
    runMacro("ONE SAY a\nONE FAIL no\n", {"--record", "r.macro", "--trace-text", "t.txt"});
    EXPECT_EQ(read("t.txt"),
              "# thread, then commands, and their calls of the host with arguments and results\n"
              "1  load e2e-addon-one.so\n"
              "1    VexaUtilArgListAlloc() = arglist#1\n"
              "1    VexaUtilArgListAppendString(arglist#1, \"P1\", \"LOADED\") = 1\n"
              "1    VexaUtilArgListAppendDoublePtr(arglist#1, \"DValue\", address) = 1\n"
              "1    VexaUtilStyleGetLowLevelX(arglist#1) = GetValueReturnCode_UnknownPath\n"
              "1    VexaUtilArgListDealloc(arglist#1)\n"
              "1    => loaded ONE\n"
              "1  m.macro:1: ONE SAY a\n"
              "1    VexaUtilMacroIsRecordingActive() = 1\n"
              "1    VexaUtilMacroRecordExtCommand(\"ONE\", \"SAY a\") = 1\n"
              "1    => accepted\n"
              "1  m.macro:2: ONE FAIL no\n"
              "1    VexaUtilStringAlloc(3, \"error string\") = string#1\n"
              "1    => failed: no\n"
              "1  unload ONE\n"
              "1    => unloaded\n"
              "=> exit status 1: a command failed\n");
}

TEST_F(TraceText, OfTwoEqualRunsIsTheSame) {
    const std::string macro = "ONE SAY a\nONE LEAVELOCKOPEN\nONE STYLE A B\nONE DIALOG x|y\nONE THROW z\n";
    runMacro(macro, {"--keep-going", "--trace-text", "t1.txt"});
    runMacro(macro, {"--keep-going", "--trace-text", "t2.txt"});
    EXPECT_GT(read("t1.txt").size(), 1000U);
    EXPECT_EQ(read("t1.txt"), read("t2.txt"));
}

TEST_F(TraceText, OfAnotherRunIsAnother) {
    runMacro("ONE DIALOG a\n", {"--trace-text", "t1.txt"});
    runMacro("ONE DIALOG b\n", {"--trace-text", "t2.txt"});
    EXPECT_NE(read("t1.txt"), read("t2.txt"));
}

TEST_F(TraceText, CanBeWrittenBesideTheEvents) {
    runMacro("ONE DIALOG a\n", {"--trace-text", "t1.txt"});
    runMacro("ONE DIALOG a\n", {"--trace-text", "t2.txt", "--trace", "t.json"});
    EXPECT_EQ(read("t1.txt"), read("t2.txt"));
    EXPECT_NE(read("t.json").find("VexaUtilDialogErrMsg"), std::string::npos);
}

}  // namespace
}  // namespace vexa::e2e
