#include <signal.h>
#include <sys/types.h>

#include <chrono>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "CheckRunnerTest.h"

namespace vexa::e2e {
namespace {

using Check = CheckRunnerTest;

constexpr bool kIsSanitized = VEXA_IS_SANITIZED;

// Whether a process ends that was killed. Who it is left to may be slow to take notice, so one that is dead will do.
bool isGoneSoon(pid_t process) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    std::string state;
    do {
        std::ifstream file("/proc/" + std::to_string(process) + "/stat");
        std::string id;
        std::string name;
        state = "gone";
        file >> id >> name >> state;
        if (state == "gone" || state == "Z") return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    } while (std::chrono::steady_clock::now() < end);
    return false;
}

// ---- The command

TEST_F(Check, PassesAnAddOnThatIsWell) {
    write("m.macro", "ROGUE nothing\nROGUE nothing\n");
    const ProgramResult result = check("rogue", {"--macro", "m.macro", "--level", "1"});
    EXPECT_EQ(result.status, 0) << result.out;
    EXPECT_TRUE(cameOut(result, "load", "passed")) << result.out;
    EXPECT_TRUE(cameOut(result, "binary-hygiene", "passed")) << result.out;
    EXPECT_TRUE(cameOut(result, "load-unload", "passed")) << result.out;
    EXPECT_TRUE(cameOut(result, "commands-in-order", "passed")) << result.out;
    EXPECT_TRUE(cameOut(result, "commands-alone", "passed")) << result.out;
    EXPECT_TRUE(has(result, "\ncheck passed: 5 passed\n")) << result.out;
    EXPECT_EQ(result.err, "");
}

TEST_F(Check, NamesTheSeedFirst) {
    const ProgramResult result = check("built", {"--only", "load", "--seed", "4711"});
    EXPECT_EQ(result.out.substr(0, result.out.find('\n')), "checking " CHECK_ADDONS "/built.so, level 2, seed 4711");
}

TEST_F(Check, TakesAnotherSeedEachTimeWithoutOne) {
    const auto seed = [&] {
        const std::string out = check("built", {"--only", "load"}).out;
        return out.substr(0, out.find('\n'));
    };
    EXPECT_NE(seed(), seed());
}

TEST_F(Check, RunsTheTestsOfTheLevelOnly) {
    EXPECT_FALSE(has(check("built", {"--level", "1"}), "batch-mode"));
    EXPECT_TRUE(has(check("built", {"--level", "2"}), "batch-mode"));
}

TEST_F(Check, SkipsTheTestsOfCommandsWithoutAMacro) {
    const ProgramResult result = check("built", {"--only", "commands-alone"});
    EXPECT_EQ(result.status, 0) << result.out;
    EXPECT_TRUE(cameOut(result, "commands-alone", "skipped")) << result.out;
    EXPECT_TRUE(has(result, "no macro was given")) << result.out;
}

TEST_F(Check, ExplainsItsTests) {
    const ProgramResult result = runProgram(runner({"check", "--list"}));
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(has(result, "load-unload (level 1)\n    Fifty times loaded and unloaded")) << result.out;
    EXPECT_TRUE(has(result, "record-replay (level 2)\n")) << result.out;
}

TEST_F(Check, RefusesWrongUsageAndInput) {
    write("wrong.macro", "OTHER command\n");
    write("style.json", "{");
    struct Case {
        const char* why;
        std::vector<std::string> options;
        const char* err;
    };
    const std::string addOn = CHECK_ADDONS "/built.so";
    const Case cases[] = {
        {"no file", {}, "FILE.so is required"},
        {"a missing file", {"gone.so"}, "gone.so: no such file"},
        {"a folder", {"."}, ".: it is a folder, not an add-on"},
        {"an unknown test", {addOn, "--only", "frob"}, "there is no test \"frob\""},
        {"an unknown rule", {addOn, "--suppress", "frob"}, "there is no rule \"frob\""},
        {"a level there is none of", {addOn, "--level", "4"}, "--level"},
        {"a missing macro", {addOn, "--macro", "gone.macro"}, "gone.macro: cannot be read"},
        {"a macro for another add-on", {addOn, "--macro", "wrong.macro"}, "wrong.macro:1: no add-on 'OTHER' is loaded"},
        {"a wrong style file", {addOn, "--style", "style.json"}, "style.json:1:1"},
        {"one file for two reports",
         {addOn, "--json", "r", "--sarif", "./r"},
         "./r: cannot be written: the command also uses it as r"},
        {"a report that cannot be written",
         {addOn, "--json", "gone/report.json"},
         "gone/report.json: cannot be written"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        std::vector<std::string> arguments = c.options;
        arguments.insert(arguments.begin(), "check");
        const ProgramResult result = runProgram(runner(arguments));
        EXPECT_EQ(result.status, 2);
        EXPECT_NE(result.err.find(c.err), std::string::npos) << result.err;
    }
}

TEST_F(Check, LoadsFurtherAddOns) {
    const ProgramResult result =
        checkMacro("built", "BUILT x\nROGUE nothing\n", "commands-in-order", {"--addon", CHECK_ADDONS "/rogue.so"});
    EXPECT_EQ(result.status, 0) << result.out << result.err;
}

TEST_F(Check, RunsInItsOwnProcessWhenAsked) {
    const ProgramResult well = checkMacro("rogue", "ROGUE nothing\n", "commands-in-order", {"--in-process"});
    EXPECT_EQ(well.status, 0) << well.out;
    const ProgramResult crash = checkMacro("rogue", "ROGUE kill\n", "commands-in-order", {"--in-process"});
    EXPECT_EQ(crash.status, -SIGKILL) << crash.out;
}

// ---- What takes a process down

TEST_F(Check, SurvivesACrashAndTellsOfIt) {
    const ProgramResult result = checkMacro("rogue", "ROGUE nothing\nROGUE abort\n", "commands-in-order");
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(cameOut(result, "commands-in-order", "crashed")) << result.out;
    EXPECT_TRUE(has(result, "SIGABRT")) << result.out;
    EXPECT_TRUE(has(result, "during: ROGUE abort (m.macro:2)")) << result.out;
    EXPECT_TRUE(has(result, "last host call: 1, VexaUtilMacroIsBatchModeActive()")) << result.out;
    EXPECT_TRUE(has(result, "check failed: 1 passed, 1 crashed")) << result.out;
}

TEST_F(Check, NamesACommandThatShowsACrash) {
    const ProgramResult result = checkMacro("rogue", "ROGUE nothing\nROGUE abort\n", "commands-in-order");
    EXPECT_EQ(read("vexa-standin-check-commands-in-order.macro"), "ROGUE nothing\nROGUE abort\n");
    EXPECT_EQ(reproduced(result).status, 5) << result.out;
}

TEST_F(Check, WritesTheMacroThatShowsAFailureWhereAsked) {
    std::filesystem::create_directory(folder() / "out put");
    const ProgramResult result = checkMacro("rogue", "ROGUE abort\n", "commands-in-order", {"-o", "out put"});
    EXPECT_TRUE(exists("out put/vexa-standin-check-commands-in-order.macro"));
    EXPECT_EQ(reproduced(result).status, 5) << result.out;
}

TEST_F(Check, TellsOfEveryWayToEndTheProcess) {
    struct Case {
        const char* why;
        const char* command;
        const char* out;
    };
    const Case cases[] = {
        {"a signal that cannot be caught", "kill", "SIGKILL"},
        {"an exception on a thread", "terminate", "SIGABRT"},
        {"exit() as if all were well", "exit", "the add-on ended the process, with status 0"},
        {"_exit()", "exit-at-once", "the add-on ended the process, with status 3"},
        {"nobody can be told the outcome", "close-all", "its outcome could not be reported"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        const ProgramResult result = checkMacro("rogue", std::string("ROGUE ") + c.command + '\n', "commands-in-order");
        EXPECT_EQ(result.status, 1);
        EXPECT_TRUE(cameOut(result, "commands-in-order", "crashed")) << result.out;
        EXPECT_TRUE(has(result, c.out)) << result.out;
    }
}

TEST_F(Check, EndsACommandThatDoesNotReturn) {
    for (const char* command : {"hang", "hang-and-ignore"}) {
        SCOPED_TRACE(command);
        const std::string macro = std::string("ROGUE ") + command + '\n';
        const ProgramResult result = checkMacro("rogue", macro, "commands-in-order", {"--timeout", "2"});
        EXPECT_EQ(result.status, 1);
        EXPECT_TRUE(cameOut(result, "commands-in-order", "timed out")) << result.out;
        EXPECT_TRUE(has(result, "the add-on did not return within 2 seconds")) << result.out;
        EXPECT_TRUE(has(result, "during: ROGUE " + std::string(command))) << result.out;
    }
}

TEST_F(Check, LimitsTheMemory) {
    if (kIsSanitized) GTEST_SKIP() << "sanitizers reserve more addresses than any limit allows";
    const ProgramResult result = checkMacro("rogue", "ROGUE memory\n", "commands-in-order");
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(has(result, "the process ran out of memory")) << result.out;
}

TEST_F(Check, EndsTheProcessesThatAnAddOnLeaves) {
    const ProgramResult result = checkMacro("rogue", "ROGUE leave-process\n", "commands-in-order");
    EXPECT_EQ(result.status, 0) << result.out;
    const pid_t left = std::stoi(read("left-process"));
    EXPECT_TRUE(isGoneSoon(left));
}

TEST_F(Check, DoesNotWaitForAThreadThatAnAddOnLeaves) {
    const ProgramResult result = checkMacro("rogue", "ROGUE leave-thread\n", "commands-in-order");
    // The thread goes on in code that is unloaded; whether that happens in time is chance.
    const bool isOver =
        cameOut(result, "commands-in-order", "passed") || cameOut(result, "commands-in-order", "crashed");
    EXPECT_TRUE(isOver) << result.out;
}

TEST_F(Check, ShowsTheLastThatACrashedAddOnPrinted) {
    const ProgramResult result = checkMacro("rogue", "ROGUE print\n", "commands-in-order");
    EXPECT_TRUE(has(result, "the last output:\n")) << result.out;
    EXPECT_TRUE(has(result, "line 100000\n")) << result.out;
    EXPECT_FALSE(has(result, "line 9000\n")) << result.out;
}

TEST_F(Check, GivesAnAddOnNothingToRead) {
    write("m.macro", "ROGUE read\n");
    Program program = runner({"check", CHECK_ADDONS "/rogue.so", "--macro", "m.macro", "--only", "commands-in-order"});
    program.input = "not for the add-on\n";
    EXPECT_EQ(runProgram(program).status, 0);
}

TEST_F(Check, SeesItsProcessesEndWhoeverStartedIt) {
    const Program check = runner({"check", CHECK_ADDONS "/built.so", "--only", "load"});
    EXPECT_EQ(runProgram(withoutChildSignals(check)).status, 0);
}

// ---- Loading, and what the file is made of

TEST_F(Check, TellsOfAnAddOnThatCannotBeLoaded) {
    const ProgramResult result = check("refuse", {"--level", "1"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(cameOut(result, "load", "failed")) << result.out;
    EXPECT_TRUE(has(result, "it refuses to be loaded")) << result.out;
    EXPECT_TRUE(cameOut(result, "load-unload", "skipped")) << result.out;
    EXPECT_TRUE(has(result, "the add-on cannot be loaded")) << result.out;
}

TEST_F(Check, DoesNotPassByATestThatWasSkippedForWantOfLoading) {
    EXPECT_EQ(check("refuse", {"--only", "batch-mode"}).status, 1);
}

TEST_F(Check, SurvivesACrashWhileLoading) {
    const ProgramResult result = check("abort", {"--level", "1"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(cameOut(result, "load", "crashed")) << result.out;
    EXPECT_TRUE(has(result, "during: loading of " CHECK_ADDONS "/abort.so")) << result.out;
}

TEST_F(Check, TellsWhatTheFileIsMadeOf) {
    struct Case {
        const char* addOn;
        const char* outcome;
        const char* out;
    };
    const Case cases[] = {
        {"built", "passed", ""},
        {"more-exports", "failed",
         "it exports more than vexaAddOn; other add-ons may use these symbols by accident: helperOf"},
        {"weak-export", "warned", "weakHelper"},
        {"run-path", "warned", "it looks for libraries in /opt/nowhere/lib"},
        {"origin-run-path", "passed", ""},
        {"relative-run-path", "failed", "it looks for libraries in \"lib\""},
        {"empty-run-path", "failed", "it looks for libraries in \"\""},
        {"hosts-run-path", "passed", ""},
        {"padded-run-path", "passed", ""},
        {"exec-stack", "failed", "it makes the stack of the whole host executable"},
        {"text-relocation", "failed", "text relocations"},
        {"unresolved", "failed", "no library has VexaUtilOfAnotherHost: the host has no such function"},
        {"unresolved", "failed", "no library has vexa::ofAnotherLibrary(): link the version of vexa::vexautilutil"},
        {"library-gone", "failed", "the library libvexa-gone.so, which it needs, was not found"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.addOn);
        const ProgramResult result = check(c.addOn, {"--only", "binary-hygiene"});
        EXPECT_TRUE(cameOut(result, "binary-hygiene", c.outcome)) << result.out;
        EXPECT_TRUE(has(result, c.out)) << result.out;
    }
}

TEST_F(Check, TellsWhyAFileIsNoAddOn) {
    struct Case {
        const char* why;
        std::string content;
        const char* out;
    };
    std::ifstream built(CHECK_ADDONS "/built.so", std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(built)), {});
    const auto with = [&](std::size_t at, char byte) { return std::string(bytes).replace(at, 1, 1, byte); };
    const Case cases[] = {
        {"a text", "no library", "it is not a shared object"},
        {"nothing", "", "it is not a shared object"},
        {"cut off", bytes.substr(0, 40), "it is not a shared object"},
        {"another processor", with(18, '\x08'), "it is built for processors of ELF machine 8"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        write("file.so", c.content);
        const ProgramResult result = runProgram(runner({"check", "./file.so", "--only", "binary-hygiene"}));
        EXPECT_EQ(result.status, 1);
        EXPECT_TRUE(cameOut(result, "binary-hygiene", "failed")) << result.out;
        EXPECT_TRUE(has(result, c.out)) << result.out;
    }
}

TEST_F(Check, TellsWhatStaysBehindAfterUnloading) {
    struct Case {
        const char* addOn;
        const char* out;
    };
    const Case cases[] = {
        {"nodelete", "its file is still mapped after it was unloaded"},
        {"nodelete", "seen in the file: it is linked with -z nodelete"},
        {"unique", "seen in the file: the whole process shares its sharedByAll"},
        {"thread-local", "seen in the file: it has thread_local objects with destructors"},
        {"thread", "a thread of the add-on still runs after the shutdown"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.addOn);
        const ProgramResult result = check(c.addOn, {"--only", "load-unload"});
        EXPECT_EQ(result.status, 1);
        EXPECT_TRUE(cameOut(result, "load-unload", "failed")) << result.out;
        EXPECT_TRUE(has(result, c.out)) << result.out;
    }
}

TEST_F(Check, TellsOfMemoryThatIsLost) {
    if (kIsSanitized) GTEST_SKIP() << "sanitizers count memory themselves";
    const ProgramResult result = check("leak", {"--only", "load-unload"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(has(result, "bytes of memory are lost each time")) << result.out;
}

// ---- The commands, and the modes of the host

TEST_F(Check, LetsACommandFailThatHasToComeAfterAnother) {
    const std::string macro = "MOODY begin\nMOODY go-on\n";
    EXPECT_EQ(checkMacro("moody", macro, "commands-alone").status, 0);
    EXPECT_EQ(checkMacro("moody", macro, "commands-random-order").status, 0);
}

TEST_F(Check, FailsWhenAMacroDoes) {
    const ProgramResult result = checkMacro("moody", "MOODY go-on\n", "commands-in-order");
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(has(result, "m.macro:1: the command failed: MOODY go-on\n      its message: begin first"))
        << result.out;
    EXPECT_EQ(reproduced(result).status, 1);
}

TEST_F(Check, RunsCommandsFromASecondAddOn) {
    const std::string macro = "MOODY begin\nMOODY go-on\n";
    EXPECT_EQ(checkMacro("moody", macro, "commands-from-second-add-on").status, 0);
    const ProgramResult result = checkMacro("rogue", "ROGUE abort\n", "commands-from-second-add-on");
    EXPECT_TRUE(cameOut(result, "commands-from-second-add-on", "crashed")) << result.out;
    EXPECT_TRUE(has(result, "during: ROGUE abort\n")) << result.out;
}

TEST_F(Check, RunsTheMacrosInEveryModeOfTheHost) {
    struct Case {
        const char* test;
        const char* command;
    };
    const Case cases[] = {
        {"batch-mode", "no-batch"},
        {"recording-on", "no-recording"},
        {"journal-playback", "no-journal"},
        {"layout-playback", "no-layout"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.test);
        const std::string macro = std::string("MOODY begin\nMOODY ") + c.command + '\n';
        const ProgramResult result = checkMacro("moody", macro, c.test);
        EXPECT_TRUE(cameOut(result, c.test, "failed")) << result.out;
        EXPECT_EQ(reproduced(result).status, 1);
        EXPECT_EQ(checkMacro("moody", macro, "commands-in-order").status, 0);
    }
}

TEST_F(Check, WarnsOfADialogInBatchMode) {
    EXPECT_TRUE(cameOut(checkMacro("moody", "MOODY dialog\n", "batch-mode"), "batch-mode", "warned"));
    EXPECT_EQ(checkMacro("moody", "MOODY dialog\n", "batch-mode").status, 0);
    EXPECT_EQ(checkMacro("moody", "MOODY dialog\n", "batch-mode", {"--warnings-as-errors"}).status, 1);
}

TEST_F(Check, PlaysBackWhatIsRecorded) {
    struct Case {
        const char* command;
        const char* outcome;
        const char* out;
    };
    const Case cases[] = {
        {"record-same", "passed", ""},
        {"begin", "skipped", "nothing is recorded"},
        {"record-more", "failed", "first: nothing\n      then:  MOODY record-more"},
        {"record-other", "failed", "first: MOODY record-otherx\n"},
        {"record-wrong", "failed", "the command failed: MOODY no-such-command"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.command);
        const ProgramResult result = checkMacro("moody", std::string("MOODY ") + c.command + '\n', "record-replay");
        EXPECT_TRUE(cameOut(result, "record-replay", c.outcome)) << result.out;
        EXPECT_TRUE(has(result, c.out)) << result.out;
    }
}

std::size_t countOf(const std::string& part, const std::string& text) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) ++count;
    return count;
}

TEST_F(Check, TellsACauseOnceWithOneCommandThatShowsIt) {
    write("m.macro", "MISBEHAVING unbalanced-lock\n");
    const ProgramResult result = runProgram(
        runner({"check", ADDON_MISBEHAVING, "--macro", "m.macro", "--suppress", "unbalanced-status", "--level", "2"}));
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(cameOut(result, "stop-pressed", "failed")) << result.out;
    EXPECT_EQ(countOf("hint:  Use an AddOnIdLock", result.out), 1U) << result.out;
    EXPECT_EQ(countOf("reproduce: vexa-standin run", result.out), 1U) << result.out;
    EXPECT_EQ(countOf("\n      as above (commands-in-order)\n", result.out), 11U) << result.out;
    EXPECT_TRUE(has(result,
                    "12 tests have the same cause, first seen in commands-in-order: m.macro:1: MISBEHAVING: error: "
                    "VexaUtilLockStart has no matching VexaUtilLockFinish"))
        << result.out;
}

}  // namespace
}  // namespace vexa::e2e
