#include <algorithm>

#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

using CommandLine = RunnerTest;

// All that the help shows.
std::vector<std::string> subcommands() {
    return {"new", "run", "repl", "test", "check", "attach", "report", "explain", "list", "style"};
}

// What a refused command line ends with: the help of its command, if it has one.
std::string hintFor(const std::vector<std::string>& arguments) {
    const std::vector<std::string> commands = subcommands();
    const bool isCommand = std::find(commands.begin(), commands.end(), arguments[0]) != commands.end();
    return "run 'vexa-standin " + (isCommand ? arguments[0] + ' ' : "") + "--help' for the usage\n";
}

TEST_F(CommandLine, HelpGoesToTheStandardOutput) {
    const ProgramResult result = runProgram(runner({"--help"}));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_NE(result.out.find("Run macro files"), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("List add-ons"), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("Print the value"), std::string::npos) << result.out;
}

TEST_F(CommandLine, HelpOfRunShowsAnExampleAndTheExitStatuses) {
    const ProgramResult result = runProgram(runner({"run", "--help"}));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    for (const char* part : {"vexa-standin run sweep.macro --addon", "  0    all went well", "  1    a command failed",
                             "  2    wrong usage or input", "  3    with --strict", "  4    with --timeout",
                             "--suppress RULE", "--timeout SECONDS", "  130  stopped by Ctrl-C", "--record FILE",
                             "--journal FILE", "--style FILE.json", "--batch", "--keep-going", "--verbose"}) {
        EXPECT_NE(result.out.find(part), std::string::npos) << part << " in " << result.out;
    }
}

TEST_F(CommandLine, HelpOfStyleShowsTheFormOfAStyleFile) {
    const ProgramResult result = runProgram(runner({"style", "--help"}));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    for (const char* part : {"--style FILE.json REQUIRED", "PATH...", "--offset1 N", "--offset2 N", "{\"$double\": 3}",
                             "$set", "$offsets", "$value", "  2  wrong usage"}) {
        EXPECT_NE(result.out.find(part), std::string::npos) << part << " in " << result.out;
    }
}

TEST_F(CommandLine, VersionIsThatOfTheProject) {
    const ProgramResult result = runProgram(runner({"--version"}));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "vexa-standin " VEXA_VERSION "\n");
}

TEST_F(CommandLine, WithoutSubcommandShowsTheHelpAsAnError) {
    const ProgramResult result = runProgram(runner({}));
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, runProgram(runner({"--help"})).out);
}

TEST_F(CommandLine, RefusesWrongUsageWithAHint) {
    write("m.macro", "ONE ECHO ran\n");
    struct Case {
        const char* why;
        std::vector<std::string> arguments;
        const char* part;
    };
    const Case cases[] = {
        {"unknown subcommand", {"walk"}, "walk"},
        {"unknown option", {"run", "m.macro", "--addon", ADDON_ONE, "--fast"}, "--fast"},
        {"no macro file", {"run", "--addon", ADDON_ONE}, "MACROFILE"},
        {"no add-on to run with", {"run", "m.macro"}, "--addon"},
        {"no add-on to list", {"list"}, "FILE.so"},
        {"option without its file", {"run", "m.macro", "--addon", ADDON_ONE, "--record"}, "--record"},
        {"option given twice", {"run", "m.macro", "--addon", ADDON_ONE, "--record", "a", "--record", "b"}, "--record"},
        {"one recording of two", {"run", "m.macro", "m.macro", "--addon", ADDON_ONE, "--record", "r"}, "--record"},
        {"one journal of two", {"run", "m.macro", "m.macro", "--addon", ADDON_ONE, "--journal", "r"}, "--journal"},
        {"one trace of two", {"run", "m.macro", "m.macro", "--addon", ADDON_ONE, "--trace", "r"}, "--trace"},
        {"one text of two", {"run", "m.macro", "m.macro", "--addon", ADDON_ONE, "--trace-text", "r"}, "--trace-text"},
        {"several of the standard input", {"run", "m.macro", "-", "--addon", ADDON_ONE}, "MACROFILE -"},
        {"no jobs", {"run", "m.macro", "--addon", ADDON_ONE, "--jobs", "0"}, "--jobs"},
        {"no style file", {"style", "A"}, "--style"},
        {"no path", {"style", "--style", "s.json"}, "PATH"},
        {"seven keywords",
         {"style", "--style", "s.json", "A", "B", "C", "D", "E", "F", "G"},
         "expected at most six keywords"},
        {"an offset that is no number", {"style", "--style", "s.json", "A", "--offset1", "one"}, "--offset1"},
        {"two subcommands", {"check", ADDON_ONE, "run", "m.macro", "--addon", ADDON_ONE}, "run"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        const ProgramResult result = runProgram(runner(c.arguments));
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err.rfind("vexa-standin: ", 0), 0U) << result.err;
        EXPECT_NE(result.err.find(c.part), std::string::npos) << result.err;
        const std::string hint = hintFor(c.arguments);
        ASSERT_GE(result.err.size(), hint.size());
        EXPECT_EQ(result.err.substr(result.err.size() - hint.size()), hint);
    }
}

