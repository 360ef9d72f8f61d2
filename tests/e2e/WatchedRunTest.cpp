// Tests every command that runs add-ons with add-ons that end or stop their process, flood its output, or start
// processes that outlive it.

#include <signal.h>
#include <sys/stat.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

using nlohmann::json;

class WatchedRun : public RunnerTest {
protected:
    WatchedRun() {
        write("m.macro", "");
        std::filesystem::create_directory(folder() / "t");
    }

    /// `vexa-standin run m.macro --addon ENDING OPTIONS`, where m.macro holds \p macro.
    ProgramResult run(const std::string& macro, const std::vector<std::string>& options = {},
                      const std::string& addOn = ADDON_ENDING) const {
        write("m.macro", macro);
        Program program = runner({"run", "m.macro", "--addon", addOn});
        program.arguments.insert(program.arguments.end(), options.begin(), options.end());
        return runProgram(program);
    }
    ProgramResult runMany(const std::string& macro) const {
        write("m.macro", macro);
        write("other.macro", "ENDING nothing\n");
        return runProgram(runner({"run", "m.macro", "other.macro", "--addon", ADDON_ENDING, "--json", "many.jsonl"}));
    }
    ProgramResult test(const std::string& macro, const std::vector<std::string>& options = {}) const {
        write("t/m.macro", macro);
        Program program = runner({"test", "t", "--addon", ADDON_ENDING});
        program.arguments.insert(program.arguments.end(), options.begin(), options.end());
        return runProgram(program);
    }
    ProgramResult check(const std::string& macro, const std::vector<std::string>& options = {}) const {
        write("m.macro", macro);
        Program program =
            runner({"check", ADDON_ENDING, "--macro", "m.macro", "--only", "commands-in-order", "-o", "t"});
        program.arguments.insert(program.arguments.end(), options.begin(), options.end());
        return runProgram(program);
    }

    json lastResult(const std::string& file) const {
        const std::string text = read(file);
        const std::size_t end = text.find_last_not_of('\n');
        return json::parse(text.substr(text.rfind('\n', end) + 1));
    }

    std::vector<std::string> hiddenFiles() const {
        std::vector<std::string> names = fileNames();
        names.erase(std::remove_if(names.begin(), names.end(), [](const auto& name) { return name[0] != '.'; }),
                    names.end());
        return names;
    }

    bool isAlive(const std::string& fileOfItsNumber) const {
        const pid_t process = std::stoi(read(fileOfItsNumber));
        return kill(process, 0) == 0;
    }
};

struct Death {
    const char* way;
    const char* how;
};

// What ends the process in the middle of a command.
const Death kDeaths[] = {
    {"exit0", "exit status 0"},         {"exit3", "exit status 3"},
    {"_exit0", "exit status 0"},        {"_exit3", "exit status 3"},
    {"quick_exit0", "exit status 0"},   {"abort", "SIGABRT (Aborted)"},
    {"terminate", "SIGABRT (Aborted)"}, {"segv", "SIGSEGV (Segmentation fault)"},
    {"kill", "SIGKILL (Killed)"},       {"term", "SIGTERM (Terminated)"},
    {"pipe", "SIGPIPE (Broken pipe)"},  {"kill-group", "SIGKILL (Killed)"},
    {"exec-true", "exit status 0"},     {"copy-goes-on", "exit status 0"},
};

// Sanitizers answer some signals themselves.
bool isOthers(const std::string& way) { return VEXA_IS_SANITIZED && (way == "segv" || way == "abort"); }

std::string deathLine(const std::string& work, const std::string& how) {
    return "m.macro:2: ENDING: error: \"ENDING " + work + "\" ended the process: " + how +
           "; its last host call was VexaUtilMacroIsBatchModeActive\n";
}

TEST_F(WatchedRun, TellsWhatEndedItsProcess) {
    for (const Death& death : kDeaths) {
        if (isOthers(death.way)) continue;
        SCOPED_TRACE(death.way);
        const ProgramResult result = run("ENDING nothing\nENDING " + std::string(death.way) + "\nENDING nothing\n");
        EXPECT_EQ(result.status, 5);
        EXPECT_EQ(withoutDebugLines(withoutStack(result.err)), deathLine(death.way, death.how));
    }
}

TEST_F(WatchedRun, IsNoBreachOfTheContractWhenItsProcessEnds) {
    for (const Death& death : kDeaths) {
        if (isOthers(death.way)) continue;
        SCOPED_TRACE(death.way);
        EXPECT_EQ(run("ENDING nothing\nENDING " + std::string(death.way) + '\n', {"--strict"}).status, 5);
    }
}

