// The stack of an add-on that crashes or does not return: in all commands, with all compilers, and in reports.

#include <algorithm>
#include <nlohmann/json.hpp>

#include "CrashingAddOns.h"
#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

using nlohmann::json;
using Words = std::vector<std::string>;

class Crash : public RunnerTest {
protected:
    void SetUp() override {
        if (VEXA_IS_SANITIZED) GTEST_SKIP() << "the leak sanitizer does not work in a traced process";
    }

    /// `vexa-standin COMMAND m.macro OPTIONS --addon ADDON`, where m.macro has the command \p way of the add-on.
    Program program(const std::string& way, const std::string& addOn, const std::string& command = "run",
                    const Words& options = {}) const {
        write("m.macro", "CRASHING " + way + '\n');
        Program program = runner({command, "m.macro", "--addon", addOn});
        program.arguments.insert(program.arguments.end(), options.begin(), options.end());
        return program;
    }
    ProgramResult run(const std::string& way, const std::string& addOn, const Words& options = {}) const {
        return runProgram(program(way, addOn, "run", options));
    }
    json lastResult() const {
        const std::string text = read("r.jsonl");
        const std::size_t end = text.find_last_not_of('\n');
        return json::parse(text.substr(text.rfind('\n', end) + 1));
    }
};

class CrashOf : public Crash, public testing::WithParamInterface<const char*> {
protected:
    void expectPlace(const std::string& text, const std::string& mark, const std::string& function) const {
        const std::string place = placeText(GetParam(), mark, function);
        const std::string line = ownPlaceIn(text);
        EXPECT_TRUE(contains(line, place)) << text << "expected: " << place;
        EXPECT_EQ(contains(text, "    hint:  Compile the add-on with -g"), !hasLines(GetParam())) << text;
    }
};

struct Way {
    const char* name;  // of the command, and of the mark
    const char* function;
    const char* signal;
    const char* fault;  // empty if the signal has no address
};

const Way kWays[] = {
    {"segv", "writeToBadAddress", "SIGSEGV (Segmentation fault)", "    fault: address 0x10: nothing is mapped there\n"},
    {"null-call", "callNothing", "SIGSEGV (Segmentation fault)", "    fault: address 0: nothing is mapped there\n"},
    {"divide", "divideByZero", "SIGFPE (Floating point exception)", ": an integer was divided by zero\n"},
    {"abort", "abortHere", "SIGABRT (Aborted)", ""},
    {"throw", "throwHere", "SIGABRT (Aborted)", "what():  nobody catches this\n"},
    {"smash", "smashStack", "SIGSEGV (Segmentation fault)", ": nothing is mapped there\n"},
};

TEST_P(CrashOf, NamesTheLineOfTheAddOn) {
    for (const Way& way : kWays) {
        SCOPED_TRACE(way.name);
        const ProgramResult result = run(way.name, GetParam());
        EXPECT_EQ(result.status, 5);
        EXPECT_TRUE(contains(result.err, std::string("ended the process: ") + way.signal)) << result.err;
        EXPECT_TRUE(contains(result.err, way.fault)) << result.err;
        expectPlace(result.err, way.name, way.function);
    }
}

TEST_P(CrashOf, NamesTheLineOfAHang) {
    const ProgramResult result = run("hang", GetParam(), {"--timeout", "0.2"});
    EXPECT_EQ(result.status, 4);
    expectPlace(result.err, "hang", "waitForever");
}

TEST_P(CrashOf, ShowsTheStacksOfAllThreadsOfAHang) {
    const ProgramResult result = run("hang-twice", GetParam(), {"--timeout", "0.2"});
    expectPlace(result.err, "hang", "waitForever");
    const std::size_t other = result.err.find("    stack of thread ");
    ASSERT_NE(other, std::string::npos) << result.err;
    EXPECT_TRUE(contains(result.err.substr(other), placeText(GetParam(), "spin", "spin"))) << result.err;
}

TEST_P(CrashOf, ShowsTheThreadThatCrashed) {
    const ProgramResult result = run("thread", GetParam());
    expectPlace(result.err, "segv", "writeToBadAddress");
    EXPECT_TRUE(contains(result.err, "    stack of thread ")) << result.err;
    EXPECT_FALSE(contains(result.err, "    stack:\n")) << "the first thread only waits";
}

