#include <csignal>
#include <nlohmann/json.hpp>
#include <sstream>

#include "TerminalTest.h"

namespace vexa::e2e {
namespace {

class ManyRuns : public TerminalTest {
protected:
    Program runMany(std::vector<std::string> arguments, const std::string& addOn = ADDON_ONE) const {
        arguments.insert(arguments.begin(), "run");
        arguments.insert(arguments.end(), {"--addon", addOn});
        return runner(std::move(arguments));
    }
};

TEST_F(ManyRuns, PrintInTheOrderOfTheFiles) {
    write("a.macro", "ONE SLEEP 200\nONE ECHO a\nONE DIALOG of a\n");
    write("b.macro", "ONE ECHO b\nONE DIALOG of b\n");
    write("c.macro", "ONE ECHO c\n");
    const ProgramResult result = runProgram(runMany({"a.macro", "b.macro", "c.macro", "--jobs", "3"}));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "a\nb\nc\n");
    EXPECT_EQ(result.err,
              "a.macro:3: ONE: dialog: of a\nb.macro:2: ONE: dialog: of b\n"
              "vexa-standin: 3 macro files run, 0 failed\n");
}

TEST_F(ManyRuns, NameThoseThatFailed) {
    write("a.macro", "ONE FAIL no\n");
    write("b.macro", "ONE ECHO b\n");
    write("c.macro", "TWO ECHO c\n");
    const ProgramResult result = runProgram(runMany({"a.macro", "b.macro", "c.macro"}));
    EXPECT_EQ(result.status, 2) << "the highest";
    EXPECT_EQ(result.out, "b\n");
    EXPECT_EQ(result.err,
              "a.macro:1: ONE: no\n"
              "c.macro:1: no add-on 'TWO' is loaded (loaded: ONE)\n"
              "vexa-standin: 3 macro files run, 2 failed\n"
              "    a.macro: a command failed\n"
              "    c.macro: wrong input, or a file could not be read or written\n");
}

TEST_F(ManyRuns, OutliveACrash) {
    write("a.macro", "ONE ECHO a\nONE KILL now\n");
    write("b.macro", "ONE ECHO b\n");
    const ProgramResult result = runProgram(runMany({"a.macro", "b.macro"}));
    EXPECT_EQ(result.status, 5);
    EXPECT_EQ(result.out, "a\nb\n");
    EXPECT_EQ(withoutDebugLines(result.err),
              "a.macro:2: ONE: error: \"ONE KILL now\" ended the process: SIGKILL (Killed); it made no host call\n"
              "vexa-standin: 2 macro files run, 1 failed\n"
              "    a.macro: an add-on ended its process\n");
}

TEST_F(ManyRuns, ShareNoAddOn) {
    write("a.macro", "ONE ONCE\n");
    write("b.macro", "ONE ONCE\n");
    EXPECT_EQ(runProgram(runMany({"a.macro", "b.macro", "a.macro", "--strict"})).status, 0);
}

TEST_F(ManyRuns, KeepToTheContractOfTheirOwn) {
    write("a.macro", "ONE LEAVELOCKOPEN\n");
    write("b.macro", "ONE ECHO b\n");
    const ProgramResult result = runProgram(runMany({"a.macro", "b.macro", "--strict"}));
    EXPECT_EQ(result.status, 3);
    EXPECT_NE(result.err.find("2 macro files run, 1 failed\n    a.macro: an add-on broke the host's contract\n"),
              std::string::npos)
        << result.err;
}

TEST_F(ManyRuns, HaveNothingToRead) {
    write("a.macro", "ONE ECHO a\n");
    Program program = runMany({"a.macro", "a.macro"});
    program.input = "ONE ECHO never\n";
    EXPECT_EQ(runProgram(program).out, "a\na\n");
}

TEST_F(ManyRuns, AreSeenToEndWhoeverStartedThem) {
    write("a.macro", "ONE ECHO a\n");
    const ProgramResult result = runProgram(withoutChildSignals(runMany({"a.macro", "a.macro"})));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "a\na\n");
}

