#include <sys/stat.h>

#include <csignal>

#include "RunnerTest.h"
#include "support/TraceEvents.h"

namespace vexa::e2e {
namespace {

namespace fs = std::filesystem;
using tests::cutOffTraceEvents;
using tests::eventsWhere;
using tests::Json;
using tests::nestingProblems;
using tests::traceEvents;

class Trace : public RunnerTest {
protected:
    // Starts a run that hangs, sends the signal once both traces have the command, and returns the run's status.
    int statusOfARunKilledBy(const std::string& signal) const {
        write("m.macro", "HANGING HANG\n");
        const std::string command = VEXA_STANDIN " run m.macro --addon " ADDON_HANGING
                                                 " --trace t.json --trace-text t.txt & "
                                                 "until grep --quiet HANG t.txt; do sleep 0.05; done 2>/dev/null; "
                                                 "kill -" +
                                    signal + " $!; wait $!";
        return runProgram({{"bash", "-c", command}, folder(), "", false}).status;
    }
};

using UnprivilegedTrace = UnprivilegedRunnerTest;

// Both kinds of trace are files in the same way.
constexpr const char* kOptions[] = {"--trace", "--trace-text"};

TEST_F(Trace, OfARunNestsAndHasItsCommandsAndOutcome) {
    const ProgramResult result = runMacro("ONE SAY a\nONE LEAVELOCKOPEN\nONE FAIL no\n", {"--trace", "t.json"});
    EXPECT_EQ(result.status, 1);
    const Json events = traceEvents(read("t.json"));
    EXPECT_EQ(nestingProblems(events), std::vector<std::string>());
    const std::vector<Json> commands = eventsWhere(events, "cat", "command");
    ASSERT_EQ(commands.size(), 6U);
    EXPECT_EQ(commands[0].at("name"), "ONE SAY a");
    EXPECT_EQ(commands[0].at("args").at("macroLine"), "m.macro:1");
    EXPECT_EQ(commands[5].at("args").at("error"), "no");
    EXPECT_EQ(eventsWhere(events, "cat", "finding").at(0).at("name"), "unbalanced-lock");
    EXPECT_EQ(events.back().at("args"), Json::parse(R"({"exitStatus":1,"outcome":"a command failed"})"));
}

TEST_F(Trace, SaysWhichRunItIsOf) {
    runMacro("ONE ECHO a\n", {"--batch", "--trace", "t.json"});
    const Json facts = traceEvents(read("t.json")).front().at("args");
    EXPECT_EQ(facts.at("tool"), "vexa-standin " VEXA_VERSION);
    EXPECT_EQ(facts.at("macroFile"), "m.macro");
    EXPECT_EQ(facts.at("options"),
              (Json{{"--addon", {ADDON_ONE}}, {"--trace", {"t.json"}}, {"--batch", Json::array()}}));
}

TEST_F(Trace, OfARunThatIsKilledIsThereUpToThere) {
    const ProgramResult result = runMacro("ONE SAY a\nONE KILL\n", {"--trace", "t.json", "--trace-text", "t.txt"});
    EXPECT_EQ(result.status, 5);
    const std::vector<Json> commands = eventsWhere(cutOffTraceEvents(read("t.json")), "cat", "command");
    ASSERT_EQ(commands.size(), 3U);
    EXPECT_EQ(commands.back().at("name"), "ONE KILL");
    EXPECT_NE(read("t.txt").find("m.macro:2: ONE KILL\n"), std::string::npos);
}

TEST_F(Trace, OfARunThatIsKilledHasNoMoreThanItsText) {
    runMacro("ONE SAY a\nONE KILL\n", {"--trace", "t.json", "--trace-text", "t.txt"});
    EXPECT_EQ(read("t.json").back(), '}');
    EXPECT_EQ(read("t.txt").back(), '\n');
}

TEST_F(Trace, OfAProgramThatIsTerminatedHasNoMoreThanItsText) {
    EXPECT_EQ(statusOfARunKilledBy("TERM"), 128 + SIGTERM);
    EXPECT_EQ(read("t.json").back(), '}');
    EXPECT_EQ(read("t.txt").back(), '\n');
}

TEST_F(Trace, OfAProgramThatIsKilledCanBeRead) {
    EXPECT_EQ(statusOfARunKilledBy("KILL"), 128 + SIGKILL);
    EXPECT_EQ(runProgram(runner({"diff", "t.json", "t.txt"})).err, "");
}

TEST_F(Trace, OfACommandThatDoesNotReturnEndsWithTheFinding) {
    write("m.macro", "HANGING HANG\n");
    const ProgramResult result =
        runProgram(runner({"run", "m.macro", "--addon", ADDON_HANGING, "--timeout", "2", "--trace", "t.json"}));
    EXPECT_EQ(result.status, 4) << result.err;
    const Json events = traceEvents(read("t.json"));
    EXPECT_EQ(nestingProblems(events), std::vector<std::string>());
    EXPECT_EQ(eventsWhere(events, "cat", "finding").at(0).at("name"), "command-timeout");
    EXPECT_EQ(eventsWhere(events, "cat", "command").size(), 1U);
    EXPECT_EQ(eventsWhere(events, "cat", "cut off").at(0).at("name"), "HANGING HANG");
    EXPECT_EQ(events.back().at("args").at("exitStatus"), 4);
}

TEST_F(Trace, OfALoadingThatFailedSaysWhy) {
    write("m.macro", "");
    EXPECT_EQ(runProgram(runner({"run", "m.macro", "--addon", "gone.so", "--trace", "t.json"})).status, 2);
    const std::vector<Json> loading = eventsWhere(traceEvents(read("t.json")), "cat", "loading");
    ASSERT_EQ(loading.size(), 2U);
    EXPECT_EQ(loading[1].at("args").at("error"), "./gone.so: no such file");
}

TEST_F(Trace, SurvivesATextThatIsNoUtf8) {
    EXPECT_EQ(runMacro("ONE DIALOG a\xff\x01z\n", {"--trace", "t.json"}).status, 0);
    const Json events = traceEvents(read("t.json"));
    EXPECT_EQ(eventsWhere(events, "cat", "command").at(0).at("name"), "ONE DIALOG a\xef\xbf\xbd\x01z");
}

TEST_F(Trace, GoesToNoFileThatTheRunUses) {
    write("style.json", "{}");
    write("m.macro", "ONE SAY a\n");
    fs::create_symlink("m.macro", folder() / "link");
    fs::create_hard_link(folder() / "m.macro", folder() / "hard");
    fs::copy_file(ADDON_ONE, folder() / "one.so");
    struct Case {
        const char* trace;
        const char* other;
    };
    const Case cases[] = {
        {"m.macro", "m.macro"}, {"./m.macro", "m.macro"}, {"link", "m.macro"},          {"hard", "m.macro"},
        {"r.macro", "r.macro"}, {"./j.macro", "j.macro"}, {"style.json", "style.json"}, {"one.so", "one.so"},
    };
    for (const char* option : kOptions) {
        for (const Case& c : cases) {
            SCOPED_TRACE(std::string(option) + ' ' + c.trace);
            const ProgramResult result =
                runProgram(runner({"run", "m.macro", "--addon", "one.so", "--style", "style.json", "--record",
                                   "r.macro", "--journal", "j.macro", option, c.trace}));
            EXPECT_EQ(result.status, 2);
            EXPECT_EQ(result.out, "");
            EXPECT_EQ(result.err,
                      std::string(c.trace) + ": cannot be written: the command also uses it as " + c.other + "\n");
            EXPECT_EQ(read("m.macro"), "ONE SAY a\n");
        }
    }
}

TEST_F(Trace, CannotBeBothKindsInOneFile) {
    const ProgramResult result = runMacro("ONE SAY a\n", {"--trace", "t", "--trace-text", "./t"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "./t: cannot be written: the command also uses it as t\n");
}

TEST_F(Trace, ThatCannotBeWrittenIsRefusedBeforeAnythingRuns) {
    fs::create_directory(folder() / "folder");
    ASSERT_EQ(mkfifo((folder() / "pipe").c_str(), 0600), 0);
    struct Case {
        const char* file;
        const char* why;
    };
    const Case cases[] = {
        {"folder", "it is not a regular file"},
        {"pipe", "no process reads it"},
        {"gone/t", "its folder does not exist"},
        {"", "No such file or directory"},
    };
    for (const char* option : kOptions) {
        for (const Case& c : cases) {
            SCOPED_TRACE(std::string(option) + ' ' + c.file);
            const ProgramResult result = runMacro("ONE ECHO a\n", {option, c.file});
            EXPECT_EQ(result.status, 2);
            EXPECT_EQ(result.out, "");
            EXPECT_EQ(result.err, std::string(c.file) + ": cannot be written: " + c.why + '\n');
        }
    }
}

TEST_F(UnprivilegedTrace, InAFolderWithoutPermissionIsRefused) {
    write("m.macro", "ONE ECHO a\n");
    fs::permissions(folder(), fs::perms(0555));
    const ProgramResult result = runUnprivileged(macroRunner({"--trace", "t.json"}));
    fs::permissions(folder(), fs::perms(0755));
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "t.json: cannot be written: Permission denied\n");
}

TEST_F(Trace, OnAFullDiskIsAnErrorAfterTheRun) {
    // A limit on the size of files stands for the full disk.
    std::string macro;
    for (int i = 0; i != 50; ++i) macro += "ONE ECHO a\n";
    write("m.macro", macro);
    for (const char* option : kOptions) {
        const std::string command =
            std::string("trap '' XFSZ; ulimit -f 1; " VEXA_STANDIN " run m.macro --addon " ADDON_ONE " ") + option +
            " t | wc -l; exit ${PIPESTATUS[0]}";
        const ProgramResult result = runProgram({{"bash", "-c", command}, folder(), "", false});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "50\n");
        EXPECT_EQ(result.err, "t: cannot be written: File too large\n");
    }
}

TEST_F(Trace, ReplacesTheOneBefore) {
    write("t.json", std::string(100000, 'x'));
    runMacro("ONE ECHO a\n", {"--trace", "t.json"});
    EXPECT_NO_THROW(traceEvents(read("t.json")));
}

}  // namespace
}  // namespace vexa::e2e
