#include <algorithm>
#include <sstream>

#include "TerminalTest.h"

namespace vexa::e2e {
namespace {

class Colour : public TerminalTest {
protected:
    static std::vector<std::string> colourTerminal() { return {"TERM=xterm", "NO_COLOR="}; }

    // What a terminal gets of a program that ends.
    static std::string shown(const Program& program, const std::vector<std::string>& environment = colourTerminal()) {
        PtyProgram running(program, kColumns, environment);
        running.finish();
        return running.output();
    }
    static bool isColoured(const std::string& text) { return text.find('\033') != std::string::npos; }

    // `vexa-standin run m.macro --addon ADDON-ONE OPTIONS`, where m.macro holds `macro`.
    Program runnerOf(const std::string& macro, const std::vector<std::string>& options = {}) const {
        write("m.macro", macro);
        Program program = runner({"run", "m.macro", "--addon", ADDON_ONE});
        program.arguments.insert(program.arguments.end(), options.begin(), options.end());
        return program;
    }
    Program failing(const std::vector<std::string>& options = {}) const {
        return runnerOf("ONE FAIL no such zone\n", options);
    }
};

TEST_F(Colour, MarksThePlaceOfAnError) {
    EXPECT_NE(shown(failing()).find("\033[1mm.macro:1: ONE\033[0m: no such zone\r\n"), std::string::npos)
        << shown(failing());
}

TEST_F(Colour, MarksThePlaceAndTheSeverityOfAFinding) {
    const std::string out = shown(runnerOf("ONE LEAVELOCKOPEN\nONE FAILSILENTLY\n", {"--keep-going"}));
    EXPECT_NE(out.find("\033[1mm.macro:1: ONE\033[0m: \033[1;31merror\033[0m: VexaUtilLockStart has no matching "),
              std::string::npos)
        << out;
    EXPECT_NE(out.find("\033[1mm.macro:2: ONE\033[0m: \033[1;33mwarning\033[0m: the command failed, but "),
              std::string::npos)
        << out;
}

TEST_F(Colour, IsLeftOutWhereItIsNotWanted) {
    EXPECT_FALSE(isColoured(runProgram(failing()).err));
    EXPECT_FALSE(isColoured(shown(failing({"--batch"}), plainTerminal())));
    EXPECT_FALSE(isColoured(shown(failing({"--batch"}), {"TERM=dumb", "NO_COLOR="})));
    EXPECT_FALSE(isColoured(shown(failing({"--batch", "--color", "never"}))));
    EXPECT_TRUE(isColoured(shown(failing({"--batch", "--color", "auto"}))));
}

TEST_F(Colour, IsForcedByTheOption) {
    const std::string coloured = "\033[1mm.macro:1: ONE\033[0m: no such zone\n";
    EXPECT_EQ(runProgram(failing({"--color", "always"})).err, coloured);
    EXPECT_EQ(runProgram(failing({"--color=auto"})).err, "m.macro:1: ONE: no such zone\n");
    EXPECT_TRUE(isColoured(shown(failing({"--batch", "--color", "always"}), plainTerminal())));
    const Program before = runner({"--color", "always", "run", "m.macro", "--addon", ADDON_ONE});
    EXPECT_EQ(runProgram(before).err, coloured);
}

TEST_F(Colour, IsTakenByEveryCommand) {
    for (const char* const command : {"new", "run", "repl", "test", "check", "report", "explain", "list", "style"}) {
        const ProgramResult help = runProgram(runner({command, "--help"}));
        EXPECT_NE(help.out.find("\n  --color WHEN "), std::string::npos) << help.out;
    }
    EXPECT_EQ(runProgram(runner({"explain", "x", "--color", "always"})).err.find("\033[1mvexa-standin\033[0m: "), 0U);
    EXPECT_EQ(runProgram(runner({"explain", "--color", "sometimes"})).status, 2);
}

TEST_F(Colour, ReachesTheMessagesOfManyFiles) {
    write("a.macro", "ONE FAIL no such zone\n");
    write("b.macro", "ONE ECHO b\n");
    const std::string out = shown(runner({"run", "a.macro", "b.macro", "--addon", ADDON_ONE, "--color", "always"}));
    EXPECT_NE(out.find("\033[1ma.macro:1: ONE\033[0m: no such zone\r\n"), std::string::npos) << out;
}

// The words come from an add-on, the colours do not.
TEST_F(Colour, IsNotTakenFromAnAddOn) {
    EXPECT_EQ(runProgram(runnerOf("ONE FAIL a\033[31mb\n", {"--color", "always"})).err,
              "\033[1mm.macro:1: ONE\033[0m: a\\x1B[31mb\n");
}

class Width : public TerminalTest {
protected:
    // The longest line, but for examples, that a terminal of that many columns gets.
    std::size_t longestLine(const std::vector<std::string>& arguments, unsigned short columns,
                            const std::string& told = "") const {
        PtyProgram running(runner(arguments), columns, {"TERM=xterm", "NO_COLOR=1", "COLUMNS=" + told});
        EXPECT_EQ(running.finish(), 0);
        std::size_t longest = 0;
        std::istringstream lines(running.output());
        for (std::string line; std::getline(lines, line);) {
            const bool isCode = line.rfind("  vexa-standin ", 0) == 0;
            if (!isCode) longest = std::max(longest, line.size() - 1);
        }
        return longest;
    }
};

TEST_F(Width, IsThatOfTheTerminal) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"explain", "double-free"}, {"explain"}, {"list", "--help"}}) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        EXPECT_LE(longestLine(arguments, 60), 60U);
        EXPECT_GT(longestLine(arguments, 60), 50U);
        EXPECT_LE(longestLine(arguments, 200), 200U);
    }
    EXPECT_GT(longestLine({"explain", "double-free"}, 200), 90U);
    EXPECT_GT(longestLine({"run", "--help"}, 200), 120U);
    EXPECT_LE(longestLine({"explain"}, 1), 80U) << "its words";
}

TEST_F(Width, IsToldByTheEnvironment) {
    EXPECT_LE(longestLine({"explain", "double-free"}, 200, "50"), 50U);
    for (const char* const told : {"wide", "0", "50x", "-50", "99999999999999999999"}) {
        EXPECT_GT(longestLine({"explain", "double-free"}, 200, told), 90U) << told;
    }
}

TEST_F(Width, IsEightyWithoutATerminal) {
    for (const char* const command : {"new", "run", "repl", "test", "check", "report", "explain", "list", "style"}) {
        std::istringstream help(runProgram(runner({command, "--help"})).out);
        for (std::string line; std::getline(help, line);) {
            const bool isCode = line.rfind("  vexa-standin ", 0) == 0 || line.rfind("  STATS ", 0) == 0;
            EXPECT_TRUE(isCode || line.size() <= 80U) << line;
        }
    }
}

TEST_F(Width, LeavesExamplesInOnePiece) {
    PtyProgram running(runner({"list", "--help"}), 40, plainTerminal());
    EXPECT_EQ(running.finish(), 0);
    EXPECT_NE(running.output().find("\n  vexa-standin list ./libstats.so ./libloader.so\r\n"), std::string::npos)
        << running.output();
    EXPECT_NE(running.output().find("\n  2  wrong usage, or an add-on could not\r\n     be loaded\r\n"),
              std::string::npos)
        << running.output();
}

}  // namespace
}  // namespace vexa::e2e