TEST_F(CommandLine, TellsWhatMayBeMeant) {
    write("m.macro", "ONE ECHO ran\n");
    struct Case {
        const char* why;
        std::vector<std::string> arguments;
        const char* line;  // "" for none
    };
    const Case cases[] = {
        {"letters swapped", {"rnu", "m.macro", "--addon", ADDON_ONE}, "rnu: did you mean run?"},
        {"a letter missing", {"chek"}, "chek: did you mean check?"},
        {"a command in capitals", {"RUN", "a"}, "RUN: did you mean run?"},
        {"nothing is near", {"frobnicate"}, ""},
        {"an option", {"run", "m.macro", "--addon", ADDON_ONE, "--recrod", "r"}, "--recrod: did you mean --record?"},
        {"with its value", {"run", "m.macro", "--addon", ADDON_ONE, "--recrod=r"}, "--recrod: did you mean --record?"},
        {"a required one", {"run", "m.macro", "--adon", ADDON_ONE}, "--adon: did you mean --addon?"},
        {"the beginning of several",
         {"run", "m.macro", "--addon", ADDON_ONE, "--trac=t"},
         "--trac: did you mean --trace or --trace-text?"},
        {"an option of the program", {"--versoin"}, "--versoin: did you mean --version?"},
        {"not an option of another command", {"list", "--addon", ADDON_ONE, "--recrod"}, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        const ProgramResult result = runProgram(runner(c.arguments));
        EXPECT_EQ(result.status, 2);
        if (c.line[0] != '\0') {
            EXPECT_NE(result.err.find("\nvexa-standin: " + std::string(c.line) + '\n' + hintFor(c.arguments)),
                      std::string::npos)
                << result.err;
        } else {
            EXPECT_EQ(result.err.find("did you mean"), std::string::npos) << result.err;
        }
    }
}

TEST_F(CommandLine, ShowsUnexpectedWordsInTheirOrder) {
    EXPECT_EQ(runProgram(runner({"rn", "a", "b", "c"})).err,
              "vexa-standin: there is no command 'rn'\n"
              "vexa-standin: rn: did you mean run?\n"
              "run 'vexa-standin --help' for the usage\n");
    EXPECT_EQ(runProgram(runner({"check", "a.so", "b", "c"})).err,
              "vexa-standin: unexpected arguments: b c\n"
              "run 'vexa-standin check --help' for the usage\n");
    EXPECT_EQ(runProgram(runner({"check", "a.so", "b"})).err,
              "vexa-standin: unexpected argument: b\n"
              "run 'vexa-standin check --help' for the usage\n");
}

TEST_F(CommandLine, HelpListsTheCommandsInTheOrderOfTheirUse) {
    const std::string help = runProgram(runner({"--help"})).out;
    std::size_t last = help.find("Commands:");
    for (const std::string& name : subcommands()) {
        const std::size_t at = help.find("\n  " + name + ' ');
        ASSERT_NE(at, std::string::npos) << name << " in " << help;
        EXPECT_GT(at, last) << name;
        last = at;
    }
}

TEST_F(CommandLine, HelpOfEveryCommandShowsAnExampleAndTheExitStatuses) {
    for (const std::string& name : subcommands()) {
        const ProgramResult result = runProgram(runner({name, "--help"}));
        EXPECT_EQ(result.status, 0) << name;
        EXPECT_NE(result.out.find("\n  vexa-standin " + name + ' '), std::string::npos) << result.out;
        EXPECT_NE(result.out.find("\nExit status:\n"), std::string::npos) << result.out;
    }
}

TEST_F(CommandLine, MacroFileMayFollowTheAddOns) {
    write("m.macro", "ONE ECHO ran\n");
    const ProgramResult result = runProgram(runner({"run", "--addon", ADDON_ONE, "m.macro"}));
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "ran\n");
}

TEST_F(CommandLine, AFullStandardOutputIsAnError) {
    write("m.macro", "ONE ECHO lost\n");
    const std::string command = std::string(VEXA_STANDIN " run m.macro --addon " ADDON_ONE " > /dev/full");
    const ProgramResult result = runProgram({{"sh", "-c", command}, folder(), "", false});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "vexa-standin: the standard output could not be written\n");
}

TEST_F(CommandLine, RunningOutOfMemoryIsToldInOneLine) {
    const std::string limited = "ulimit -v 100000; exec " VEXA_STANDIN " ";
    if (runProgram({{"sh", "-c", limited + "--version"}, folder(), "", false}).status != 0) {
        GTEST_SKIP() << "built with a sanitizer, the program needs more address space than that";
    }
    write("m.macro", "");
    std::filesystem::resize_file(folder() / "m.macro", 200'000'000);
    const ProgramResult result =
        runProgram({{"sh", "-c", limited + "run m.macro --addon " ADDON_ONE}, folder(), "", false});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "vexa-standin: out of memory\n");
}

TEST_F(CommandLine, AClosedStandardOutputIsNotMixedUpWithARecording) {
    write("m.macro", "ONE SAY hello\n");
    const std::string command = VEXA_STANDIN " run m.macro --addon " ADDON_ONE " --record r.macro >&-";
    const ProgramResult result = runProgram({{"sh", "-c", command}, folder(), "", false});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "vexa-standin: the standard output could not be written\n");
    EXPECT_EQ(read("r.macro").find("\nhello\n"), std::string::npos) << read("r.macro");
    EXPECT_NE(read("r.macro").find("\nONE SAY hello\n"), std::string::npos) << read("r.macro");
}

}  // namespace
}  // namespace vexa::e2e