TEST_F(WatchedRun, HasTheEndOfItsResultsWhenItsProcessEnds) {
    for (const Death& death : kDeaths) {
        if (isOthers(death.way)) continue;
        SCOPED_TRACE(death.way);
        EXPECT_EQ(run("ENDING nothing\nENDING " + std::string(death.way) + '\n', {"--json", "r.jsonl"}).status, 5);
        const json end = lastResult("r.jsonl");
        EXPECT_EQ(end.at("macroFile"), "m.macro");
        EXPECT_EQ(end.at("exitStatus"), 5);
        EXPECT_EQ(end.at("error"), "the process ended: " + std::string(death.how));
        EXPECT_NE(read("r.jsonl").find("\"command\":\"" + std::string(death.way) + "\",\"accepted\":false"),
                  std::string::npos);
    }
}

TEST_F(WatchedRun, KeepsTheRecordingWhenItsProcessEnds) {
    for (const Death& death : kDeaths) {
        if (isOthers(death.way)) continue;
        SCOPED_TRACE(death.way);
        const std::string way = death.way;
        EXPECT_EQ(run("ENDING record nothing\nENDING record " + way + '\n', {"--record", "r.macro"}).status, 5);
        EXPECT_EQ(commandsOf(read("r.macro")), "ENDING nothing\nENDING nothing\n") << "what it recorded itself, too";
        EXPECT_EQ(hiddenFiles(), std::vector<std::string>());
    }
}

TEST_F(WatchedRun, OfManyFailsWhenItsProcessEnds) {
    for (const Death& death : kDeaths) {
        if (isOthers(death.way)) continue;
        SCOPED_TRACE(death.way);
        const ProgramResult result = runMany("ENDING nothing\nENDING " + std::string(death.way) + '\n');
        EXPECT_EQ(result.status, 5);
        EXPECT_EQ(withoutDebugLines(withoutStack(result.err)), deathLine(death.way, death.how) +
                                                                   "vexa-standin: 2 macro files run, 1 failed\n"
                                                                   "    m.macro: an add-on ended its process\n");
        EXPECT_NE(read("many.jsonl").find("{\"macroFile\":\"m.macro\",\"exitStatus\":5,"), std::string::npos);
        EXPECT_EQ(lastResult("many.jsonl").at("macroFile"), "other.macro");
    }
}

TEST_F(WatchedRun, FailsATestOfMacrosWhenItsProcessEnds) {
    for (const Death& death : kDeaths) {
        if (isOthers(death.way)) continue;
        SCOPED_TRACE(death.way);
        const ProgramResult result = test("ENDING nothing\nENDING " + std::string(death.way) + '\n');
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(withoutStack(result.out), "failed t/m.macro: an add-on ended the process\n> ENDING " +
                                                std::string(death.way) + "\nt/" + deathLine(death.way, death.how) +
                                                "0 of 1 macros passed\n");
    }
}

TEST_F(WatchedRun, FailsACheckWhenItsProcessEnds) {
    for (const Death& death : kDeaths) {
        if (isOthers(death.way)) continue;
        SCOPED_TRACE(death.way);
        const ProgramResult result = check("ENDING nothing\nENDING " + std::string(death.way) + '\n');
        EXPECT_EQ(result.status, 1);
        EXPECT_NE(result.out.find("  crashed    commands-in-order"), std::string::npos) << result.out;
        EXPECT_NE(result.out.find("check failed: 1 passed, 1 crashed"), std::string::npos) << result.out;
    }
}

TEST_F(WatchedRun, TellsOfAnEndInTheEntryOfAnAddOn) {
    const ProgramResult result = run("ENDING nothing\n", {"--json", "r.jsonl"}, ADDON_ENDING_IN_ENTRY);
    EXPECT_EQ(result.status, 5);
    EXPECT_EQ(withoutDebugLines(result.err), "vexa-standin: error: \"loading of " ADDON_ENDING_IN_ENTRY
                                             "\" ended the process: exit status 0; it made no host call\n");
    EXPECT_EQ(lastResult("r.jsonl").at("exitStatus"), 5);
}

TEST_F(WatchedRun, ListsNoAddOnThatEndsItsProcess) {
    const ProgramResult result = runProgram(runner({"list", ADDON_ENDING_IN_ENTRY}));
    EXPECT_EQ(result.status, 5);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(withoutDebugLines(result.err), "vexa-standin: error: \"loading of " ADDON_ENDING_IN_ENTRY
                                             "\" ended the process: exit status 0; it made no host call\n");
}

