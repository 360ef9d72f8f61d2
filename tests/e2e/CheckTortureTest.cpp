// Tests that `check` disturbs commands and finds the mistakes that show only then. Each add-on has one mistake. The
// twin has none and passes every test.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

class CheckTorture : public RunnerTest {
protected:
    /// `vexa-standin check ADDON --only TEST`, with a macro of the add-on's two commands.
    ProgramResult check(const std::string& addOn, const std::string& test,
                        const std::vector<std::string>& options = {}) const {
        return checkMacro("TORTURED WORK\nTORTURED SAY TEXT = 'it is good to be here'\n", addOn, test, options);
    }

    ProgramResult checkMacro(const std::string& macro, const std::string& addOn, const std::string& test,
                             const std::vector<std::string>& options = {}) const {
        write("m.macro", macro);
        // The test of an add-on with a mistake ends when it is found, which may take long on a busy machine.
        const char* const time = addOn == "twin" ? "1" : "60";
        Program program = runner({"check", fileOf(addOn), "--macro", "m.macro", "--only", test, "--seed", "1", "--time",
                                  time, "--timeout", timeoutFor(addOn)});
        program.arguments.insert(program.arguments.end(), options.begin(), options.end());
        return runProgram(program);
    }

    ProgramResult runShrunk(const std::string& addOn, const std::string& test) const {
        return runProgram(
            runner({"run", macroOf(test), "--addon", fileOf(addOn), "--strict", "--timeout", timeoutFor(addOn)}));
    }

    static std::string macroOf(const std::string& test) { return "vexa-standin-check-" + test + ".macro"; }

private:
    // Each hang takes so long.
    static const char* timeoutFor(const std::string& addOn) { return addOn == "quote-hang" ? "1" : "20"; }

    static std::string fileOf(const std::string& addOn) {
        return std::string(TORTURED_ADDONS) + "/tortured-" + addOn + ".so";
    }
};

// The test fails, names the case and the rule, and tells how to reproduce it.
void expectFailure(const ProgramResult& result, const std::string& test, const std::vector<std::string>& texts) {
    EXPECT_EQ(result.status, 1) << result.out << result.err;
    EXPECT_NE(result.out.find("  failed     " + test), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("reproduce: "), std::string::npos) << result.out;
    for (const std::string& text : texts)
        EXPECT_NE(result.out.find(text), std::string::npos) << text << '\n' << result.out;
}

void expectPassed(const ProgramResult& result, const std::string& test) {
    EXPECT_EQ(result.status, 0) << result.out << result.err;
    EXPECT_NE(result.out.find("  passed     " + test), std::string::npos) << result.out;
}

// ---- Calls of the host that fail

TEST_F(CheckTorture, PassesWhatStandsFailingCalls) {
    const ProgramResult result = check("twin", "host-call-fails");
    expectPassed(result, "host-call-fails");
    EXPECT_NE(result.out.find(" cases\n"), std::string::npos) << result.out;
}

TEST_F(CheckTorture, FindsWhatLeaksWhenACallFails) {
    expectFailure(check("append-leak", "host-call-fails"), "host-call-fails",
                  {"[leaked-arglist]", "TORTURED WORK (m.macro:1): call 1 of VexaUtilArgListAppend"});
}

TEST_F(CheckTorture, FindsTheLockThatStaysWhenThereIsNoStringForTheMessage) {
    expectFailure(check("string-lock", "host-call-fails"), "host-call-fails",
                  {"[unbalanced-lock]", "VexaUtilStringAlloc"});
}

TEST_F(CheckTorture, FindsItWithoutAMacroToo) {
    expectFailure(checkMacro("", "string-lock", "host-call-fails"), "host-call-fails",
                  {"[unbalanced-lock]", "call 1 of VexaUtilStringAlloc returns null"});
}

TEST_F(CheckTorture, WarnsOfACommandThatFailsSilently) {
    const ProgramResult result = check("silent", "host-call-fails");
    EXPECT_EQ(result.status, 0) << result.out;
    EXPECT_NE(result.out.find("  warned     host-call-fails"), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("[missing-errmsg]"), std::string::npos) << result.out;
}

// ---- The stop button

TEST_F(CheckTorture, PassesWhatCanBeStoppedAtEveryPercentage) {
    const ProgramResult result = check("twin", "stop-pressed");
    expectPassed(result, "stop-pressed");
    EXPECT_NE(result.out.find("5 cases\n"), std::string::npos) << result.out;
}

TEST_F(CheckTorture, FindsWhatRecordsNothingMoreOnceItWasStopped) {
    expectFailure(
        check("stop-recording", "stop-pressed"), "stop-pressed",
        {"after it, the same command has another result, although nothing disturbs it", "the user presses stop"});
}

