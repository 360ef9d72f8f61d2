// The command attach. The host is vexa-standin itself, which loads add-ons like any other host; or a shell.

#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <regex>

#include "RunnerTest.h"
#include "support/TraceEvents.h"

namespace vexa::e2e {
namespace {

using Words = std::vector<std::string>;

constexpr const char* kNothingChecked = "vexa-standin: no add-on was loaded, so nothing was checked\n";

class Attach : public RunnerTest {
protected:
    /// `vexa-standin attach OPTIONS -- PROGRAM`.
    Program attached(const Words& program, Words options = {}) const {
        options.insert(options.begin(), "attach");
        options.emplace_back("--");
        options.insert(options.end(), program.begin(), program.end());
        return runner(options);
    }
    ProgramResult attach(const Words& program, const Words& options = {}) const {
        return runProgram(attached(program, options));
    }

    /// `vexa-standin run m.macro --addon ADDON OPTIONS`, as a program that is attached to.
    Words host(const std::string& macro, const Words& options = {}, const std::string& addOn = ADDON_ONE) const {
        write("m.macro", macro);
        Words words = {VEXA_STANDIN, "run", "m.macro", "--addon", addOn, "--in-process"};
        words.insert(words.end(), options.begin(), options.end());
        return words;
    }

    std::string script(const std::string& name, const std::string& text) const {
        write(name, text);
        std::filesystem::permissions(folder() / name, std::filesystem::perms(0755));
        return "./" + name;
    }

    /// The text of the only message of a program that was not started.
    std::string refusalOf(const Words& program, const Words& options = {}) const {
        const ProgramResult result = attach(program, options);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "");
        return result.err;
    }
};

// ---- Findings

constexpr const char* kLockFinding =
    "command 1: ONE: error: VexaUtilLockStart has no matching VexaUtilLockFinish in the command [unbalanced-lock]\n"
    "    first: call 6, VexaUtilLockStart, in \"ONE LEAVELOCKOPEN\", command 1, thread 1\n"
    "    seen:  the end of \"ONE LEAVELOCKOPEN\", command 1, thread 1\n"
    "    hint:  Use an AddOnIdLock. It releases the lock on every return and on every exception.\n";

TEST_F(Attach, ReportsAFindingLikeARun) {
    const ProgramResult result = attach(host("ONE LEAVELOCKOPEN\n", {"--suppress", "unbalanced-lock"}));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(withoutSources(result.err), kLockFinding);
}

TEST_F(Attach, FailsForAFindingOnlyIfItIsStrict) {
    const Words program = host("ONE LEAVELOCKOPEN\n");
    EXPECT_EQ(attach(program).status, 0);
    EXPECT_EQ(attach(program, {"--strict"}).status, 3);
    EXPECT_EQ(attach(program, {"--strict", "--suppress", "unbalanced-lock"}).status, 0);
    EXPECT_EQ(attach(host("ONE SAY a\n"), {"--strict"}).status, 0);
}

TEST_F(Attach, TakesWarningsForErrorsIfAsked) {
    const Words program = host("ONE FAILSILENTLY\n", {"--keep-going"});
    EXPECT_EQ(attach(program, {"--strict"}).status, 1);
    EXPECT_EQ(attach(program, {"--warnings-as-errors"}).status, 3);
}

TEST_F(Attach, ReadsTheProjectFile) {
    const Words program = host("ONE LEAVELOCKOPEN\n", {"--no-project-file"});
    write("vexa-standin.toml", "strict = true\n");
    EXPECT_EQ(attach(program).status, 3);
    EXPECT_EQ(attach(program, {"--no-project-file"}).status, 0);
}

TEST_F(Attach, CountsTheFindingsAfterTheTenthAndNamesUnusedSuppressions) {
    std::string macro;
    for (int i = 0; i != 12; ++i) macro += "ONE LEAVELOCKOPEN\n";
    const Words options = {"--suppress", "unbalanced-lock", "--suppress", "leaked-set"};
    const std::string err = attach(host(macro, options), {"--suppress", "leaked-set"}).err;
    EXPECT_NE(err.find("command 10: ONE: error: "), std::string::npos);
    EXPECT_EQ(err.find("command 11: ONE: error: "), std::string::npos);
    EXPECT_NE(err.find("ONE: and 2 more [unbalanced-lock]\n"
                       "vexa-standin: warning: leaked-set is suppressed, but was not broken\n"),
              std::string::npos)
        << err;
}

TEST_F(Attach, GivesFindingsOfALoadingTheIdOfTheAddOn) {
    const std::string err = attach(host("LOCKING a\n", {}, LOCKING_ADDON)).err;
    EXPECT_NE(err.find("\nLOCKING: error: VexaUtilStatusSetPercentDoneText was called before the status line was "
                       "started [status-not-started]\n"),
              std::string::npos)
        << err;
    EXPECT_NE(err.find("\nLOCKING: error: VexaUtilLockStart has no matching VexaUtilLockFinish in the loading "),
              std::string::npos)
        << err;
}

TEST_F(Attach, TellsSeveralAddOnsApart) {
    const Words more = {"--addon", ADDON_SECOND, "--suppress", "unbalanced-lock"};
    const Words program = host("SECOND SAY a\nONE LEAVELOCKOPEN\nSECOND LEAVELOCKOPEN\n", more);
    const std::string err = attach(program, {"--trace-text", "trace.txt"}).err;
    EXPECT_NE(err.find("command 2: ONE: error: "), std::string::npos) << err;
    EXPECT_NE(err.find("command 3: SECOND: error: "), std::string::npos) << err;
    EXPECT_NE(read("trace.txt").find("VexaUtilLockStart(SECOND)"), std::string::npos) << read("trace.txt");
}

TEST_F(Attach, WritesFindingsToTheLog) {
    const Words program = host("ONE LEAVELOCKOPEN\nONE SAY text\n", {"--suppress", "unbalanced-lock"});
    const ProgramResult result = attach(program, {"--log", "log.txt", "--color", "always"});
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(withoutSources(read("log.txt")), kLockFinding);
}

TEST_F(Attach, SaysThatNothingWasChecked) {
    EXPECT_EQ(attach({"true"}).err, kNothingChecked);
    EXPECT_EQ(attach(host("ONE SAY a\n")).err, "");
}

TEST_F(Attach, LeavesAnAddOnThatCannotBeLoadedToTheHost) {
    const Words program = host("LOCKING a\n", {}, INCOMPLETE_ADDON);
    const ProgramResult result = attach(program);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, runProgram({program, folder(), "", false}).err + kNothingChecked);
}

