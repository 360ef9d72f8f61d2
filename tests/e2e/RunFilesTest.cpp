// Tests that no output replaces an input, by whatever path the input is named.

#include <algorithm>
#include <map>

#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

namespace fs = std::filesystem;

using Arguments = std::vector<std::string>;

// An output, `@`, of a command, and the files that the command reads.
struct Output {
    Arguments arguments;
    std::vector<std::string> inputs;
};

const Arguments kRunInputs = {"m.macro", "one.so", "style.json", "vexa-standin.toml"};

const Output kOutputs[] = {
    {{"run", "m.macro", "--addon", "one.so", "--style", "style.json", "--record", "@"}, kRunInputs},
    {{"run", "m.macro", "--addon", "one.so", "--style", "style.json", "--journal", "@"}, kRunInputs},
    {{"run", "m.macro", "--addon", "one.so", "--style", "style.json", "--json", "@"}, kRunInputs},
    {{"run", "m.macro", "--addon", "one.so", "--style", "style.json", "--trace", "@"}, kRunInputs},
    {{"run", "m.macro", "--addon", "one.so", "--style", "style.json", "--trace-text", "@"}, kRunInputs},
    {{"run", "n.macro", "m.macro", "--addon", "one.so", "--style", "style.json", "--json", "@"}, kRunInputs},
    {{"run", "m.macro", "--addon", "one.so", "--style", "style.json", "--sarif", "@"}, kRunInputs},
    {{"check", "one.so", "--macro", "m.macro", "--style", "style.json", "--level", "1", "--json", "@"}, kRunInputs},
    {{"check", "one.so", "--macro", "m.macro", "--style", "style.json", "--level", "1", "--junit", "@"}, kRunInputs},
    {{"check", "one.so", "--macro", "m.macro", "--style", "style.json", "--level", "1", "--sarif", "@"}, kRunInputs},
    {{"test", "m.macro", "--addon", "one.so", "--style", "style.json", "--junit", "@"},
     {"m.macro", "one.so", "style.json", "vexa-standin.toml", "m.expected"}},
    {{"test", "m.macro", "--addon", "one.so", "--style", "style.json", "--accept", "--junit", "@"},
     {"m.macro", "one.so", "style.json", "vexa-standin.toml", "m.expected"}},
    {{"test", "m.macro", "--addon", "one.so", "--style", "style.json", "--sarif", "@"},
     {"m.macro", "one.so", "style.json", "vexa-standin.toml", "m.expected"}},
    {{"repl", "--addon", "one.so", "--style", "style.json", "--record", "@"}, {"one.so", "style.json"}},
    {{"report", "run.trace", "-o", "@"}, {"run.trace"}},
};

class RunFiles : public RunnerTest {
protected:
    RunFiles() {
        write("m.macro", "ONE SAY a\n");
        write("n.macro", "ONE SAY n\n");
        write("m.expected", "> ONE SAY other\n");
        write("style.json", "{}\n");
        write("vexa-standin.toml", "strict = true\n");
        fs::copy_file(ADDON_ONE, folder() / "one.so");
        runProgram(runner({"run", "m.macro", "--addon", "one.so", "--trace", "run.trace"}));
    }

    // The ways to name `input`, which may want a link.
    std::vector<std::string> namesOf(const std::string& input) const {
        fs::remove(folder() / "hard");
        fs::remove(folder() / "link");
        fs::create_hard_link(folder() / input, folder() / "hard");
        fs::create_symlink(input, folder() / "link");
        return {input, "./" + input, (folder() / input).string(), "hard", "link"};
    }

    static Arguments with(const std::string& output, Arguments arguments) {
        std::replace(arguments.begin(), arguments.end(), std::string("@"), output);
        return arguments;
    }

    std::map<std::string, std::string> contents() const {
        std::map<std::string, std::string> files;
        for (const std::string& name : fileNames()) files[name] = read(name);
        return files;
    }
};

TEST_F(RunFiles, ThatAreReadAreNotWritten) {
    for (const Output& output : kOutputs) {
        for (const std::string& input : output.inputs) {
            for (const std::string& name : namesOf(input)) {
                const Arguments arguments = with(name, output.arguments);
                SCOPED_TRACE(arguments.front() + ' ' + output.arguments.end()[-2] + ' ' + name + " of " + input);
                const auto before = contents();
                const ProgramResult result = runProgram(runner(arguments));
                EXPECT_EQ(result.status, 2);
                EXPECT_EQ(result.out, "");
                EXPECT_EQ(result.err.find(name + ": cannot be written: the command also uses it as "), 0U)
                    << result.err;
                EXPECT_EQ(contents(), before);
            }
        }
    }
}

