// Tests that no text of an add-on, a macro or a file name can control the terminal.

#include "TerminalTest.h"

namespace vexa::e2e {
namespace {

// An escape sequence, a bell, delete, CSI as one character, a character that turns text around, no UTF-8.
const std::string kHarm = "\033[2Jt\a\x7F\xC2\x9B\xE2\x80\xAE\xE2\x81\xA6\xFFz";
const std::string kShown = R"(\x1B[2Jt\x07\x7F\xC2\x9B\xE2\x80\xAE\xE2\x81\xA6\xFFz)";
// As addons/HarmfulAddOn.cpp has it.
const std::string kHarmfulId = "EVIL\033[2J\xC2\x9BH\xE2\x80\xAE\xFF";
const std::string kShownId = R"(EVIL\x1B[2J\xC2\x9BH\xE2\x80\xAE\xFF)";

using Arguments = std::vector<std::string>;

class Printed : public TerminalTest {
protected:
    // `vexa-standin run m.macro --addon ADDON-ONE OPTIONS`, where m.macro holds `macro`.
    Program runnerOf(const std::string& macro, const std::vector<std::string>& options = {}) const {
        write("m.macro", macro);
        Program program = runner({"run", "m.macro", "--addon", ADDON_ONE});
        program.arguments.insert(program.arguments.end(), options.begin(), options.end());
        return program;
    }
    ProgramResult run(const std::string& macro, const std::vector<std::string>& options = {}) const {
        return runProgram(runnerOf(macro, options));
    }
    static bool isHarmless(const std::string& text) {
        for (const char* const harm : {"\033", "\a", "\r", "\x7F", "\xC2\x9B", "\u202E", "\u2066", "\xFF"}) {
            if (text.find(harm) != std::string::npos) return false;
        }
        return true;
    }

