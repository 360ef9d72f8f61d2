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
    write("a.mcr", "ONE SLEEP 200\nONE ECHO a\nONE DIALOG of a\n");
    write("b.mcr", "ONE ECHO b\nONE DIALOG of b\n");
    write("c.mcr", "ONE ECHO c\n");
    const ProgramResult result = runProgram(runMany({"a.mcr", "b.mcr", "c.mcr", "--jobs", "3"}));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "a\nb\nc\n");
    EXPECT_EQ(result.err,
              "a.mcr:3: ONE: dialog: of a\nb.mcr:2: ONE: dialog: of b\n"
              "vexa-standin: 3 macro files run, 0 failed\n");
}

TEST_F(ManyRuns, NameThoseThatFailed) {
    write("a.mcr", "ONE FAIL no\n");
    write("b.mcr", "ONE ECHO b\n");
    write("c.mcr", "TWO ECHO c\n");
    const ProgramResult result = runProgram(runMany({"a.mcr", "b.mcr", "c.mcr"}));
    EXPECT_EQ(result.status, 2) << "the highest";
    EXPECT_EQ(result.out, "b\n");
    EXPECT_EQ(result.err,
              "a.mcr:1: ONE: no\n"
              "c.mcr:1: no add-on 'TWO' is loaded\n"
              "vexa-standin: 3 macro files run, 2 failed\n"
              "    a.mcr: a command failed\n"
              "    c.mcr: wrong input, or a file could not be read or written\n");
}

TEST_F(ManyRuns, OutliveACrash) {
    write("a.mcr", "ONE ECHO a\nONE KILL now\n");
    write("b.mcr", "ONE ECHO b\n");
    const ProgramResult result = runProgram(runMany({"a.mcr", "b.mcr"}));
    EXPECT_EQ(result.status, 128 + SIGKILL);
    EXPECT_EQ(result.out, "a\nb\n");
    EXPECT_EQ(result.err,
              "vexa-standin: 2 macro files run, 1 failed\n"
              "    a.mcr: ended by signal: Killed\n");
}

TEST_F(ManyRuns, ShareNoAddOn) {
    write("a.mcr", "ONE ONCE\n");
    write("b.mcr", "ONE ONCE\n");
    EXPECT_EQ(runProgram(runMany({"a.mcr", "b.mcr", "a.mcr", "--strict"})).status, 0);
}

TEST_F(ManyRuns, KeepToTheContractOfTheirOwn) {
    write("a.mcr", "ONE LEAVELOCKOPEN\n");
    write("b.mcr", "ONE ECHO b\n");
    const ProgramResult result = runProgram(runMany({"a.mcr", "b.mcr", "--strict"}));
    EXPECT_EQ(result.status, 3);
    EXPECT_NE(result.err.find("2 macro files run, 1 failed\n    a.mcr: an add-on broke the host's contract\n"),
              std::string::npos)
        << result.err;
}

TEST_F(ManyRuns, HaveNothingToRead) {
    write("a.mcr", "ONE ECHO a\n");
    Program program = runMany({"a.mcr", "a.mcr"});
    program.input = "ONE ECHO never\n";
    EXPECT_EQ(runProgram(program).out, "a\na\n");
}

TEST_F(ManyRuns, AreSeenToEndWhoeverStartedThem) {
    write("a.mcr", "ONE ECHO a\n");
    const ProgramResult result = runProgram(withoutChildSignals(runMany({"a.mcr", "a.mcr"})));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "a\na\n");
}

// With one at a time, the second one finds what the first one left; with two at a time it waits for it.
TEST_F(ManyRuns, GoOnSideBySide) {
    write("a.mcr", "PROGRESS WAITFOR b\nPROGRESS SAY a\n");
    write("b.mcr", "PROGRESS MAKE b\nPROGRESS SAY b\n");
    const ProgramResult result = runProgram(runMany({"a.mcr", "b.mcr", "-j", "2"}, ADDON_PROGRESS));
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "a\nb\n");
}

TEST_F(ManyRuns, WriteTheirResultsInTheOrderOfTheFiles) {
    write("a.mcr", "ONE SLEEP 100\n");
    write("b.mcr", "ONE FAIL no\n");
    for (const char* place : {"-", "r.jsonl"}) {
        SCOPED_TRACE(place);
        const ProgramResult result = runProgram(runMany({"a.mcr", "b.mcr", "--jobs", "2", "--json", place}));
        EXPECT_EQ(result.status, 1);
        std::istringstream lines(place[0] == '-' ? result.out : read(place));
        std::vector<std::string> told;
        for (std::string line; std::getline(lines, line);) {
            const auto object = nlohmann::json::parse(line);
            told.push_back(object.contains("place") ? object["place"] : object["macroFile"]);
        }
        EXPECT_EQ(told, std::vector<std::string>({"a.mcr:1", "a.mcr", "b.mcr:1", "b.mcr"}));
    }
}

TEST_F(ManyRuns, WriteNoResultsOverAMacro) {
    write("a.mcr", "ONE ECHO a\n");
    write("b.mcr", "ONE ECHO b\n");
    const ProgramResult result = runProgram(runMany({"a.mcr", "b.mcr", "--json", "b.mcr"}));
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "b.mcr: cannot be written: the run uses it as b.mcr, too\n");
    EXPECT_EQ(read("b.mcr"), "ONE ECHO b\n");
}

TEST_F(ManyRuns, AreStoppedByCtrlC) {
    write("a.mcr", "PROGRESS MAKE a;START Reading;UNTILSTOPPED;FINISH\nPROGRESS SAY never\n");
    write("b.mcr", "PROGRESS WAITFOR a;MAKE ready;START Reading;UNTILSTOPPED;FINISH\n");
    write("c.mcr", "PROGRESS SAY never\n");
    const Program program = runMany({"a.mcr", "b.mcr", "c.mcr", "--jobs", "2", "--batch"}, ADDON_PROGRESS);
    PtyProgram running(program, kColumns, plainTerminal());
    for (int tries = 0; tries != 6000 && !std::filesystem::exists(folder() / "ready"); ++tries) usleep(10000);
    running.type("\x03");
    EXPECT_EQ(running.finish(), 130);
    const std::string& output = running.output();
    EXPECT_NE(output.find("a.mcr:1: PROGRESS: stopped\r\nb.mcr:1: PROGRESS: stopped\r\n"), std::string::npos) << output;
    EXPECT_NE(output.find("vexa-standin: 2 macro files run, 2 failed\r\n    a.mcr: stopped by Ctrl-C\r\n"
                          "    b.mcr: stopped by Ctrl-C\r\n    1 not begun: stopped by Ctrl-C\r\n"),
              std::string::npos)
        << output;
    EXPECT_EQ(output.find("never"), std::string::npos) << output;
}

TEST_F(ManyRuns, AreAsManyAsThereAre) {
    std::vector<std::string> arguments;
    std::string expected;
    for (int i = 0; i != 60; ++i) {
        const std::string name = std::to_string(i) + ".mcr";
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