// With one at a time, the second one finds what the first one left; with two at a time it waits for it.
TEST_F(ManyRuns, GoOnSideBySide) {
    write("a.macro", "PROGRESS WAITFOR b\nPROGRESS SAY a\n");
    write("b.macro", "PROGRESS MAKE b\nPROGRESS SAY b\n");
    const ProgramResult result = runProgram(runMany({"a.macro", "b.macro", "-j", "2"}, ADDON_PROGRESS));
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "a\nb\n");
}

TEST_F(ManyRuns, WriteTheirResultsInTheOrderOfTheFiles) {
    write("a.macro", "ONE SLEEP 100\n");
    write("b.macro", "ONE FAIL no\n");
    for (const char* place : {"-", "r.jsonl"}) {
        SCOPED_TRACE(place);
        const ProgramResult result = runProgram(runMany({"a.macro", "b.macro", "--jobs", "2", "--json", place}));
        EXPECT_EQ(result.status, 1);
        std::istringstream lines(place[0] == '-' ? result.out : read(place));
        std::vector<std::string> told;
        for (std::string line; std::getline(lines, line);) {
            const auto object = nlohmann::json::parse(line);
            told.push_back(object.contains("place") ? object["place"] : object["macroFile"]);
        }
        EXPECT_EQ(told, std::vector<std::string>({"a.macro:1", "a.macro", "b.macro:1", "b.macro"}));
    }
}

TEST_F(ManyRuns, AreStoppedByCtrlC) {
    write("a.macro", "PROGRESS MAKE a;START Reading;UNTILSTOPPED;FINISH\nPROGRESS SAY never\n");
    write("b.macro", "PROGRESS WAITFOR a;MAKE ready;START Reading;UNTILSTOPPED;FINISH\n");
    write("c.macro", "PROGRESS SAY never\n");
    const Program program = runMany({"a.macro", "b.macro", "c.macro", "--jobs", "2", "--batch"}, ADDON_PROGRESS);
    PtyProgram running(program, kColumns, plainTerminal());
    for (int tries = 0; tries != 6000 && !std::filesystem::exists(folder() / "ready"); ++tries) usleep(10000);
    running.type("\x03");
    EXPECT_EQ(running.finish(), 130);
    const std::string& output = running.output();
    EXPECT_NE(output.find("a.macro:1: PROGRESS: stopped\r\nb.macro:1: PROGRESS: stopped\r\n"), std::string::npos)
        << output;
    EXPECT_NE(output.find("vexa-standin: 2 macro files run, 2 failed\r\n    a.macro: stopped by Ctrl-C\r\n"
                          "    b.macro: stopped by Ctrl-C\r\n    1 not begun: stopped by Ctrl-C\r\n"),
              std::string::npos)
        << output;
    EXPECT_EQ(output.find("never"), std::string::npos) << output;
}

// While an add-on is loaded, SIGINT ends the process.
TEST_F(ManyRuns, HaveAnEndLineIfCtrlCEndedTheirProcess) {
    write("a.macro", "ONE ECHO a\n");
    Program program = runMany({"a.macro", "a.macro", "--json", "r.jsonl"}, ADDON_HANGING_AT_ENTRY);
    const std::string interruptWhenRunning =
        "env --default-signal=INT \"$@\" & until [ -n \"$(cat /proc/$!/task/$!/children)\" ]; do sleep 0.01; done; "
        "kill -INT $!; wait $!";
    program.arguments.insert(program.arguments.begin(), {"sh", "-c", interruptWhenRunning, "sh"});
    EXPECT_EQ(runProgram(program).status, 130);
    EXPECT_EQ(read("r.jsonl"), "{\"macroFile\":\"a.macro\",\"exitStatus\":130,\"findings\":[]}\n");
}

TEST_F(ManyRuns, AreAsManyAsThereAre) {
    std::vector<std::string> arguments;
    std::string expected;
    for (int i = 0; i != 60; ++i) {
        const std::string name = std::to_string(i) + ".macro";
        write(name, "ONE ECHO " + name + '\n');
        arguments.push_back(name);
        expected += name + '\n';
    }
    arguments.insert(arguments.end(), {"--jobs", "8"});
    const ProgramResult result = runProgram(runMany(arguments));
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, expected);
}

}  // namespace
}  // namespace vexa::e2e
