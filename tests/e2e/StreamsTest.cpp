// Tests outputs and inputs that are not files: the standard streams, pipes and devices.

#include <sys/stat.h>

#include "PtyProgram.h"
#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

namespace fs = std::filesystem;

using Arguments = std::vector<std::string>;

// A command that writes an output, and how that begins.
struct Output {
    Arguments arguments;  // the output's place is to follow
    const char* begin;
};

const Output kOutputs[] = {
    {{"run", "m.macro", "--addon", ADDON_ONE, "--record"}, "# Macro commands"},
    {{"run", "m.macro", "--addon", ADDON_ONE, "--journal"}, "# Data-set journal"},
    {{"run", "m.macro", "--addon", ADDON_ONE, "--json"}, "{\"place\":\"m.macro:1\""},
    {{"run", "m.macro", "--addon", ADDON_ONE, "--trace"}, "[\n{"},
    {{"run", "m.macro", "--addon", ADDON_ONE, "--trace-text"}, "# thread, "},
    {{"run", "m.macro", "m.macro", "--addon", ADDON_ONE, "--json"}, "{\"place\":\"m.macro:1\""},
    {{"run", "m.macro", "--addon", ADDON_ONE, "--sarif"}, "{\n"},
    {{"run", "m.macro", "m.macro", "--addon", ADDON_ONE, "--sarif"}, "{\n"},
    {{"check", ADDON_ONE, "--only", "load", "--json"}, "{\n"},
    {{"check", ADDON_ONE, "--only", "load", "--junit"}, "<?xml"},
    {{"check", ADDON_ONE, "--only", "load", "--sarif"}, "{\n"},
    {{"test", "m.macro", "--addon", ADDON_ONE, "--junit"}, "<?xml"},
    {{"test", "m.macro", "--addon", ADDON_ONE, "--sarif"}, "{\n"},
    {{"repl", "--addon", ADDON_ONE, "--record"}, "# Macro commands"},
    {{"report", "run.trace", "-o"}, "<!DOCTYPE html>"},
};

class Streams : public RunnerTest {
protected:
    Streams() {
        write("m.macro", "ONE SAY printed\n");
        write("m.expected", "> ONE SAY printed\n  printed\n+ ONE SAY printed\n");
        runProgram(runner({"run", "m.macro", "--addon", ADDON_ONE, "--trace", "run.trace"}));
    }

    static std::string words(const Arguments& arguments) {
        std::string line;
        for (const std::string& word : arguments) line += " '" + word + '\'';
        return line;
    }

    // `vexa-standin ARGUMENTS REST`, by a shell; 124 when it takes a minute.
    ProgramResult shell(const Arguments& arguments, const std::string& rest) const {
        const std::string command = "timeout 60 " VEXA_STANDIN + words(arguments) + ' ' + rest;
        return runProgram({{"bash", "-c", command}, folder(), "", false});
    }

    void makePipe(const char* name) const { ASSERT_EQ(mkfifo((folder() / name).c_str(), 0600), 0); }
};

TEST_F(Streams, TakeEveryOutputAlone) {
    for (const Output& output : kOutputs) {
        for (const char* name : {"-", "/dev/stdout", "/dev/fd/1"}) {
            SCOPED_TRACE(words(output.arguments) + ' ' + name);
            Arguments arguments = output.arguments;
            arguments.emplace_back(name);
            const ProgramResult result = runProgram(runner(arguments));
            EXPECT_EQ(result.status, 0) << result.err;
            EXPECT_EQ(result.out.rfind(output.begin, 0), 0U) << result.out.substr(0, 200);
            EXPECT_EQ(result.out.find("\nprinted\n"), std::string::npos) << result.out;
        }
    }
}

TEST_F(Streams, MayBeAFile) {
    for (const Output& output : kOutputs) {
        SCOPED_TRACE(words(output.arguments));
        Arguments arguments = output.arguments;
        arguments.emplace_back("/dev/stdout");
        EXPECT_EQ(shell(arguments, "> out").status, 0);
        EXPECT_EQ(read("out").rfind(output.begin, 0), 0U) << read("out");
    }
}

TEST_F(Streams, MayBeATerminal) {
    PtyProgram terminal(runner({"run", "m.macro", "--addon", ADDON_ONE, "--json", "/dev/stdout"}), 200);
    EXPECT_EQ(terminal.finish(), 0);
    EXPECT_NE(terminal.output().find("{\"place\":\"m.macro:1\""), std::string::npos) << terminal.output();
}

TEST_F(Streams, ThatAreClosedAreAnError) {
    for (const Output& output : kOutputs) {
        for (const char* name : {"-", "/dev/stdout"}) {
            SCOPED_TRACE(words(output.arguments) + ' ' + name);
            Arguments arguments = output.arguments;
            arguments.emplace_back(name);
            const ProgramResult result = shell(arguments, ">&-");
            EXPECT_EQ(result.status, 2);
            EXPECT_EQ(result.err, "<stdout>: cannot be written: it is closed\n");
        }
    }
}