// ---- Traces

std::string withoutPlaces(const std::string& trace) {
    return std::regex_replace(trace, std::regex("m\\.macro:|command |\nvexa.*"), "");
}

TEST_F(Attach, WritesTheTextTraceOfARun) {
    const std::string macro = "ONE SAY a\nONE LEAVELOCKOPEN\nONE STYLE A B\nONE DIALOG x|y\nONE FAIL no\n";
    attach(host(macro, {"--keep-going", "--trace-text", "run.txt"}), {"--trace-text", "attach.txt"});
    const std::string end = "=> exit status 1: ";
    EXPECT_GT(read("run.txt").size(), 1000U);
    EXPECT_EQ(withoutPlaces(read("attach.txt")),
              std::regex_replace(withoutPlaces(read("run.txt")), std::regex(end + ".*"),
                                 end + "the program ended with status 1"));
}

TEST_F(Attach, WritesTheEventTraceOfARun) {
    const auto outlineOf = [](const std::string& text) {
        Words outline;
        for (const auto& event : tests::traceEvents(text)) {
            const std::string name = event.at("name");
            if (event.at("ph") == "M" || name == "run" || name == "outcome") continue;
            const bool isCounter = event.at("ph") == "C";
            outline.push_back(event.at("ph").get<std::string>() + ' ' + name + (isCounter ? event["args"].dump() : ""));
        }
        return outline;
    };
    const std::string macro = "PROGRESS START a;PERCENT 30;SWEEP 120;TEXT b;FINISH\n";
    attach(host(macro, {"--trace", "run.json"}, PROGRESS_ADDON), {"--trace", "attach.json"});
    EXPECT_EQ(tests::nestingProblems(tests::traceEvents(read("attach.json"))), Words());
    EXPECT_EQ(outlineOf(read("attach.json")), outlineOf(read("run.json")));
}

