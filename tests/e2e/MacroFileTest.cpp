#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

using namespace std::string_literals;

using MacroFile = RunnerTest;
using UnprivilegedMacroFile = UnprivilegedRunnerTest;

TEST_F(MacroFile, RunsEveryCommandLine) {
    struct Case {
        const char* why;
        std::string macro;
        const char* out;
    };
    const Case cases[] = {
        {"one a line, in order", "ONE ECHO a\nONE ECHO b\n", "a\nb\n"},
        {"the last line may lack its end", "ONE ECHO a\nONE ECHO b", "a\nb\n"},
        {"CRLF is LF", "ONE ECHO a\r\n\r\nONE ECHO b\r\n", "a\nb\n"},
        {"CRLF, the last line without LF", "ONE ECHO a\r", "a\n"},
        {"leading blanks and tabs", " \tONE ECHO a\n", "a\n"},
        {"blanks and tabs after the id", "ONE \t ECHO a\n", "a\n"},
        {"the text is not trimmed", "ONE ECHO  a \t\n", " a \t\n"},
        {"comments and blank lines", "# one\n\n \t\n \t# two\nONE ECHO a # b\n", "a # b\n"},
        {"byte-order mark", "\xEF\xBB\xBFONE ECHO a\n", "a\n"},
        {"byte-order mark before a comment", "\xEF\xBB\xBF# one\nONE ECHO a\n", "a\n"},
        {"UTF-8", "ONE ECHO Größe\n", "Größe\n"},
        {"no line at all", "", ""},
        {"only a comment", "# nothing", ""},
        {"only a line end", "\r\n", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        const ProgramResult result = runMacro(c.macro);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.out, c.out);
        EXPECT_EQ(result.err, "");
    }
}

TEST_F(MacroFile, RefusesALine) {
    struct Case {
        const char* why;
        std::string macro;
        const char* err;
    };
    const Case cases[] = {
        {"unknown id", "TWO ECHO a\n", "m.macro:1: no add-on 'TWO' is loaded (loaded: ONE)\n"},
        {"ids differ by case", "one ECHO a\n",
         "m.macro:1: no add-on 'one' is loaded (loaded: ONE); did you mean ONE?\n"},
        {"a second byte-order mark", "\n\xEF\xBB\xBFONE ECHO a\n",
         "m.macro:2: no add-on '\xEF\xBB\xBFONE' is loaded (loaded: ONE)\n"},
        {"no command", "ONE\n", "m.macro:1: expected a command after 'ONE'\n"},
        {"no command, CRLF", "ONE\r\n", "m.macro:1: expected a command after 'ONE'\n"},
        {"only blanks for a command", "ONE \t \r\n", "m.macro:1: expected a command after 'ONE'\n"},
        {"NUL in a command", "ONE ECHO a\0b\n"s, "m.macro:1: the line contains a NUL byte\n"},
        {"NUL in a comment", "# a\0b\n"s, "m.macro:1: the line contains a NUL byte\n"},
        {"NUL at the very end", "\n\0"s, "m.macro:2: the line contains a NUL byte\n"},
        {"NUL at the very end, CRLF", "# a\r\n\0"s, "m.macro:2: the line contains a NUL byte\n"},
        {"NUL at the end of the last line", "# a\n# b\0"s, "m.macro:2: the line contains a NUL byte\n"},
        {"NUL before a line end", "# a\0\n# b\n"s, "m.macro:1: the line contains a NUL byte\n"},
        {"NUL at the start", "\0# a\n"s, "m.macro:1: the line contains a NUL byte\n"},
        {"NUL in a line of an unknown id", "TWO a\0b\n"s, "m.macro:1: the line contains a NUL byte\n"},
        {"CR in a command", "ONE ECHO a\rb\nONE ECHO c\n", "m.macro:1: the line contains a carriage return\n"},
        {"CR in the last line", "# a\nONE ECHO a\rb\n", "m.macro:2: the line contains a carriage return\n"},
        {"CR in a last line without LF", "ONE ECHO a\rb", "m.macro:1: the line contains a carriage return\n"},
        {"CR at the start of a line", "\rONE ECHO a\n# b\n", "m.macro:1: the line contains a carriage return\n"},
        {"only one CR belongs to a line end", "ONE ECHO a\r\r\n", "m.macro:1: the line contains a carriage return\n"},
        {"two CRs at the end of an earlier line", "# a\r\r\n# b\n", "m.macro:1: the line contains a carriage return\n"},
        {"CR for line ends", "# a\rONE ECHO a\r", "m.macro:1: the line contains a carriage return\n"},
        {"CR, then NUL", "ONE ECHO a\rb\0"s, "m.macro:1: the line contains a carriage return\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        const ProgramResult result = runMacro(c.macro);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, c.err);
    }
}

TEST_F(MacroFile, AllProblemsAreToldAndNothingRuns) {
    const ProgramResult result = runMacro("ONE ECHO ran\r\nTWO ECHO a\r\n# comment\r\n  ONE\r\nTHREE");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err,
              "m.macro:2: no add-on 'TWO' is loaded (loaded: ONE)\n"
              "m.macro:4: expected a command after 'ONE'\n"
              "m.macro:5: no add-on 'THREE' is loaded (loaded: ONE)\n");
}