TEST_F(WatchedRun, TellsOfAnEndAtShutdownAndInDestructors) {
    for (const std::string when : {"at-shutdown", "at-unload"}) {
        for (const std::string way : {"exit0", "_exit0", "kill"}) {
            SCOPED_TRACE(when + ' ' + way);
            const ProgramResult result =
                run("ENDING " + when + ' ' + way + "\nENDING fail\n", {"--keep-going", "--record", "r.macro"});
            EXPECT_EQ(result.status, 5);
            EXPECT_NE(result.err.find("m.macro:2: ENDING: the command failed without a message\n"), std::string::npos);
            EXPECT_NE(result.err.find("error: \"unloading of ENDING\" ended the process: "), std::string::npos)
                << result.err;
        }
    }
}

TEST_F(WatchedRun, TellsOfAnEndInDestructorsThatRunLast) {
    for (const std::string way : {"_exit0", "_exit3", "kill"}) {
        SCOPED_TRACE(way);
        const ProgramResult result =
            run("ENDING stay-loaded\nENDING at-unload " + way + '\n', {"--json", "r.jsonl", "--record", "r.macro"});
        EXPECT_EQ(result.status, 5);
        EXPECT_EQ(
            result.err.rfind("vexa-standin: error: an add-on ended the process after \"unloading of ENDING\": ", 0), 0U)
            << result.err;
        const std::string results = read("r.jsonl");
        EXPECT_EQ(std::count(results.begin(), results.end(), '\n'), 3) << results;
        EXPECT_EQ(lastResult("r.jsonl").at("exitStatus"), 5);
    }
}

TEST_F(WatchedRun, KeepsToItsTimeLimitInDestructorsThatRunLast) {
    const ProgramResult result =
        run("ENDING stay-loaded\nENDING at-unload hang-blocked\n", {"--timeout", "0.3", "--json", "r.jsonl"});
    EXPECT_EQ(result.status, 4);
    EXPECT_NE(result.err.find("the process for the add-ons did not end after \"unloading of ENDING\""),
              std::string::npos)
        << result.err;
    EXPECT_EQ(lastResult("r.jsonl").at("exitStatus"), 4);
}

TEST_F(WatchedRun, KeepsToItsTimeLimitWhateverAnAddOnDoes) {
    for (const std::string way : {"hang", "hang-blocked", "stop", "exec-sleep", "flood", "flood-err"}) {
        SCOPED_TRACE(way);
        const ProgramResult result = run("ENDING " + way + '\n', {"--timeout", "0.3", "--json", "r.jsonl"});
        EXPECT_EQ(result.status, 4);
        EXPECT_NE(result.err.find("\"ENDING " + way +
                                  "\" has not returned within 0.3 seconds; its last host call was "
                                  "VexaUtilMacroIsBatchModeActive"),
                  std::string::npos)
            << result.err.substr(0, 400);
        EXPECT_EQ(lastResult("r.jsonl").at("exitStatus"), 4);
    }
}

TEST_F(WatchedRun, KeepsToItsTimeLimitAtShutdownAndInDestructors) {
    for (const std::string command : {"at-shutdown stop", "at-unload hang-blocked"}) {
        SCOPED_TRACE(command);
        const ProgramResult result = run("ENDING " + command + '\n', {"--timeout", "0.3"});
        EXPECT_EQ(result.status, 4);
        EXPECT_NE(result.err.find("\"unloading of ENDING\" has not returned within 0.3 seconds"), std::string::npos)
            << result.err;
    }
}

TEST_F(WatchedRun, KeepsToItsTimeLimitWhenItsMacroIsAPipeThatNobodyWrites) {
    ASSERT_EQ(mkfifo((folder() / "pipe").c_str(), 0600), 0);
    const ProgramResult result =
        runProgram(runner({"run", "pipe", "--addon", ADDON_ENDING, "--timeout", "0.3", "--json", "r.jsonl"}));
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "pipe: cannot be read: it did not end within 0.3 seconds\n");
    EXPECT_EQ(lastResult("r.jsonl").at("exitStatus"), 2);
}

TEST_F(WatchedRun, OfATestKeepsToItsTimeLimit) {
    for (const std::string way : {"hang-blocked", "stop", "exec-sleep", "flood"}) {
        SCOPED_TRACE(way);
        const ProgramResult result = test("ENDING " + way + '\n', {"--timeout", "0.3"});
        EXPECT_EQ(result.status, 1);
        EXPECT_NE(result.out.find("0 of 1 macros passed\n"), std::string::npos) << result.out.substr(0, 400);
        const bool isSmall = VEXA_IS_SANITIZED || result.peakKiB < 200L * 1024;
        EXPECT_TRUE(isSmall) << "of what is printed without end a part is kept: " << result.peakKiB << " KiB";
    }
}

