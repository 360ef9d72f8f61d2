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

TEST_F(ProjectFile, IsRefusedWhenItIsWrong) {
    const char* const kKeys = "; the keys are strict, warnings-as-errors, suppress, timeout";
    struct Case {
        std::string text;
        std::string reason;
    };
    const Case cases[] = {
        {"stricter = true\n", std::string("unknown key stricter") + kKeys},
        {"[run]\nstrict = true\n", std::string("unknown key [run]") + kKeys},
        {"run.strict = true\n", std::string("unknown key run.strict") + kKeys},
        {"suppress = [\"leaked-set\", \"leaked-sets\"]\n",
         "suppress: there is no rule \"leaked-sets\"; is leaked-set meant?"},
        {"suppress = true\n", "suppress: there is no rule \"true\"; 'vexa-standin explain' lists them"},
        {"strict = 5\n", "strict: expected true or false"},
        {"strict = [true, false]\n", "strict: expected true or false"},
        {"warnings-as-errors = \"yes\"\n", "warnings-as-errors: expected true or false"},
        {"timeout = \"soon\"\n", "timeout: expected seconds, more than 0 and at most 1000000"},
        {"timeout = 0\n", "timeout: expected seconds, more than 0 and at most 1000000"},
        {"strict = true\ntimeout = 5\nstrict = true\n", "strict: given twice"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        const ProgramResult result = run(c.text);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err, place() + ": " + c.reason + '\n');
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