INSTANTIATE_TEST_SUITE_P(Compiled, CrashOf, testing::ValuesIn(kCrashingAddOns),
                         [](const auto& test) { return testNameOf(test.param); });

TEST_F(Crash, IsNoneIfTheAddOnHandlesTheSignal) {
    const ProgramResult result = run("handle", addOnWithLines());
    EXPECT_EQ(result.status, 5);
    EXPECT_EQ(
        withoutDebugLines(result.err),
        "m.macro:1: CRASHING: error: \"CRASHING handle\" ended the process: exit status 42; it made no host call\n");
    EXPECT_EQ(run("survive", addOnWithLines()).status, 0);
}

TEST_F(Crash, OfADeepStackShowsAFewFramesAndCountsTheOthers) {
    const std::string text = run("overflow", addOnWithLines()).err;
    EXPECT_TRUE(contains(text, "in crashing::recurse\n")) << text;
    EXPECT_TRUE(contains(text, "           #15 ")) << text;
    EXPECT_FALSE(contains(text, "           #16 ")) << text;
    const std::size_t more = text.find("           and ");
    ASSERT_NE(more, std::string::npos) << text;
    EXPECT_GT(std::stoul(text.substr(text.find_first_of("0123456789", more))), 1000U) << text;
}

TEST_F(Crash, IsReadAgainAndAgain) {
    for (int i = 0; i != 30; ++i) {
        const ProgramResult result = run("thread", addOnWithLines());
        ASSERT_TRUE(contains(result.err, placeText(addOnWithLines(), "segv", "writeToBadAddress"))) << result.err;
    }
}

TEST_F(Crash, IsToldWithoutAStackIfTheSystemPermitsNoTracing) {
    Program refused = program("segv", addOnWithLines());
    refused.arguments.insert(refused.arguments.begin(), {REFUSING_SYSTEM, "ptrace", "--"});
    const ProgramResult result = runProgram(refused);
    EXPECT_EQ(result.status, 5);
    EXPECT_EQ(
        withoutDebugLines(result.err),
        "m.macro:1: CRASHING: error: \"CRASHING segv\" ended the process: SIGSEGV (Segmentation fault); it made no "
        "host call\n"
        "    stack: unknown: the system does not permit the runner to trace the process: Operation not "
        "permitted\n");
}

TEST_F(Crash, InATestOfMacrosHasItsStackInTheReportOfTheTest) {
    const ProgramResult result =
        runProgram(program("segv", addOnWithLines(), "test", {"--junit", "j.xml", "--sarif", "s.sarif"}));
    const std::string place = placeText(addOnWithLines(), "segv", "writeToBadAddress");
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.out, place)) << result.out;
    EXPECT_TRUE(contains(read("j.xml"), place)) << read("j.xml");
    EXPECT_TRUE(contains(read("s.sarif"), "CrashingAddOn.cpp"));
}

TEST_F(Crash, InATestOfMacrosHasTheStacksOfAHang) {
    const ProgramResult result =
        runProgram(program("hang", addOnWithLines(), "test", {"--timeout", "0.2", "--junit", "j.xml"}));
    const std::string place = placeText(addOnWithLines(), "hang", "waitForever");
    EXPECT_TRUE(contains(result.out, place)) << result.out;
    EXPECT_TRUE(contains(read("j.xml"), place)) << read("j.xml");
}

TEST_F(Crash, InACheckHasItsStack) {
    write("m.macro", "CRASHING segv\n");
    const ProgramResult result =
        runProgram(runner({"check", addOnWithLines(), "--macro", "m.macro", "--only", "commands-in-order"}));
    EXPECT_TRUE(contains(result.out, placeText(addOnWithLines(), "segv", "writeToBadAddress"))) << result.out;
}

TEST_F(Crash, InTheConsoleHasItsStack) {
    Program console = runner({"repl", "--addon", addOnWithLines()});
    console.input = "CRASHING segv\n";
    const ProgramResult result = runProgram(console);
    EXPECT_EQ(result.status, 5);
    EXPECT_TRUE(contains(result.err, placeText(addOnWithLines(), "segv", "writeToBadAddress"))) << result.err;
}