TEST_F(WatchedRun, LeavesNoProcessBehind) {
    run("ENDING leave-process\n");
    EXPECT_FALSE(isAlive("left-process")) << "after run";
    std::filesystem::remove(folder() / "left-process");
    runMany("ENDING leave-process\n");
    EXPECT_FALSE(isAlive("left-process")) << "after many runs";
    std::filesystem::remove(folder() / "left-process");
    test("ENDING leave-process\n");
    EXPECT_FALSE(isAlive("left-process")) << "after a test";
    std::filesystem::remove(folder() / "left-process");
    check("ENDING leave-process\n");
    EXPECT_FALSE(isAlive("left-process")) << "after a check";
}

TEST_F(WatchedRun, LeavesTheProcessesOfOthersAlone) {
    write("m.macro", "ENDING leave-process\n");
    const std::string command = "sleep 1000 & echo $! >other; exec " VEXA_STANDIN " run m.macro --addon " ADDON_ENDING;
    EXPECT_EQ(runProgram({{"/bin/sh", "-c", command}, folder(), "", false}).status, 0);
    EXPECT_TRUE(isAlive("other"));
    kill(std::stoi(read("other")), SIGKILL);
}

TEST_F(WatchedRun, IsNoSuccessWhenWhatItToldIsLost) {
    const ProgramResult result =
        run("ENDING close-all\nENDING record nothing\n", {"--record", "r.macro", "--json", "r.jsonl"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(lastResult("r.jsonl").at("exitStatus"), 2);
    EXPECT_EQ(test("ENDING close-all\nENDING nothing\n").status, 1);
}

TEST_F(WatchedRun, OutlivesAThreadThatGoesOnCalling) {
    for (int i = 0; i != 20; ++i) EXPECT_EQ(run("ENDING thread\n").status, 0);
}

TEST_F(WatchedRun, DestroysNothingThatAThreadMayStillUse) {
    const std::string atExit = "ENDING stay-loaded\nENDING at-unload _exit3\n";
    EXPECT_EQ(run("ENDING thread\n" + atExit).status, 0);
    EXPECT_EQ(run(atExit).status, 5) << "no thread uses it";
}

TEST_F(WatchedRun, RunsInTheProgramItselfWhenAsked) {
    EXPECT_EQ(run("ENDING exit3\n", {"--in-process"}).status, 3) << "the add-on ends the program";
    EXPECT_EQ(run("ENDING nothing\n", {"--in-process"}).status, 0);
    const ProgramResult result = run("ENDING record nothing\n", {"--in-process", "--record", "r.macro", "--verbose"});
    EXPECT_EQ(result.err, "m.macro:1: ENDING record nothing\n1 command run, 0 failed; 1 recorded in r.macro\n");
}

TEST_F(WatchedRun, TestsMacrosInTheProgramItselfWhenAsked) {
    write("t/m.expected", "> ENDING record nothing\n+ ENDING nothing\n");
    const ProgramResult result = test("ENDING record nothing\n", {"--in-process"});
    EXPECT_EQ(result.out, "passed t/m.macro\n1 of 1 macros passed\n");
    EXPECT_EQ(test("ENDING exit3\n", {"--in-process"}).status, 3);
}

TEST_F(WatchedRun, RunsInTheProgramItselfUnderATracer) {
    if (VEXA_IS_SANITIZED) GTEST_SKIP() << "the leak sanitizer is a tracer itself";
    write("m.macro", "ENDING exit3\n");
    const ProgramResult traced =
        runProgram({{"/bin/sh", "-c",
                     "command -v strace >/dev/null || exit 77; exec strace -o trace.txt " VEXA_STANDIN
                     " run m.macro --addon " ADDON_ENDING},
                    folder(),
                    "",
                    false});
    if (traced.status == 77) GTEST_SKIP() << "there is no strace";
    EXPECT_EQ(traced.status, 3) << "the add-on ends the program";
}

TEST_F(WatchedRun, IsThereUpToACrashInTheConsole) {
    Program program = runner({"repl", "--addon", ADDON_ENDING, "--record", "r.macro"});
    program.input = "ENDING record nothing\nENDING record exit0\nENDING nothing\n";
    const ProgramResult result = runProgram(program);
    EXPECT_EQ(result.status, 5);
    EXPECT_EQ(result.err,
              "ENDING: error: \"ENDING record exit0\" ended the process: exit status 0; its last host call was "
              "VexaUtilMacroIsBatchModeActive\n");
    EXPECT_EQ(commandsOf(read("r.macro")), "ENDING nothing\nENDING nothing\n");
}

}  // namespace
}  // namespace vexa::e2e