TEST_F(CheckTorture, FindsTheStatusLineThatAStoppedCommandLeaves) {
    expectFailure(check("stop-status", "stop-pressed"), "stop-pressed", {"[unbalanced-status]"});
}

TEST_F(CheckTorture, SkipsTheStopButtonWhereNoProgressIsShown) {
    const ProgramResult result = checkMacro("TORTURED SAY TEXT = 'hello'\n", "twin", "stop-pressed");
    EXPECT_NE(result.out.find("  skipped    stop-pressed"), std::string::npos) << result.out;
}

// ---- Allocations that fail

TEST_F(CheckTorture, PassesWhatStandsWantOfMemory) {
    expectPassed(check("twin", "allocation-fails"), "allocation-fails");
}

TEST_F(CheckTorture, FindsSuccessThatIsNone) {
    expectFailure(check("memory-success", "allocation-fails"), "allocation-fails",
                  {"the command reports success, but did only a part of its work", "TORTURED SAY"});
}

TEST_F(CheckTorture, FindsWhatLeaksWithoutMemory) {
    expectFailure(check("memory-leak", "allocation-fails"), "allocation-fails", {"[leaked-set]", "allocation 1 "});
}

TEST_F(CheckTorture, FindsWantOfMemoryThatEscapes) {
    expectFailure(check("memory-escape", "allocation-fails"), "allocation-fails", {"[escaped-exception]"});
}

// ---- Damaged commands

TEST_F(CheckTorture, PassesWhatRefusesDamagedCommands) { expectPassed(check("twin", "mutated-text"), "mutated-text"); }

TEST_F(CheckTorture, MakesTheMacroOfACrashSmall) {
    const ProgramResult result = check("quote-crash", "mutated-text");
    EXPECT_EQ(result.status, 1) << result.out;
    EXPECT_NE(result.out.find("  crashed    mutated-text"), std::string::npos) << result.out;
    EXPECT_EQ(read(macroOf("mutated-text")), "TORTURED SAY TEXT = '\n");
    EXPECT_EQ(runShrunk("quote-crash", "mutated-text").status, 5);
}

TEST_F(CheckTorture, QuotesTheBeginningOfASmallMacroThatIsLong) {
    const ProgramResult result = check("long-crash", "mutated-text");
    const std::string head = "a smaller macro shows the same error:\n          ";
    const std::size_t begin = result.out.find(head);
    ASSERT_NE(begin, std::string::npos) << result.out;
    const std::string macro = read(macroOf("mutated-text"));
    const std::size_t quoted = begin + head.size();
    EXPECT_GT(macro.size(), 200U);
    EXPECT_EQ(result.out.substr(quoted, result.out.find('\n', quoted) - quoted), macro.substr(0, 200) + "...");
}

TEST_F(CheckTorture, MakesTheMacroOfAHangSmall) {
    const ProgramResult result = check("quote-hang", "mutated-text");
    EXPECT_EQ(result.status, 1) << result.out;
    EXPECT_NE(result.out.find("  timed out  mutated-text"), std::string::npos) << result.out;
    EXPECT_EQ(read(macroOf("mutated-text")), "TORTURED SAY TEXT = '\n");
    EXPECT_EQ(runShrunk("quote-hang", "mutated-text").status, 4);
}

TEST_F(CheckTorture, MakesTheMacroOfABreachSmall) {
    expectFailure(check("control-leak", "mutated-text"), "mutated-text", {"[leaked-string]"});
    const std::string macro = read(macroOf("mutated-text"));
    EXPECT_EQ(macro.size(), std::string("TORTURED SAY TEXT = '?'\n").size()) << macro;
    EXPECT_EQ(runShrunk("control-leak", "mutated-text").status, 3);
}

TEST_F(CheckTorture, FindsARecordingThatCannotBePlayedBack) {
    expectFailure(check("unescaped", "mutated-text"), "mutated-text", {"[recording-not-replayable]"});
    EXPECT_EQ(read(macroOf("mutated-text")), "TORTURED SAY TEXT = ''''\n");
}

TEST_F(CheckTorture, DamagesNothingInTheFolder) {
    check("twin", "mutated-text");
    EXPECT_EQ(fileNames(), std::vector<std::string>{"m.macro"});
}

TEST_F(CheckTorture, FindsTheSameAgainWithTheSameSeed) {
    const std::string macro = "TORTURED SAY TEXT = 'it is good'\n";
    const auto firstLines = [](const ProgramResult& result) {
        return result.out.substr(result.out.find("tried: "), 80);
    };
    const ProgramResult first = checkMacro(macro, "unescaped", "mutated-text");
    expectFailure(first, "mutated-text", {"tried: "});
    EXPECT_EQ(firstLines(first), firstLines(checkMacro(macro, "unescaped", "mutated-text")));
}

}  // namespace
}  // namespace vexa::e2e
