#include <sstream>

#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

std::size_t countOf(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
    return count;
}

bool holds(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

class Strict : public RunnerTest {
protected:
    /// Runs \p macro with the add-on that breaks a rule with each command.
    ProgramResult run(const std::string& macro, const std::vector<std::string>& options = {}) const {
        write("m.macro", macro);
        Program program = runner({"run", "m.macro", "--addon", ADDON_MISBEHAVING});
        program.arguments.insert(program.arguments.end(), options.begin(), options.end());
        return runProgram(program);
    }

    struct RuleLine {
        std::string name;
        bool isError;
    };

    std::vector<RuleLine> rules() const {
        std::istringstream list(runProgram(runner({"explain"})).out);
        std::vector<RuleLine> rules;
        for (std::string line; std::getline(list, line);) {
            std::istringstream words(line);
            std::string name;
            std::string severity;
            if (line.rfind("  ", 0) == 0 && words >> name >> severity) rules.push_back({name, severity == "error"});
        }
        return rules;
    }
};

TEST_F(Strict, FailsForEachRuleThatIsBrokenAndNotForItsTwin) {
    const std::vector<RuleLine> all = rules();
    ASSERT_GT(all.size(), 30U);
    for (const RuleLine& rule : all) {
        if (rule.name == "command-timeout") continue;  // ends with a status of its own
        SCOPED_TRACE(rule.name);
        const ProgramResult broken = run("MISBEHAVING " + rule.name + '\n', {"--strict", "--warnings-as-errors"});
        EXPECT_EQ(broken.status, 3);
        EXPECT_EQ(countOf(broken.err, " [" + rule.name + "]\n"), 1U) << broken.err;
        EXPECT_EQ(countOf(broken.err, "    hint:"), 1U) << broken.err;
        const ProgramResult kept = run("MISBEHAVING " + rule.name + "-twin\n", {"--strict", "--warnings-as-errors"});
        EXPECT_NE(kept.status, 3);
        EXPECT_EQ(countOf(kept.err, "    hint:"), 0U) << kept.err;
    }
}

TEST_F(Strict, ShowsWhatWhereAndHowToMendIt) {
    const ProgramResult result = run("# none\nMISBEHAVING unbalanced-lock\n", {"--strict"});
    EXPECT_EQ(withoutSources(result.err),
              "m.macro:2: MISBEHAVING: error: VexaUtilLockStart has no matching VexaUtilLockFinish in the command "
              "[unbalanced-lock]\n"
              "    first: call 1, VexaUtilLockStart, in \"MISBEHAVING unbalanced-lock\", m.macro:2, thread 1\n"
              "    seen:  the end of \"MISBEHAVING unbalanced-lock\", m.macro:2, thread 1\n"
              "    hint:  Use an AddOnIdLock. It releases the lock on every return and on every exception.\n"
              "    debug: vexa-standin debug m.macro --addon " ADDON_MISBEHAVING " --strict --rule unbalanced-lock\n");
}

TEST_F(Strict, IsNeededForFindingsToCount) {
    const ProgramResult result = run("MISBEHAVING unbalanced-lock\n");
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(holds(result.err, "[unbalanced-lock]")) << result.err;
}

TEST_F(Strict, RunsTheMacroToItsEnd) {
    write("m.macro", "MISBEHAVING unbalanced-lock\nONE ECHO on\n");
    const ProgramResult result =
        runProgram(runner({"run", "m.macro", "--addon", ADDON_MISBEHAVING, "--addon", ADDON_ONE, "--strict"}));
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.out, "on\n");
}

TEST_F(Strict, GoesBeforeAFailedCommand) {
    EXPECT_EQ(run("MISBEHAVING foreign-errmsg\n").status, 1);
    EXPECT_EQ(run("MISBEHAVING foreign-errmsg\n", {"--strict"}).status, 3);
}

TEST_F(Strict, ForgivesWarnings) { EXPECT_EQ(run("MISBEHAVING percent-backwards\n", {"--strict"}).status, 0); }

TEST_F(Strict, TakesWarningsForErrorsWhenAsked) {
    EXPECT_EQ(run("MISBEHAVING percent-backwards\n", {"--strict", "--warnings-as-errors"}).status, 3);
    EXPECT_EQ(run("MISBEHAVING percent-backwards\n", {"--warnings-as-errors"}).status, 3);
    EXPECT_EQ(run("MISBEHAVING percent-backwards\n", {"--warnings-as-errors", "--no-strict"}).status, 0);
}

TEST_F(Strict, SeesLeaksOfTheAddOn) {
    const ProgramResult result = run("MISBEHAVING leaked-set\n", {"--strict"});
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.err.rfind("MISBEHAVING: error: ", 0), 0U) << result.err;
    EXPECT_TRUE(holds(result.err, "in \"MISBEHAVING leaked-set\", m.macro:1")) << result.err;
}

TEST_F(Strict, SeesAnExceptionAtShutdown) {
    const ProgramResult result = run("MISBEHAVING escaped-exception-shutdown\n", {"--strict"});
    EXPECT_EQ(result.status, 3);
    EXPECT_TRUE(holds(result.err, "escaped from its shutdown: busy [escaped-exception]\n")) << result.err;
}