TEST_F(MacroFile, IsQuotedShortlyWhenAnIdIsLong) {
    const std::string whole(200, 'x');
    EXPECT_EQ(runMacro(whole).err, "m.macro:1: no add-on '" + whole + "' is loaded (loaded: ONE)\n");
    EXPECT_EQ(runMacro(whole + 'x').err, "m.macro:1: no add-on '" + whole + "...' is loaded (loaded: ONE)\n");
    const std::string accented = std::string(199, 'x') + "\xC3\xA9";
    EXPECT_EQ(runMacro(accented).err,
              "m.macro:1: no add-on '" + std::string(199, 'x') + "...' is loaded (loaded: ONE)\n")
        << "no character is cut apart";
}

TEST_F(MacroFile, IsShownAsItWasNamed) {
    write("m.macro", "TWO ECHO a\n");
    const std::string path = (folder() / "m.macro").string();
    const ProgramResult result = runProgram(runner({"run", path, "--addon", ADDON_ONE}));
    EXPECT_EQ(result.err, path + ":1: no add-on 'TWO' is loaded (loaded: ONE)\n");
}

TEST_F(MacroFile, ThatIsMissingIsRefused) {
    const ProgramResult result = runProgram(macroRunner());
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "m.macro: cannot be read: No such file or directory\n");
}

TEST_F(MacroFile, ThatIsAFolderIsRefused) {
    std::filesystem::create_directory(folder() / "m.macro");
    const ProgramResult result = runProgram(macroRunner());
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "m.macro: cannot be read: Is a directory\n");
}

TEST_F(UnprivilegedMacroFile, ThatMayNotBeReadIsRefused) {
    write("m.macro", "ONE ECHO a\n");
    std::filesystem::permissions(folder() / "m.macro", std::filesystem::perms(0));
    const ProgramResult result = runUnprivileged(macroRunner());
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "m.macro: cannot be read: Permission denied\n");
}

TEST_F(MacroFile, MayComeFromTheStandardInput) {
    Program program = runner({"run", "-", "--addon", ADDON_ONE});
    program.input = "ONE ECHO a\nONE FAIL no\n";
    const ProgramResult result = runProgram(program);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "a\n");
    EXPECT_EQ(result.err, "<stdin>:2: ONE: no\n");
}

TEST_F(MacroFile, FromAClosedStandardInputIsRefused) {
    const std::string command = VEXA_STANDIN " run - --addon " ADDON_ONE " <&-";
    const ProgramResult result = runProgram({{"sh", "-c", command}, folder(), "", false});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "<stdin>: cannot be read: Bad file descriptor\n");
}

TEST_F(MacroFile, FromTheStandardInputBeginsWhereThatStands) {
    write("m.macro", "ONE ECHO a\nONE ECHO b\n");
    const std::string command = "{ read line; exec " VEXA_STANDIN " run - --addon " ADDON_ONE "; } < m.macro";
    const ProgramResult result = runProgram({{"sh", "-c", command}, folder(), "", false});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "b\n");
}

TEST_F(MacroFile, OfTheStandardInputHasItsProblemsPlacedThere) {
    Program program = runner({"run", "-", "--addon", ADDON_ONE});
    program.input = "# a\nTWO ECHO a\nONE ECHO a\0b\n"s;
    const ProgramResult result = runProgram(program);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err,
              "<stdin>:2: no add-on 'TWO' is loaded (loaded: ONE)\n<stdin>:3: the line contains a NUL byte\n");
}

TEST_F(MacroFile, MayComeThroughAPipe) {
    const std::string command = "mkfifo m.macro && { printf 'ONE ECHO a\nONE FAIL no' > m.macro & }; " VEXA_STANDIN
                                " run m.macro --addon " ADDON_ONE;
    const ProgramResult result = runProgram({{"sh", "-c", command}, folder(), "", false});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "a\n");
    EXPECT_EQ(result.err, "m.macro:2: ONE: no\n");
}

TEST_F(MacroFile, FromAPipeHasItsProblemsPlacedUnderItsName) {
    const std::string command =
        "mkfifo m.macro && { printf 'ONE ECHO a\nONE ECHO b\\rc\nTWO' > m.macro & }; " VEXA_STANDIN
        " run m.macro --addon " ADDON_ONE;
    const ProgramResult result = runProgram({{"sh", "-c", command}, folder(), "", false});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err,
              "m.macro:2: the line contains a carriage return\nm.macro:3: no add-on 'TWO' is loaded (loaded: ONE)\n");
}

TEST_F(MacroFile, MayBeOneOfTheSystemThatTellsNoSize) {
    const ProgramResult result = runProgram(runner({"run", "/proc/sys/kernel/ostype", "--addon", ADDON_ONE}));
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "/proc/sys/kernel/ostype:1: no add-on 'Linux' is loaded (loaded: ONE)\n");
}

TEST_F(MacroFile, LongerThanAnyBufferIsRead) {
    const std::string text(200000, 'x');
    const ProgramResult result = runMacro("ONE ECHO " + text + "\nONE ECHO end\n");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, text + "\nend\n");
}

}  // namespace
}  // namespace vexa::e2e