void expectStacks(const json& stacks, const std::string& mark, const std::string& function) {
    const json& at = stacks.at("at");
    EXPECT_EQ(at.at("line"), lineOf(mark)) << at;
    EXPECT_EQ(at.at("file"), CRASHING_SOURCE);
    EXPECT_EQ(at.at("function"), "crashing::" + function + "()");
    EXPECT_EQ(at.at("object"), std::filesystem::canonical(addOnWithLines()).string());
    EXPECT_GT(stacks.at("threads").at(0).at("frames").size(), 3U);
    EXPECT_EQ(stacks.at("problem"), "");
}

TEST_F(Crash, HasItsStackInTheResults) {
    run("segv", addOnWithLines(), {"--json", "r.jsonl"});
    const json stacks = lastResult().at("stacks");
    expectStacks(stacks, "segv", "writeToBadAddress");
    EXPECT_EQ(stacks.at("signal"), SIGSEGV);
    EXPECT_EQ(stacks.at("fault"), "address 0x10: nothing is mapped there");
    const json command = json::parse(read("r.jsonl").substr(0, read("r.jsonl").find('\n')));
    EXPECT_EQ(command.at("stacks"), stacks);
}

TEST_F(Crash, HasTheStacksOfAHangInTheResults) {
    run("hang-twice", addOnWithLines(), {"--json", "r.jsonl", "--timeout", "0.2"});
    const json stacks = lastResult().at("stacks");
    expectStacks(stacks, "hang", "waitForever");
    EXPECT_EQ(stacks.at("signal"), 0);
    EXPECT_EQ(stacks.at("threads").size(), 2U);
}

TEST_F(Crash, IsInTheTraceAndTheFirstFindingOfItsReport) {
    run("segv", addOnWithLines(), {"--trace", "t.json"});
    const std::string trace = read("t.json");
    const json event = json::parse(trace.substr(trace.rfind('\n') + 1));
    EXPECT_EQ(event.at("cat"), "crash");
    EXPECT_EQ(event.at("args").at("signal"), SIGSEGV);
    EXPECT_EQ(event.at("args").at("source").at("line"), lineOf("segv"));
    EXPECT_EQ(runProgram(runner({"report", "t.json", "-o", "t.html"})).status, 0);
    EXPECT_TRUE(contains(read("t.html"), placeText(addOnWithLines(), "segv", "writeToBadAddress")));
    EXPECT_EQ(runProgram(runner({"diff", "t.json", "t.json"})).status, 0);
    EXPECT_EQ(runProgram(runner({"coverage", "t.json"})).status, 0);
}

TEST_F(Crash, PutsTheLineOfTheSourceIntoSarif) {
    for (const std::string way : {"segv", "hang"}) {
        SCOPED_TRACE(way);
        run(way, addOnWithLines(), {"--sarif", "s.sarif", "--timeout", "0.2"});
        const json result = json::parse(read("s.sarif")).at("runs").at(0).at("results").at(0);
        const json place = result.at("locations").at(0).at("physicalLocation");
        EXPECT_EQ(place.at("region").at("startLine"), lineOf(way)) << result;
        EXPECT_TRUE(contains(place.at("artifactLocation").at("uri"), "CrashingAddOn.cpp")) << result;
        const json other = result.at("relatedLocations").at(0).at("physicalLocation");
        EXPECT_EQ(other.at("artifactLocation").at("uri"), "m.macro") << result;
        EXPECT_EQ(other.at("region").at("startLine"), 1) << result;
    }
}

TEST_F(Crash, LeavesTheMacroAsThePlaceInSarifWithoutDebugInformation) {
    const auto* const plain = std::find_if_not(std::begin(kCrashingAddOns), std::end(kCrashingAddOns), hasLines);
    run("segv", *plain, {"--sarif", "s.sarif"});
    const json result = json::parse(read("s.sarif")).at("runs").at(0).at("results").at(0);
    EXPECT_EQ(result.at("locations").at(0).at("physicalLocation").at("artifactLocation").at("uri"), "m.macro");
}

}  // namespace
}  // namespace vexa::e2e