    static testing::AssertionResult shows(const ProgramResult& result, const std::string& shown = kShown) {
        const std::string all = result.out + result.err;
        if (!isHarmless(all)) return testing::AssertionFailure() << "harm in: " << testing::PrintToString(all);
        if (all.find(shown) == std::string::npos) return testing::AssertionFailure() << shown << " is not in: " << all;
        return testing::AssertionSuccess();
    }
};

TEST_F(Printed, TextOfAnAddOnIsHarmless) {
    struct Case {
        const char* why;
        std::string command;
        std::string shown;
    };
    const Case cases[] = {
        {"an error message", "FAIL " + kHarm, "m.macro:1: ONE: " + kShown},
        {"a dialog", "DIALOG " + kHarm, "m.macro:1: ONE: dialog: " + kShown},
        {"an exception", "THROW " + kHarm, kShown + " [escaped-exception]"},
        {"a command in a finding", "LEAVELOCKOPEN " + kHarm, "\"ONE LEAVELOCKOPEN " + kShown + "\""},
        {"an unknown command", kHarm, "m.macro:1: ONE: unknown command " + kShown},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        EXPECT_TRUE(shows(run("ONE " + c.command + '\n'), c.shown));
    }
}

TEST_F(Printed, CommandOfAVerboseRunIsHarmless) {
    EXPECT_TRUE(shows(run("ONE FAIL " + kHarm + '\n', {"--verbose"}), "m.macro:1: ONE FAIL " + kShown));
}

TEST_F(Printed, SecondLineOfAFindingStandsBelowIt) {
    const std::string err = run("ONE THROW first|error: second\n").err;
    EXPECT_EQ(err.find("\nerror: second"), std::string::npos) << err;
    EXPECT_NE(err.find("first\n    error: second"), std::string::npos) << err;
}

TEST_F(Printed, TextOfAnAddOnIsHarmlessInTests) {
    write("m.macro", "ONE DIALOG " + kHarm + "\nONE SAY " + kHarm + "\nONE FAIL " + kHarm + '\n');
    const Arguments test = {"test", "m.macro", "--addon", ADDON_ONE};
    EXPECT_TRUE(shows(runProgram(runner(test)), "+   " + kShown));
    EXPECT_TRUE(shows(runProgram(runner(test)), "+ ! dialog: " + kShown));
}

TEST_F(Printed, TestsCompareWhatTheyHideFromTheTerminal) {
    const Arguments test = {"test", "m.macro", "--addon", ADDON_ONE};
    write("m.macro", "ONE ECHO a\033b\n");
    Arguments accepting = test;
    accepting.emplace_back("--accept");
    EXPECT_EQ(runProgram(runner(accepting)).status, 0);
    EXPECT_EQ(runProgram(runner(test)).status, 0);
    EXPECT_NE(read("m.expected").find("a\033b"), std::string::npos);
    write("m.expected", "> ONE ECHO a\\x1Bb\n  a\\x1Bb\n");
    EXPECT_EQ(runProgram(runner(test)).status, 1);
}

TEST_F(Printed, TextOfAnAddOnIsHarmlessInTheRepl) {
    Program repl = runner({"repl", "--addon", ADDON_ONE});
    for (const char* const command : {"ONE FAIL ", "ONE DIALOG ", "ONE THROW ", ""}) {
        repl.input = command + kHarm + '\n';
        EXPECT_TRUE(shows(runProgram(repl))) << command;
    }
}

TEST_F(Printed, TextOfAnAddOnIsHarmlessInManyFiles) {
    write("a.macro", "ONE FAIL " + kHarm + '\n');
    write("b.macro", "ONE DIALOG " + kHarm + '\n');
    const ProgramResult result = runProgram(runner({"run", "a.macro", "b.macro", "--addon", ADDON_ONE}));
    EXPECT_TRUE(shows(result, "a.macro:1: ONE: " + kShown));
    EXPECT_TRUE(shows(result, "b.macro:1: ONE: dialog: " + kShown));
}

TEST_F(Printed, IdAndTitleAreHarmless) {
    write("m.macro", kHarmfulId + " FAIL text\n");
    write("c.macro", kHarmfulId + " LEAVELOCKOPEN\n");
    EXPECT_TRUE(
        shows(runProgram(runner({"list", "--addon", ADDON_HARMFUL})), kShownId + R"(  Title\n\x1B]0;x\x07  /)"));
    EXPECT_TRUE(
        shows(runProgram(runner({"run", "m.macro", "--addon", ADDON_HARMFUL})), "m.macro:1: " + kShownId + ": text"));
    EXPECT_TRUE(
        shows(runProgram(runner({"test", "m.macro", "--addon", ADDON_HARMFUL})), "> " + kShownId + " FAIL text"));
    EXPECT_TRUE(shows(runProgram(runner({"check", ADDON_HARMFUL, "--macro", "c.macro", "--only", "commands-in-order"})),
                      kShownId));
    Program repl = runner({"repl", "--addon", ADDON_HARMFUL});
    repl.input = "help\n" + kHarmfulId + " FAIL text\n";
    EXPECT_TRUE(shows(runProgram(repl), kShownId + R"(  Title\n\x1B]0;x\x07)"));
}

TEST_F(Printed, NameOfAFileIsHarmless) {
    const std::string name = kHarm + "\r\n";
    const std::string addOn = (folder() / (name + ".so")).string();
    std::filesystem::copy_file(ADDON_ONE, addOn);
    write(name + ".macro", "ONE FAIL text\n");
    write("m.macro", "ONE FAIL text\n");
    const std::vector<Arguments> programs = {
        {"run", name + ".macro", "--addon", ADDON_ONE},
        {"run", name + ".macro", "m.macro", "--addon", ADDON_ONE},
        {"run", name, "--addon", ADDON_ONE},
        {"run", "m.macro", "--addon", name},
        {"run", "m.macro", "--addon", ADDON_ONE, "--style", name},
        {"run", "m.macro", "--addon", ADDON_ONE, "--record", name + "/file"},
        {"run", "m.macro", "--addon", ADDON_ONE, "--trace", name + "/file"},
        {"list", "--addon", addOn},
        {"list", "--addon", name},
        {"test", name + ".macro", "--addon", ADDON_ONE},
        {"test", name, "--addon", ADDON_ONE},
        {"check", addOn, "--only", "load"},
        {"check", name},
        {"check", ADDON_ONE, "--macro", name},
        {"check", ADDON_ONE, "--macro", name + ".macro", "--only", "commands-in-order"},
        {"repl", "--addon", name},
        {"style", "--style", name, "TITLE"},
        {"report", name, "--output", "page.html"},
        {"new", name},
    };
    for (const Arguments& program : programs) {
        SCOPED_TRACE(testing::PrintToString(program));
        EXPECT_TRUE(shows(runProgram(runner(program))));
    }
}

TEST_F(Printed, ArgumentsAreHarmless) {
    const std::vector<Arguments> programs = {
        {kHarm},
        {"--" + kHarm},
        {"run", "m.macro", "--addon", ADDON_ONE, "--" + kHarm},
        {"run", "m.macro", "--addon", ADDON_ONE, "--jobs", kHarm},
        {"run", "m.macro", "--addon", ADDON_ONE, "--suppress", kHarm},
        {"test", "m.macro", "--addon", ADDON_ONE, "--" + kHarm},
        {"check", ADDON_ONE, "--only", kHarm},
        {"check", ADDON_ONE, "--seed", kHarm},
        {"repl", "--addon", ADDON_ONE, "--" + kHarm},
        {"explain", kHarm},
        {"new", "project", "--" + kHarm},
        {"style", "--style", "s.json", kHarm},
        {"list", "--addon", ADDON_ONE, kHarm},
        {"report", "trace", "--output", "page.html", "--" + kHarm},
    };
    write("s.json", "{\"TITLE\": 3}");
    write("m.macro", "");
    for (const Arguments& program : programs) {
        SCOPED_TRACE(testing::PrintToString(program));
        EXPECT_TRUE(shows(runProgram(runner(program))));
    }
}

TEST_F(Printed, TextsOfAMacroAndAStyleFileAreHarmless) {
    EXPECT_TRUE(shows(run(kHarm + " SAY a\n")));
    write("s.json", "{\"TITLE\": {\"TEXT\": \"\\u001b]0;t\\u0007\\u007f\\u009b\\u202e\\u2066z\"}}");
    const std::string shown = R"(\x1B]0;t\x07\x7F\xC2\x9B\xE2\x80\xAE\xE2\x81\xA6z)";
    EXPECT_TRUE(shows(runProgram(runner({"style", "--style", "s.json", "TITLE", "TEXT"})), shown));
    write("s.json", "{\"" + kHarm.substr(0, 3) + "\": {");
    EXPECT_TRUE(shows(runProgram(runner({"style", "--style", "s.json", "TITLE", "TEXT"})), "s.json:1"));
}

TEST_F(Printed, StatusTextIsHarmless) {
    const ProgramResult plain = runProgram(progressRunner("PROGRESS START " + kHarm + ";FINISH\n"));
    EXPECT_TRUE(shows(plain, kShown));
    PtyProgram drawn(progressRunner("PROGRESS START " + kHarm + ";WAITFOR go;FINISH\n"), kColumns, plainTerminal());
    ASSERT_TRUE(drawn.waitFor("stops\r")) << drawn.output();
    const std::string line = drawn.output().substr(drawn.output().find("\033[J") + 3);
    EXPECT_EQ(line.substr(0, line.find("  [")), " [2Jt  ????z") << testing::PrintToString(line);
    write("go", "");
    EXPECT_EQ(drawn.finish(), 0);
}

TEST_F(Printed, TextTraceIsHarmless) {
    run("ONE DIALOG " + kHarm + '\n', {"--trace-text", "t.txt"});
    EXPECT_TRUE(isHarmless(read("t.txt"))) << read("t.txt");
    EXPECT_NE(read("t.txt").find("VexaUtilDialogErrMsg(\"" + kShown + "\")"), std::string::npos) << read("t.txt");
}

TEST_F(Printed, OutputOfAnAddOnIsItsOwn) {
    const std::string macro = "ONE ECHO " + kHarm + "\nONE ECHOERR " + kHarm + '\n';
    const ProgramResult one = run(macro);
    EXPECT_EQ(one.out, kHarm + '\n');
    EXPECT_EQ(one.err, kHarm + '\n');
    write("b.macro", macro);
    const ProgramResult many = runProgram(runner({"run", "m.macro", "b.macro", "--addon", ADDON_ONE}));
    EXPECT_EQ(many.out, kHarm + '\n' + kHarm + '\n');
    EXPECT_EQ(many.err.find(kHarm + '\n' + kHarm + '\n'), 0U) << many.err;
}

}  // namespace
}  // namespace vexa::e2e