TEST_F(Attach, KeepsItsMemoryWhileItTraces) {
    const auto peakOf = [this](int commands) {
        std::string macro;
        for (int i = 0; i != commands; ++i) macro += "ONE SAY a\n";
        return attach(host(macro, {"--batch"}), {"--trace", "t.json"}).peakKiB;
    };
    EXPECT_LT(peakOf(20000), peakOf(2000) + 8 * 1024);
}

// ---- The program is as without

TEST_F(Attach, LeavesOutputInputAndStatusToTheProgram) {
    Program program = attached({"sh", "-c", "cat; echo err >&2; exit 7"});
    program.input = "text\n";
    const ProgramResult result = runProgram(program);
    EXPECT_EQ(result.status, 7);
    EXPECT_EQ(result.out, "text\n");
    EXPECT_EQ(result.err, std::string("err\n") + kNothingChecked);
}

TEST_F(Attach, PassesTheArgumentsOnAsTheyAre) {
    EXPECT_EQ(attach({"printf", "<%s>", "--strict", "--", "a b", "", "-h"}).out, "<--strict><--><a b><><-h>");
}

TEST_F(Attach, ReportsTheSignalThatEndedTheProgram) {
    const ProgramResult result = attach({"sh", "-c", "kill -TERM $$"});
    EXPECT_EQ(result.status, 128 + SIGTERM);
    EXPECT_EQ(result.err,
              std::string(kNothingChecked) + "vexa-standin: the program was ended by signal 15 (Terminated)\n");
}

TEST_F(Attach, PassesATerminationOn) {
    const std::string killer = "trap 'echo ended; exit 9' TERM; kill -TERM $PPID; while :; do sleep 0.01; done";
    const ProgramResult result = attach({"sh", "-c", killer});
    EXPECT_EQ(result.out, "ended\n");
    EXPECT_EQ(result.status, 9);
}

TEST_F(Attach, StartsTheProgramWithTheSignalsThatItGot) {
    const Words show = {"grep", "-E", "Sig(Blk|Ign)", "/proc/self/status"};
    EXPECT_EQ(attach(show).out, runProgram({show, folder(), "", false}).out);
    EXPECT_EQ(runProgram(withoutChildSignals(attached(show))).out,
              runProgram(withoutChildSignals({show, folder(), "", false})).out);
}

TEST_F(Attach, LeavesNoFileBehind) {
    Program program = attached({"true"});
    program.arguments.insert(program.arguments.begin(), {"env", "TMPDIR=" + folder().string()});
    runProgram(program);
    EXPECT_EQ(fileNames(), Words());
}

TEST_F(Attach, DoesWithoutTheFolderForTemporaryFiles) {
    Program program = attached(host("ONE LEAVELOCKOPEN\n", {"--suppress", "unbalanced-lock"}));
    for (const std::string& place : {std::string("/no/such/folder"), "/tmp/" + std::string(100, 'x')}) {
        Program started = program;
        started.arguments.insert(started.arguments.begin(), {"env", "TMPDIR=" + place});
        EXPECT_EQ(withoutSources(runProgram(started).err), kLockFinding) << place;
    }
}

// ---- Scripts

TEST_F(Attach, FollowsAScriptToTheHost) {
    std::string text = "#!/bin/sh\n/bin/true\nexec 3>&-\nexec";
    for (const std::string& word : host("ONE LEAVELOCKOPEN\n", {"--suppress", "unbalanced-lock"})) text += ' ' + word;
    EXPECT_EQ(withoutSources(attach({script("start", text + '\n')}).err), kLockFinding);
}

TEST_F(Attach, WatchesSeveralHostsOfAScript) {
    std::string line;
    for (const std::string& word : host("ONE LEAVELOCKOPEN\n", {"--suppress", "unbalanced-lock"})) line += word + ' ';
    const ProgramResult result = attach({script("start", "#!/usr/bin/env sh\n" + line + '\n' + line + '\n')});
    EXPECT_EQ(withoutSources(result.err), std::string(kLockFinding) + kLockFinding);
}