TEST_F(RunFiles, ThatAreWrittenAreWrittenOnce) {
    const Arguments cases[] = {
        {"run", "m.macro", "--addon", "one.so", "--record", "new", "--journal", "@"},
        {"run", "m.macro", "--addon", "one.so", "--record", "new", "--json", "@"},
        {"run", "m.macro", "--addon", "one.so", "--trace", "new", "--trace-text", "@"},
        {"check", "one.so", "--level", "1", "--json", "new", "--junit", "@"},
        {"check", "one.so", "--level", "1", "--json", "new", "--sarif", "@"},
        {"test", "m.macro", "--addon", "one.so", "--junit", "new", "--sarif", "@"},
    };
    fs::create_directory(folder() / "sub");
    fs::create_symlink("new", folder() / "dangling");
    for (const Arguments& arguments : cases) {
        for (const char* name : {"new", "./new", "sub/../new", "dangling"}) {
            SCOPED_TRACE(arguments.end()[-2] + ' ' + name);
            const ProgramResult result = runProgram(runner(with(name, arguments)));
            EXPECT_EQ(result.status, 2);
            EXPECT_EQ(result.err, std::string(name) + ": cannot be written: the command also uses it as new\n");
            EXPECT_FALSE(fs::exists(folder() / "new"));
        }
    }
}

TEST_F(RunFiles, ThatAStandardStreamIsRedirectedToAreNotWritten) {
    struct Case {
        const char* options;
        const char* err;
    };
    const Case cases[] = {
        {"m.macro --json out >out", "out: cannot be written: the command also uses it as <stdout>\n"},
        {"m.macro --record out >out", "out: cannot be written: the command also uses it as <stdout>\n"},
        {"- --record m.macro <m.macro", "m.macro: cannot be written: the command also uses it as -\n"},
        {"m.macro --json - >>m.macro", "-: cannot be written: the command also uses it as m.macro\n"},
        {"m.macro --trace - --json -", "-: cannot be written: the command also uses it as -\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.options);
        const std::string command = std::string("exec " VEXA_STANDIN " run --addon one.so ") + c.options;
        const ProgramResult result = runProgram({{"sh", "-c", command}, folder(), "", false});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err, c.err);
        EXPECT_EQ(read("m.macro"), "ONE SAY a\n");
    }
}

TEST_F(RunFiles, MayBeOneDevice) {
    const ProgramResult result = runProgram(runner({"run", "m.macro", "--addon", "one.so", "--json", "/dev/null",
                                                    "--trace", "/dev/null", "--record", "/dev/null"}));
    EXPECT_EQ(result.status, 0) << result.err;
}

TEST_F(RunFiles, AreNotReplacedByWhatMacrosAreExpectedToDo) {
    fs::remove(folder() / "m.expected");
    for (const char* input : {"m.macro", "n.macro", "one.so", "style.json", "vexa-standin.toml"}) {
        for (const bool isSymbolic : {false, true}) {
            SCOPED_TRACE(std::string(input) + (isSymbolic ? ", a symbolic link" : ", a hard link"));
            if (isSymbolic) {
                fs::create_symlink(input, folder() / "m.expected");
            } else {
                fs::create_hard_link(folder() / input, folder() / "m.expected");
            }
            const auto before = contents();
            const ProgramResult result = runProgram(
                runner({"test", "m.macro", "n.macro", "--addon", "one.so", "--style", "style.json", "--accept"}));
            EXPECT_EQ(result.status, 2);
            EXPECT_EQ(result.err,
                      "m.expected: cannot be written: the command also uses it as " +
                          (std::string(input) == "vexa-standin.toml" ? (folder() / input).string() : input) + "\n");
            EXPECT_EQ(contents(), before);
            fs::remove(folder() / "m.expected");
        }
    }
}

TEST_F(RunFiles, OfOneMacroNamedTwiceAreAccepted) {
    const ProgramResult result = runProgram(runner({"test", "m.macro", "./m.macro", "--addon", "one.so", "--accept"}));
    EXPECT_EQ(result.status, 0) << result.err;
}

TEST_F(RunFiles, AreNotReplacedByTheMacroOfAFailedCheck) {
    const std::string name = "vexa-standin-check-commands-in-order.macro";
    write(name, "ROGUE kill\n");
    write("other.macro", "ROGUE kill\n");
    fs::create_hard_link(folder() / "other.macro", folder() / "hard");
    for (const std::string& macro : {name, "./" + name, std::string("link"), std::string("hard")}) {
        SCOPED_TRACE(macro);
        if (macro == "link") fs::create_symlink(name, folder() / "link");
        if (macro == "hard") {
            fs::remove(folder() / name);
            fs::create_hard_link(folder() / "other.macro", folder() / name);
        }
        Arguments arguments = {"check", CHECK_ADDONS "/rogue.so", "--macro", macro, "--only", "commands-in-order"};
        const ProgramResult result = runProgram(runner(arguments));
        EXPECT_EQ(result.status, 2) << result.out;
        EXPECT_EQ(result.err, name + ": cannot be written: the command also uses it as " + macro + "\n");
        EXPECT_EQ(read(name), "ROGUE kill\n");
        EXPECT_NE(result.out.find("reproduce: vexa-standin check "), std::string::npos) << result.out;
    }
}

}  // namespace
}  // namespace vexa::e2e