TEST_F(Strict, CountsWhatItDoesNotShow) {
    std::string macro;
    for (int i = 0; i != 25; ++i) macro += "MISBEHAVING null-handle\n";
    const ProgramResult result = run(macro, {"--strict"});
    EXPECT_EQ(countOf(result.err, "[null-handle]\n    "), 10U) << result.err;
    EXPECT_TRUE(holds(result.err, "\nMISBEHAVING: and 15 more [null-handle]\n")) << result.err;
}

// ---- Suppression

using Suppression = Strict;

TEST_F(Suppression, LetsBreachesOfARulePass) {
    const ProgramResult result = run("MISBEHAVING unbalanced-lock\nMISBEHAVING leaked-set\n",
                                     {"--strict", "--suppress", "unbalanced-lock", "--suppress", "leaked-set"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
}

TEST_F(Suppression, LeavesOtherRules) {
    EXPECT_EQ(run("MISBEHAVING unbalanced-lock\n", {"--strict", "--suppress", "leaked-set"}).status, 3);
}

TEST_F(Suppression, IsToldWhenItIsNotNeeded) {
    const ProgramResult result = run("MISBEHAVING unbalanced-lock-twin\n", {"--suppress", "unbalanced-lock"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "vexa-standin: warning: unbalanced-lock is suppressed, but was not broken\n");
}

TEST_F(Suppression, RefusesARuleThereIsNot) {
    const ProgramResult result = run("MISBEHAVING unbalanced-lock\n", {"--suppress", "unbalanced-lok"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err,
              "vexa-standin: --suppress: there is no rule \"unbalanced-lok\"; is unbalanced-lock meant?\n"
              "run 'vexa-standin run --help' for the usage\n");
}

// ---- Replay

using Replay = Strict;

TEST_F(Replay, RefusesACommandThatFails) {
    const ProgramResult result = run("MISBEHAVING recording-not-replayable\n", {"--strict"});
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(
        result.err,
        "m.macro:1: MISBEHAVING: error: the recorded command \"MISBEHAVING no-such-command\", when it is run again, "
        "fails: unknown command [recording-not-replayable]\n"
        "    first: call 1, VexaUtilMacroRecordExtCommand, in \"MISBEHAVING recording-not-replayable\", m.macro:1, "
        "thread 1\n"
        "    seen:  the end of \"MISBEHAVING no-such-command\", m.macro:1\n"
        "    hint:  Record the text that MacroCommandAbstract::toString() returns, or write all options yourself, "
        "quoted as the command reads them.\n"
        "    debug: vexa-standin debug m.macro --addon " ADDON_MISBEHAVING
        " --strict --rule recording-not-replayable\n");
}

TEST_F(Replay, RefusesACommandThatRecordsSomethingElse) {
    struct Case {
        const char* why;
        const char* command;
        const char* part;
    };
    const Case cases[] = {
        {"nothing", "RECORD ECHO a", "when it is run again, records nothing ["},
        {"another text", "RECORD RECORD SAY a", "when it is run again, records \"ONE SAY a\" ["},
        {"an unknown add-on", "RECORDFOR OTHER SAY a",
         "when it is run again, needs the add-on OTHER, which is not loaded ["},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        const ProgramResult result = runMacro("ONE " + std::string(c.command) + '\n', {"--strict"});
        EXPECT_EQ(result.status, 3);
        EXPECT_TRUE(holds(result.err, c.part)) << result.err;
    }
}

TEST_F(Replay, IsSilentAndLeavesTheRecordingAsItWas) {
    const ProgramResult result = runMacro("ONE SAY a\nONE DIALOG b\nONE SAY c\n", {"--strict", "--record", "r.macro"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "a\nc\n");
    EXPECT_EQ(result.err, "m.macro:2: ONE: dialog: b\n");
    EXPECT_EQ(commandsOf(read("r.macro")), "ONE SAY a\nONE SAY c\n");
}

TEST_F(Replay, BeginsInANewSession) { EXPECT_EQ(runMacro("ONE ONCE\n", {"--strict"}).err, ""); }

TEST_F(Replay, HasTheStyleOfTheRunThoughItCameThroughAPipe) {
    write("m.macro", "ONE RECORDSTYLE FRAME SIZE\n");
    write("s.json", R"({"FRAME": {"SIZE": 2.5}})");
    const std::string command =
        "cat s.json | " VEXA_STANDIN " run m.macro --strict --style /dev/stdin --addon " ADDON_ONE;
    const ProgramResult result = runProgram({{"sh", "-c", command}, folder(), "", false});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, "");
}

TEST_F(Replay, IsLeftOutUnlessItIsStrict) {
    EXPECT_EQ(run("MISBEHAVING recording-not-replayable\n", {"--record", "r.macro"}).err, "");
}

TEST_F(Replay, TakesWhatAFailedRunRecordedToo) {
    const ProgramResult result = run("MISBEHAVING recording-not-replayable\nMISBEHAVING no-such\n", {"--strict"});
    EXPECT_EQ(result.status, 3);
    EXPECT_TRUE(holds(result.err, "[recording-not-replayable]")) << result.err;
}

}  // namespace
}  // namespace vexa::e2e
