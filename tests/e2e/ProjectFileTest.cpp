#include <algorithm>

#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

constexpr const char* kFile = "vexa-standin.toml";

class ProjectFile : public RunnerTest {
protected:
    /// Runs a macro that breaks unbalanced-lock, an error, and percent-backwards, a warning.
    ProgramResult run(const std::string& projectFile, const std::vector<std::string>& options = {}) const {
        write(kFile, projectFile);
        return runIn(folder(), options);
    }
    ProgramResult runIn(const std::filesystem::path& current, const std::vector<std::string>& options = {}) const {
        write("m.macro", "MISBEHAVING unbalanced-lock\nMISBEHAVING percent-backwards\n");
        Program program = runner({"run", folder() / "m.macro", "--addon", ADDON_MISBEHAVING});
        program.arguments.insert(program.arguments.end(), options.begin(), options.end());
        program.folder = current;
        return runProgram(program);
    }
    std::string place() const { return (std::filesystem::canonical(folder()) / kFile).string(); }
};

TEST_F(ProjectFile, IsNotNeeded) { EXPECT_EQ(runIn(folder()).status, 0); }

TEST_F(ProjectFile, SaysWhatTheOptionsSay) {
    struct Case {
        const char* why;
        const char* text;
        int status;
    };
    const Case cases[] = {
        {"nothing", "", 0},
        {"strict", "strict = true\n", 3},
        {"not strict", "strict = false\n", 0},
        {"an error is suppressed", "strict = true\nsuppress = [\"unbalanced-lock\"]\n", 0},
        {"one rule needs no array", "strict = true\nsuppress = \"unbalanced-lock\"\n", 0},
        {"warnings", "warnings-as-errors = true\nsuppress = [\"unbalanced-lock\"]\n", 3},
        {"warnings, but not strict", "warnings-as-errors = true\nstrict = false\n", 0},
        {"both are suppressed",
         "# shared\nwarnings-as-errors = true  # all of them\nsuppress = [\n  \"unbalanced-lock\",  # a # here\n"
         "  \"percent-backwards\",\n]\n",
         0},
        {"a time that suffices", "timeout = 60\n", 0},
        {"a time with a fraction", "timeout = 59.5\n", 0},
        {"a literal string of several lines", "strict = true\nsuppress = '''\nunbalanced-lock'''\n", 0},
        {"a # in a comment with a quote", "strict = true # \"all\nsuppress = [ # \"]\n  'unbalanced-lock' ]\n", 0},
        {"CRLF", "strict = true\r\nsuppress = [\r\n  \"unbalanced-lock\",\r\n]\r\n", 0},
        {"byte-order mark", "\xEF\xBB\xBFstrict = true\n", 3},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        const ProgramResult result = run(c.text);
        EXPECT_EQ(result.status, c.status) << result.err;
    }
}

TEST_F(ProjectFile, LimitsTheTimeOfACommand) {
    write(kFile, "timeout = 2\n");
    write("m.macro", "MISBEHAVING command-timeout\n");
    EXPECT_EQ(runProgram(runner({"run", "m.macro", "--addon", ADDON_MISBEHAVING})).status, 4);
}

TEST_F(ProjectFile, IsFoundAboveTheCurrentFolder) {
    write(kFile, "strict = true\n");
    std::filesystem::create_directories(folder() / "a/b");
    EXPECT_EQ(runIn(folder() / "a/b").status, 3);
}

TEST_F(ProjectFile, IsTheNearestOne) {
    write(kFile, "strict = true\n");
    std::filesystem::create_directories(folder() / "a/b");
    write(std::string("a/") + kFile, "strict = false\n");
    EXPECT_EQ(runIn(folder() / "a/b").status, 0);
}

TEST_F(ProjectFile, GivesWayToTheCommandLine) {
    EXPECT_EQ(run("strict = true\n", {"--no-strict"}).status, 0);
    EXPECT_EQ(run("strict = false\n", {"--strict"}).status, 3);
    EXPECT_EQ(
        run("strict = true\nwarnings-as-errors = true\nsuppress = \"unbalanced-lock\"\n", {"--no-warnings-as-errors"})
            .status,
        0);
    EXPECT_EQ(run("timeout = 0.000001\n", {"--timeout", "60"}).status, 0);
    EXPECT_EQ(run("strict = true\n", {"--no-project-file"}).status, 0);
}