TEST_F(Streams, MayBeAPipeThatIsRead) {
    for (const Output& output : kOutputs) {
        SCOPED_TRACE(words(output.arguments));
        EXPECT_EQ(shell(output.arguments, ">(cat >got) 2>/dev/null; wait $!").status, 0);
        EXPECT_EQ(read("got").rfind(output.begin, 0), 0U) << read("got");
    }
}

TEST_F(Streams, ThatNobodyReadsAreRefused) {
    makePipe("pipe");
    for (const Output& output : kOutputs) {
        SCOPED_TRACE(words(output.arguments));
        const ProgramResult result = shell(output.arguments, "pipe");
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err, "pipe: cannot be written: no process reads it\n");
    }
}

TEST_F(Streams, MayBeInputs) {
    write("style.json", "{\"TITLE\": {\"TEXT\": \"Wake\"}}\n");
    struct Case {
        Arguments arguments;
        const char* input;
        const char* out;
    };
    const Case cases[] = {
        {{"run", "-", "--addon", ADDON_ONE}, "m.macro", "printed\n"},
        {{"run", "/dev/stdin", "--addon", ADDON_ONE}, "m.macro", "printed\n"},
        {{"run", "m.macro", "--addon", ADDON_ONE, "--style", "-"}, "style.json", "printed\n"},
        {{"test", "m.macro", "--addon", ADDON_ONE, "--style", "-"}, "style.json", "passed"},
        {{"style", "--style", "-", "TITLE", "TEXT"}, "style.json", "text Wake"},
        {{"style", "--style", "/dev/stdin", "TITLE", "TEXT"}, "style.json", "text Wake"},
        {{"check", ADDON_ONE, "--only", "commands-in-order", "--macro", "-"}, "m.macro", "check passed: 2 passed"},
        {{"report", "-", "-o", "/dev/stdout"}, "run.trace", "<!DOCTYPE html>"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(words(c.arguments));
        for (const std::string& rest : {std::string("< ") + c.input, std::string("< <(cat ") + c.input + ')'}) {
            const ProgramResult result = shell(c.arguments, rest);
            EXPECT_EQ(result.status, 0) << result.err;
            EXPECT_NE(result.out.find(c.out), std::string::npos) << result.out;
        }
    }
}

TEST_F(Streams, AreRefusedWhereTheyCannotBeUsed) {
    const char* const kNoStream = "a standard stream cannot be used here; for a file or folder called -, write ./-";
    const char* const kOnce = "the standard input can be read only once";
    struct Case {
        Arguments arguments;
        const char* err;
    };
    const Case cases[] = {
        {{"run", "m.macro", "--addon", "-"}, kNoStream},
        {{"list", "--addon", "-"}, kNoStream},
        {{"check", "-"}, kNoStream},
        {{"check", ADDON_ONE, "--addon", "-"}, kNoStream},
        {{"check", ADDON_ONE, "-o", "-"}, kNoStream},
        {{"new", "-"}, kNoStream},
        {{"test", "-", "--addon", ADDON_ONE}, "-: no such file; expected a folder, or a macro NAME.macro"},
        {{"run", "-", "--addon", ADDON_ONE, "--style", "-"}, kOnce},
        {{"check", ADDON_ONE, "--macro", "-", "--style", "/dev/stdin"}, kOnce},
        {{"check", ADDON_ONE, "--macro", "-", "--macro", "-"}, kOnce},
        {{"repl", "--addon", ADDON_ONE, "--style", "-"}, kOnce},
        {{"run", "m.macro", "m.macro", "--addon", ADDON_ONE, "--style", "-"},
         "--style -: works with one macro file only"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(words(c.arguments));
        const ProgramResult result = runProgram(runner(c.arguments));
        EXPECT_EQ(result.status, 2);
        EXPECT_NE(result.err.find(c.err), std::string::npos) << result.err;
    }
}

TEST_F(Streams, MayBeStylesOfAProcessSubstitution) {
    const ProgramResult result = shell({"style", "--style"}, "<(sleep 0.1; echo '{\"TEXT\": \"Wake\"}') TEXT");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "text Wake\n");
}

TEST_F(Streams, ThatAreNamedPipesAreNoInputs) {
    makePipe("pipe");
    makePipe("vexa-standin.toml");
    makePipe("n.expected");
    write("n.macro", "ONE SAY printed\n");
    const std::string why = "it is a named pipe, not a regular file\n";
    EXPECT_EQ(shell({"style", "--style", "pipe", "TEXT"}, "").err, "pipe: cannot be read: " + why);
    EXPECT_EQ(shell({"report", "pipe", "-o", "page.html"}, "").err, "pipe: cannot be read: " + why);
    EXPECT_EQ(shell({"run", "m.macro", "--addon", ADDON_ONE}, "").err,
              (folder() / "vexa-standin.toml: ").string() + why);
    const ProgramResult tested = shell({"test", "n.macro", "--addon", ADDON_ONE, "--no-project-file"}, "");
    EXPECT_EQ(tested.status, 2);
    EXPECT_NE(tested.out.find("n.expected: cannot be written: it cannot be read: " + why), std::string::npos)
        << tested.out;
}

}  // namespace
}  // namespace vexa::e2e
