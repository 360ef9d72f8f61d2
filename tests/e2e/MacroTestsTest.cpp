#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <sstream>

#include "TerminalTest.h"

namespace vexa::e2e {
namespace {

class MacroTests : public TerminalTest {
protected:
    MacroTests() { std::filesystem::create_directory(folder() / "t"); }

    ProgramResult test(std::vector<std::string> arguments = {}, const std::string& addOn = ADDON_ONE) const {
        arguments.insert(arguments.begin(), {"test", "t", "--addon", addOn});
        return runProgram(runner(std::move(arguments)));
    }
    // What is expected of `macro` after it was accepted.
    std::string accepted(const std::string& macro, const std::vector<std::string>& options = {}) const {
        write("t/m.macro", macro);
        std::vector<std::string> arguments = {"--accept"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const ProgramResult result = test(arguments);
        EXPECT_EQ(result.status, 0) << result.out << result.err;
        return read("t/m.expected");
    }
};

TEST_F(MacroTests, PassWhenAllIsAsExpected) {
    write("t/a.macro", "# one\nONE ECHO a\n");
    write("t/a.expected", "> ONE ECHO a\n  a\n");
    write("t/b.macro", "ONE SAY b\n");
    write("t/b.expected", "> ONE SAY b\n  b\n+ ONE SAY b\n");
    const ProgramResult result = test();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "passed t/a.macro\npassed t/b.macro\n2 of 2 macros passed\n");
    EXPECT_EQ(result.err, "");
}

TEST_F(MacroTests, ShowTheDifference) {
    write("t/a.macro", "ONE ECHO 1\nONE ECHO 2\nONE ECHO 3\nONE ECHO new\n");
    write("t/a.expected", "> ONE ECHO 1\n  1\n> ONE ECHO 2\n  2\n> ONE ECHO 3\n  3\n> ONE ECHO old\n  old\n");
    const ProgramResult result = test();
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out,
              "failed t/a.macro: its results differ from t/a.expected; --accept saves the new results\n"
              "@@ line 4 @@\n"
              "    2\n"
              "  > ONE ECHO 3\n"
              "    3\n"
              "- > ONE ECHO old\n"
              "-   old\n"
              "+ > ONE ECHO new\n"
              "+   new\n"
              "0 of 1 macros passed\n");
    EXPECT_EQ(result.err, "");
}

TEST_F(MacroTests, ShowADifferenceAtEitherEnd) {
    std::string macro = "ONE ECHO first\n";
    std::string expected;
    for (int i = 1; i != 5; ++i) {
        const std::string command = "ONE ECHO " + std::to_string(i) + '\n';
        macro += command;
        expected += "> " + command + "  " + std::to_string(i) + '\n';
    }
    write("t/a.macro", macro);
    write("t/a.expected", expected + "> ONE ECHO last\n  last\n");
    const std::string out = test().out;
    EXPECT_NE(out.find("@@ line 1 @@\n+ > ONE ECHO first\n+   first\n  > ONE ECHO 1\n    1\n  > ONE ECHO 2\n"
                       "@@ line 6 @@\n    3\n  > ONE ECHO 4\n    4\n- > ONE ECHO last\n-   last\n"),
              std::string::npos)
        << out;
}

TEST_F(MacroTests, TellTheWholeStoryOfEachCommand) {
    EXPECT_EQ(accepted("ONE ECHO a\n  # comment\n\nONE FAIL no|such zone|\nONE DIALOG of|two lines\nONE FAILSILENTLY\n"
                       "ONE THROW boom\nONE SAY b\nONE RECORDFOR SECOND x\n"),
              "> ONE ECHO a\n"
              "  a\n"
              "> ONE FAIL no|such zone|\n"
              "! no\n"
              "! such zone\n"
              "> ONE DIALOG of|two lines\n"
              "! dialog: of\n"
              "! two lines\n"
              "> ONE FAILSILENTLY\n"
              "! warning: the command failed, but set no error message [missing-errmsg]\n"
              "! the command failed without a message\n"
              "> ONE THROW boom\n"
              "! error: an exception escaped from the add-on: boom [escaped-exception]\n"
              "! an exception escaped from the add-on: boom\n"
              "> ONE SAY b\n"
              "  b\n"
              "+ ONE SAY b\n"
              "> ONE RECORDFOR SECOND x\n"
              "+ SECOND x\n");
}

TEST_F(MacroTests, TellOfTheEnd) {
    EXPECT_EQ(accepted("ONE DIALOGATSHUTDOWN now\n"), "> ONE DIALOGATSHUTDOWN now\n> (unloading)\n! dialog: goodbye\n");
}

TEST_F(MacroTests, TellOfALineWithoutItsEnd) {
    write("t/m.macro", "PROGRESS PART a\nPROGRESS SAY b\n");
    test({"--accept"}, ADDON_PROGRESS);
    EXPECT_EQ(read("t/m.expected"), "> PROGRESS PART a\n  a\n\\ no line end\n> PROGRESS SAY b\n  b\n");
}

TEST_F(MacroTests, TellOfBatchModeAndStyle) {
    EXPECT_EQ(accepted("ONE BATCH\n"), "> ONE BATCH\n  interactive\n");
    EXPECT_EQ(accepted("ONE BATCH\n", {"--batch"}), "> ONE BATCH\n  batch\n");
    write("s.json", R"({"FRAME": 0.5})");
    EXPECT_EQ(accepted("ONE STYLE FRAME\n", {"--style", "s.json"}), "> ONE STYLE FRAME\n  0.5\n");
}

TEST_F(MacroTests, AcceptWhatIsNewAndWhatIsOther) {
    write("t/a.macro", "ONE ECHO a\n");
    write("t/b.macro", "ONE ECHO b\n");
    write("t/b.expected", "> ONE ECHO old\n");
    write("t/c.macro", "ONE ECHO c\n");
    write("t/c.expected", "> ONE ECHO c\n  c\n");
    const ProgramResult result = test({"--accept"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out,
              "passed t/a.macro: accepted\npassed t/b.macro: accepted\npassed t/c.macro\n3 of 3 macros passed\n");
    EXPECT_EQ(read("t/a.expected"), "> ONE ECHO a\n  a\n");
    EXPECT_EQ(test().out, "passed t/a.macro\npassed t/b.macro\npassed t/c.macro\n3 of 3 macros passed\n");
}

TEST_F(MacroTests, FailWithoutWhatIsExpected) {
    write("t/a.macro", "ONE ECHO a\n");
    const ProgramResult result = test();
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out,
              "failed t/a.macro: there is no t/a.expected; --accept writes it\n"
              "@@ line 1 @@\n+ > ONE ECHO a\n+   a\n0 of 1 macros passed\n");
}

TEST_F(MacroTests, NeverAcceptACrash) {
    write("t/a.macro", "ONE ECHO a\nONE KILL now\nONE ECHO b\n");
    const ProgramResult result = test({"--accept"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out,
              "failed t/a.macro: an add-on ended the process\n> ONE KILL now\nt/a.macro:2: ONE: error: \"ONE KILL "
              "now\" ended the process: SIGKILL (Killed); it made no host call\n0 of 1 macros passed\n");
    EXPECT_FALSE(std::filesystem::exists(folder() / "t/a.expected"));
}

TEST_F(MacroTests, NeverAcceptACommandThatHangs) {
    write("t/a.macro", "HANGING HANG\n");
    const ProgramResult result = test({"--accept", "--timeout", "0.2"}, ADDON_HANGING);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out.rfind("failed t/a.macro: a command did not return\n> HANGING HANG\n", 0), 0U) << result.out;
    EXPECT_NE(result.out.find("[command-timeout]\n"), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("\n    more:  vexa-standin explain command-timeout\n"), std::string::npos) << result.out;
    EXPECT_FALSE(std::filesystem::exists(folder() / "t/a.expected"));
}

TEST_F(MacroTests, FailForABrokenContractWhenStrict) {
    const std::string expected = accepted("ONE ECHO a\nONE LEAVELOCKOPEN\n");
    EXPECT_NE(expected.find("\n! error: "), std::string::npos) << expected;
    EXPECT_EQ(test().status, 0);
    const ProgramResult strict = test({"--strict"});
    EXPECT_EQ(strict.status, 1);
    EXPECT_EQ(strict.out.rfind("failed t/m.macro: the host's contract was broken\nt/m.macro:2: ONE: error: ", 0), 0U)
        << strict.out;
    write("t/m.expected", "> ONE ECHO a\n  a\n> ONE LEAVELOCKOPEN\n");
    EXPECT_EQ(test({"--strict", "--suppress", "unbalanced-lock"}).status, 0);
}

TEST_F(MacroTests, ShowPlaceAndHintOfEachCauseOnce) {
    write("t/m.macro", "ONE LEAVELOCKOPEN\nONE ECHO a\nONE LEAVELOCKOPEN\nONE FAILSILENTLY\n");
    const std::string head =
        "error: VexaUtilLockStart has no matching VexaUtilLockFinish in the command [unbalanced-lock]";
    const std::string out = test({"--strict"}).out;
    EXPECT_EQ(
        out.find("t/m.macro:1: ONE: " + head + "\n    first: call 6, VexaUtilLockStart, in \"ONE LEAVELOCKOPEN\""),
        out.find('\n') + 1)
        << out;
    EXPECT_NE(out.find("\n    hint:  Use an AddOnIdLock"), std::string::npos) << out;
    const std::string debug =
        "    debug: vexa-standin debug t/m.macro --addon " ADDON_ONE " --strict --keep-going --rule ";
    EXPECT_NE(out.find("\n    more:  vexa-standin explain unbalanced-lock\n" + debug + "unbalanced-lock\n" +
                       "t/m.macro:3: ONE: " + head + ", as before\nt/m.macro:4: ONE: warning: "),
              std::string::npos)
        << out;
    EXPECT_NE(out.find("\n    more:  vexa-standin explain missing-errmsg\n" + debug +
                       "missing-errmsg\n0 of 1 macros passed\n"),
              std::string::npos)
        << out;
}

TEST_F(MacroTests, ShowPlaceAndHintOfFindingsThatWereNotExpected) {
    accepted("ONE LEAVELOCKOPEN\nONE ECHO a\n");
    write("t/m.macro", "ONE LEAVELOCKOPEN\nONE ECHO b\n");
    EXPECT_EQ(test().out.find("hint:"), std::string::npos);
    write("t/m.expected", "> ONE LEAVELOCKOPEN\n> ONE ECHO b\n  b\n");
    const std::string out = test().out;
    EXPECT_NE(out.find("\n+ ! error: "), std::string::npos) << out;
    EXPECT_NE(out.find("\nt/m.macro:1: ONE: error: "), std::string::npos) << out;
    EXPECT_NE(out.find("\n    more:  vexa-standin explain unbalanced-lock\n"), std::string::npos) << out;
}

TEST_F(MacroTests, RefuseWhatIsNoMacro) {
    struct Case {
        const char* why;
        std::vector<std::string> arguments;
        const char* err;
    };
    write("t/lost.expected", "");
    write("notes.txt", "");
    write("lone.macro", "ONE ECHO a\n");
    std::filesystem::create_directory(folder() / "empty");
    const Case cases[] = {
        {"an expectation of no macro",
         {"test", "t", "--addon", ADDON_ONE},
         "t/lost.expected: there is no macro lost.macro in this folder\n"},
        {"a folder of none",
         {"test", "empty", "--addon", ADDON_ONE},
         "empty: it has no macros; a macro is a file NAME.macro\n"},
        {"another file",
         {"test", "notes.txt", "--addon", ADDON_ONE},
         "notes.txt: expected a folder, or a macro NAME.macro\n"},
    };
    for (const Case& c : cases) {
        const ProgramResult result = runProgram(runner(c.arguments));
        EXPECT_EQ(result.status, 2) << c.why;
        EXPECT_EQ(result.out, "") << c.why;
        EXPECT_EQ(result.err, c.err) << c.why;
    }
}

TEST_F(MacroTests, TellWhatCannotBeRun) {
    write("t/a.macro", "TWO ECHO a\n");
    write("t/b.macro", "ONE ECHO b\n");
    write("t/b.expected", "> ONE ECHO b\n  b\n");
    const ProgramResult result = test({"--accept"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(
        result.out,
        "failed t/a.macro: it cannot be run\nt/a.macro:1: no add-on 'TWO' is loaded (loaded: ONE)\npassed t/b.macro\n"
        "1 of 2 macros passed\n");
    EXPECT_FALSE(std::filesystem::exists(folder() / "t/a.expected"));
}

TEST_F(MacroTests, TakeSingleMacrosSideBySide) {
    write("t/a.macro", "PROGRESS WAITFOR b\nPROGRESS SAY a\n");
    write("t/a.expected", "> PROGRESS WAITFOR b\n> PROGRESS SAY a\n  a\n");
    write("t/b.macro", "PROGRESS MAKE b\n");
    write("t/b.expected", "> PROGRESS MAKE b\n");
    const ProgramResult result =
        runProgram(runner({"test", "t/a.macro", "t/b.macro", "--jobs", "2", "--addon", ADDON_PROGRESS}));
    EXPECT_EQ(result.status, 0) << result.out;
    EXPECT_EQ(result.out, "passed t/a.macro\npassed t/b.macro\n2 of 2 macros passed\n");
}

TEST_F(MacroTests, AreRefusedWhenTheirPathLeadsNowhere) {
    std::filesystem::create_symlink("loop.macro", folder() / "loop.macro");
    const std::string longName = std::string(300, 'a') + ".macro";
    struct Case {
        std::string path;
        const char* reason;
    };
    for (const Case& c : {Case{"loop.macro", "Too many levels of symbolic links"}, {longName, "File name too long"}}) {
        const ProgramResult result = runProgram(runner({"test", c.path, "--addon", ADDON_ONE}));
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, c.path + ": cannot be read: " + c.reason + '\n');
    }
}

TEST_F(MacroTests, AreReportedInTheFormOfJUnit) {
    write("t/a.macro", "ONE ECHO <a>\n");
    write("t/b.macro", "ONE ECHO b\n");
    write("t/b.expected", "> ONE ECHO b\n  b\n");
    EXPECT_EQ(test({"--junit", "r.xml"}).status, 1);
    boost::property_tree::ptree xml;
    std::istringstream text(read("r.xml"));
    boost::property_tree::read_xml(text, xml);
    const auto& suite = xml.get_child("testsuites.testsuite");
    EXPECT_EQ(suite.get<std::string>("<xmlattr>.tests"), "2");
    EXPECT_EQ(suite.get<std::string>("<xmlattr>.failures"), "1");
    EXPECT_EQ(suite.get<std::string>("testcase.<xmlattr>.name"), "a");
    EXPECT_NE(suite.get<std::string>("testcase.failure").find("+   <a>\n"), std::string::npos);
}

TEST_F(MacroTests, AreStoppedByCtrlC) {
    write("t/a.macro", "PROGRESS MAKE ready;WAITFOR never\n");
    write("t/b.macro", "PROGRESS SAY never\n");
    PtyProgram running(runner({"test", "t", "--addon", ADDON_PROGRESS}), kColumns, plainTerminal());
    for (int tries = 0; tries != 6000 && !std::filesystem::exists(folder() / "ready"); ++tries) usleep(10000);
    running.type("\x03");
    EXPECT_EQ(running.finish(), 130);
    EXPECT_NE(running.output().find("failed t/a.macro: stopped by Ctrl-C\r\n"), std::string::npos) << running.output();
    EXPECT_EQ(running.output().find("t/b.macro"), std::string::npos) << running.output();
}

// ---- The calls of the host

TEST_F(MacroTests, KeepTheCallsBesideTheMacro) {
    accepted("ONE SAY a\nONE FAIL b\n", {"--calls"});
    const std::string calls = read("t/m.calls");
    EXPECT_NE(calls.find("\nONE SAY a\n"
                         "  VexaUtilMacroIsRecordingActive() = 1\n"
                         "  VexaUtilMacroRecordExtCommand(\"ONE\", \"SAY a\") = 1\n"
                         "  => accepted\n"),
              std::string::npos)
        << calls;
    EXPECT_EQ(calls.find("m.macro"), std::string::npos) << calls;
    for (const char* const more : {"--jobs=2", "--in-process"}) EXPECT_EQ(test({"--calls", more}).status, 0) << more;
}

TEST_F(MacroTests, FailWhenTheCallsDiffer) {
    accepted("ONE SAY a\n", {"--calls"});
    std::string calls = read("t/m.calls");
    calls.replace(calls.find("IsRecordingActive() = 1"), 23, "IsRecordingActive() = 0");
    write("t/m.calls", calls);
    const ProgramResult result = test({"--calls"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.out.find("failed t/m.macro: its calls differ from t/m.calls; --accept saves the new calls\n"),
              std::string::npos)
        << result.out;
    EXPECT_NE(result.out.find("\n-   VexaUtilMacroIsRecordingActive() = 0\n+   VexaUtilMacroIsRecordingActive() = 1\n"),
              std::string::npos)
        << result.out;
    EXPECT_EQ(test().status, 0);
    EXPECT_EQ(test({"--calls", "--accept"}).status, 0);
    EXPECT_EQ(test({"--calls"}).status, 0);
}

TEST_F(MacroTests, NeedTheCallsOnlyOnRequest) {
    accepted("ONE SAY a\n");
    EXPECT_EQ(test().status, 0);
    const ProgramResult result = test({"--calls"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.out.find("there is no t/m.calls; --accept writes it\n"), std::string::npos) << result.out;
}

TEST_F(MacroTests, RefuseCallsWithoutAMacro) {
    accepted("ONE SAY a\n");
    write("t/gone.calls", "");
    const ProgramResult result = test();
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "t/gone.calls: there is no macro gone.macro in this folder\n");
}

}  // namespace
}  // namespace vexa::e2e