TEST_F(ProjectFile, AddsItsSuppressionsToThoseOfTheCommandLine) {
    EXPECT_EQ(run("warnings-as-errors = true\nsuppress = [\"unbalanced-lock\"]\n", {"--suppress", "percent-backwards"})
                  .status,
              0);
}

TEST_F(ProjectFile, IsRefusedAtTheLineThatIsWrong) {
    const char* const kKeys = "; the keys are strict, warnings-as-errors, suppress, timeout, host";
    const char* const kNoRule = "suppress: expected the name of a rule, or an array of them";
    const char* const kNoTime = "timeout: expected seconds, more than 0 and at most 1000000";
    struct Case {
        std::string text;
        int line;
        std::string reason;
    };
    const Case cases[] = {
        {"\nstricter = true\n", 2, std::string("unknown key stricter") + kKeys},
        {"# run\n[run]\nstrict = true\n", 2, std::string("unknown key run") + kKeys},
        {"run.strict = true\n", 1, std::string("unknown key run") + kKeys},
        {"suppress = [\r\n  \"leaked-set\",\r\n  \"leaked-sets\"\r\n]\r\n", 3,
         "suppress: there is no rule \"leaked-sets\"; is leaked-set meant?"},
        {"suppress = '''all'''\n", 1, "suppress: there is no rule \"all\"; 'vexa-standin explain' lists them"},
        {"suppress = true\n", 1, kNoRule},
        {"suppress = [\n  \"leaked-set\",\n  5,\n]\n", 3, kNoRule},
        {"strict = 5\n", 1, "strict: expected true or false"},
        {"strict = [true, false]\n", 1, "strict: expected true or false"},
        {"\n\nwarnings-as-errors = \"true\"\n", 3, "warnings-as-errors: expected true or false"},
        {"timeout = \"60\"\n", 1, kNoTime},
        {"timeout = 0\n", 1, kNoTime},
        {"timeout = nan\n", 1, kNoTime},
        {"timeout = true\n", 1, kNoTime},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        const ProgramResult result = run(c.text);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err, place() + ':' + std::to_string(c.line) + ": " + c.reason + '\n');
    }
}

TEST_F(ProjectFile, IsRefusedAtTheLineThatIsNoToml) {
    struct Case {
        const char* why;
        const char* text;
        int line;
    };
    const Case cases[] = {
        {"an array without its end", "strict = true\nsuppress = [\"unbalanced-lock\",\n", 2},
        {"a key after an array without its end", "suppress = [\"unbalanced-lock\",\nstrict = true\n", 2},
        {"a string without its end", "\nsuppress = \"unbalanced-lock\n", 2},
        {"a literal string without its end", "suppress = '''unbalanced-lock\n", 1},
        {"a key that is given twice", "strict = true\ntimeout = 5\nstrict = true\n", 3},
        {"a key without a value", "strict\n", 1},
        {"a word for a value", "strict = yes\n", 1},
        {"two keys on a line", "strict = true timeout = 5\n", 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        const ProgramResult result = run(c.text);
        const std::string start = place() + ':' + std::to_string(c.line) + ": ";
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err.substr(0, start.size()), start) << result.err;
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    }
}

TEST_F(ProjectFile, ThatIsAFolderIsNone) {
    std::filesystem::create_directory(folder() / kFile);
    EXPECT_EQ(runIn(folder()).status, 0);
}

using UnprivilegedProjectFile = UnprivilegedRunnerTest;

TEST_F(UnprivilegedProjectFile, ThatCannotBeReadIsRefused) {
    write("m.macro", "ONE ECHO ran\n");
    write(kFile, "strict = true\n");
    std::filesystem::permissions(folder() / kFile, std::filesystem::perms::none);
    const ProgramResult result = runUnprivileged(macroRunner());
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, (std::filesystem::canonical(folder()) / kFile).string() + ": Permission denied\n");
}

}  // namespace
}  // namespace vexa::e2e