TEST_F(Attach, ConcernsNoProcessThatLoadsNoAddOn) {
    const ProgramResult result = attach({"sh", "-c", "ls -d . | cat; sh -c 'exit 3'"});
    EXPECT_EQ(result.out, ".\n");
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.err, kNothingChecked);
}

// ---- Refusals

TEST_F(Attach, RefusesWhatIsNoProgram) {
    write("text", "text\n");
    script("empty", "");
    script("no-interpreter", "#!/no/such/interpreter\n");
    script("text-program", "echo hello\n");
    EXPECT_EQ(refusalOf({"./nothing"}), "./nothing: no such file\n");
    EXPECT_EQ(refusalOf({"nothing-in-path"}), "nothing-in-path: no such program in the folders of PATH\n");
    EXPECT_EQ(refusalOf({"."}).find(".: "), 0U);
    EXPECT_EQ(refusalOf({"./text"}), "./text: it is not executable\n");
    EXPECT_EQ(refusalOf({"./empty"}), "./empty: it is neither a program nor a script that starts with #!\n");
    EXPECT_EQ(refusalOf({"./text-program"}),
              "./text-program: it is neither a program nor a script that starts with #!\n");
    EXPECT_EQ(refusalOf({"./no-interpreter"}),
              "./no-interpreter: its interpreter, /no/such/interpreter: no such file\n");
    EXPECT_EQ(refusalOf({folder().string()}), folder().string() + ": it is a folder\n");
}

TEST_F(Attach, RefusesAProgramIntoWhichNothingCanBeLoaded) {
    EXPECT_EQ(refusalOf({STATIC_PROGRAM}),
              std::string(STATIC_PROGRAM) + ": it is linked statically, so nothing can be loaded into it\n");
    EXPECT_EQ(refusalOf({FOREIGN_LOADER_PROGRAM}),
              std::string(FOREIGN_LOADER_PROGRAM) + ": its loader, /lib/ld-musl-x86_64.so.1, is not that of glibc\n");
    EXPECT_EQ(refusalOf({OLD_LOADER_PROGRAM}),
              std::string(OLD_LOADER_PROGRAM) + ": its loader, " + OLD_LOADER + ", is older than glibc 2.35\n");
}

TEST_F(Attach, RefusesAProgramOfAnotherMachine) {
    std::filesystem::copy_file("/bin/true", folder() / "other");
    std::fstream file(folder() / "other", std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(18);    // the machine in the ELF header
    file.put('\xb7');  // AArch64
    file.close();
    EXPECT_EQ(refusalOf({"./other"}), "./other: it is no x86-64 program\n");
}

TEST_F(Attach, RefusesAProgramThatGetsOtherPrivileges) {
    std::filesystem::copy_file("/bin/true", folder() / "other");
    if (chown((folder() / "other").c_str(), 65534, 65534) != 0) GTEST_SKIP() << "only root can do that";
    chmod((folder() / "other").c_str(), 04755);
    EXPECT_EQ(refusalOf({"./other"}), "./other: it runs with other privileges (setuid, setgid or capabilities)\n");
}

TEST_F(Attach, RefusesAnOutputThatIsTheProgramsOrAnotherOutput) {
    EXPECT_NE(refusalOf({"true"}, {"--log", "-"}).find("--log: the standard output belongs to the program\n"),
              std::string::npos);
    EXPECT_NE(refusalOf({"true"}, {"--trace", "/dev/stdout"}).find("--trace: the standard output belongs"),
              std::string::npos);
    EXPECT_NE(refusalOf({"true"}, {"--log", "a", "--trace", "a"}).find("a: "), std::string::npos);
    EXPECT_NE(refusalOf({script("host", "#!/bin/sh\n")}, {"--log", "host"}).find("host: "), std::string::npos);
    EXPECT_EQ(read("host"), "#!/bin/sh\n");
}

}  // namespace
}  // namespace vexa::e2e
