// The stack of an add-on that crashes or does not return in another host, under attach. The hosts are those in
// tests/other-host.

#include <csignal>

#include "CrashingAddOns.h"
#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

using Words = std::vector<std::string>;

class AttachCrash : public RunnerTest {
protected:
    /// `HOST --addon ADDON m.macro`, where m.macro has the command \p way of the add-on.
    Words host(const std::string& way, const std::string& addOn = addOnWithLines(),
               const char* host = OTHER_HOST) const {
        write("m.macro", "CRASHING " + way + '\n');
        return {host, "--addon", addOn, "m.macro"};
    }
    ProgramResult attach(const Words& program, const Words& options = {}) const {
        Words words = {"attach"};
        words.insert(words.end(), options.begin(), options.end());
        words.emplace_back("--");
        words.insert(words.end(), program.begin(), program.end());
        return runProgram(runner(words));
    }
};

class AttachCrashOf : public AttachCrash, public testing::WithParamInterface<const char*> {
protected:
    static void expectPlace(const std::string& text, const std::string& mark, const std::string& function) {
        const std::string place = placeText(GetParam(), mark, function);
        EXPECT_TRUE(contains(ownPlaceIn(text), place)) << text << "expected: " << place;
        EXPECT_EQ(contains(text, "    hint:  Compile the add-on with -g"), !hasLines(GetParam())) << text;
    }
};

struct Way {
    const char* name;  // of the command, and of the mark
    const char* function;
    int signal;
    const char* fault;
};

const Way kWays[] = {
    {"segv", "writeToBadAddress", SIGSEGV, "    fault: address 0x10: nothing is mapped there\n"},
    {"null-call", "callNothing", SIGSEGV, "    fault: address 0: nothing is mapped there\n"},
    {"divide", "divideByZero", SIGFPE, ": an integer was divided by zero\n"},
};

TEST_P(AttachCrashOf, NamesTheLineOfTheAddOn) {
    for (const Way& way : kWays) {
        SCOPED_TRACE(way.name);
        for (const char* const program : {OTHER_HOST, OTHER_HOST_SHARED}) {
            const ProgramResult result = attach(host(way.name, GetParam(), program));
            EXPECT_EQ(result.status, 128 + way.signal);
            const std::string message = "vexa-standin: the program was ended by signal " + std::to_string(way.signal);
            EXPECT_TRUE(contains(result.err, message)) << result.err;
            const std::string work = "\n    in command 1, \"CRASHING " + std::string(way.name) + "\"\n    at:    ";
            EXPECT_TRUE(contains(result.err, work)) << result.err;
            EXPECT_TRUE(contains(result.err, way.fault)) << result.err;
            expectPlace(result.err, way.name, way.function);
        }
    }
}

TEST_P(AttachCrashOf, NamesTheLineOfAHang) {
    const ProgramResult result = attach(host("hang", GetParam()), {"--timeout", "0.5"});
    EXPECT_EQ(result.status, 4);
    EXPECT_TRUE(contains(result.err,
                         "command 1: CRASHING: error: \"CRASHING hang\" has not returned within 0.5 seconds "
                         "[command-timeout]\n"))
        << result.err;
    expectPlace(result.err, "hang", "waitForever");
}

INSTANTIATE_TEST_SUITE_P(Compiled, AttachCrashOf, testing::ValuesIn(kCrashingAddOns),
                         [](const auto& test) { return testNameOf(test.param); });

TEST_F(AttachCrash, ShowsTheStacksOfAllThreadsOfAHang) {
    const ProgramResult result = attach(host("hang-twice"), {"--timeout", "0.5"});
    const std::size_t other = result.err.find("    stack of thread ");
    ASSERT_NE(other, std::string::npos) << result.err;
    EXPECT_TRUE(contains(result.err.substr(other), placeText(addOnWithLines(), "spin", "spin"))) << result.err;
}

TEST_F(AttachCrash, ShowsTheThreadThatCrashed) {
    const ProgramResult result = attach(host("thread"));
    EXPECT_TRUE(contains(ownPlaceIn(result.err), placeText(addOnWithLines(), "segv", "writeToBadAddress")))
        << result.err;
    EXPECT_TRUE(contains(result.err, "    stack of thread ")) << result.err;
}

TEST_F(AttachCrash, ShowsTheWholeStackOnRequest) {
    EXPECT_FALSE(contains(attach(host("segv")).err, "callGuarded+")) << "the function of the host";
    EXPECT_TRUE(contains(attach(host("segv"), {"--stacks"}).err, "callGuarded+"));
}

TEST_F(AttachCrash, IsInTheTrace) {
    attach(host("segv"), {"--trace", "t.json"});
    const std::string trace = read("t.json");
    EXPECT_TRUE(contains(trace, "\"cat\":\"crash\"")) << trace;
    EXPECT_TRUE(contains(trace, placeText(addOnWithLines(), "segv", "writeToBadAddress"))) << trace;
    EXPECT_EQ(runProgram(runner({"report", "t.json", "-o", "t.html"})).status, 0);
}

TEST_F(AttachCrash, OfAHostThatAScriptStartsHasItsStack) {
    std::string line;
    for (const std::string& word : host("segv")) line += word + ' ';
    const ProgramResult result = attach({"sh", "-c", line + "; exit 7"});
    EXPECT_EQ(result.status, 7);
    EXPECT_TRUE(contains(result.err, "vexa-standin: a process of the program was ended by signal 11")) << result.err;
    EXPECT_TRUE(contains(ownPlaceIn(result.err), placeText(addOnWithLines(), "segv", "writeToBadAddress")))
        << result.err;
}

TEST_F(AttachCrash, EndsOnlyTheHostThatExceedsTheTimeLimit) {
    std::string line;
    for (const std::string& word : host("hang")) line += word + ' ';
    const ProgramResult result = attach({"sh", "-c", line + "; echo $?"}, {"--timeout", "0.5"});
    EXPECT_EQ(result.out, std::to_string(128 + SIGKILL) + '\n');
    EXPECT_EQ(result.status, 4);
}

TEST_F(AttachCrash, IsNoneIfTheAddOnHandlesTheSignal) {
    const ProgramResult handled = attach(host("handle"));
    EXPECT_EQ(handled.status, 42);
    EXPECT_EQ(handled.err, "");
    EXPECT_EQ(attach(host("nothing"), {"--timeout", "5"}).status, 0);
}

TEST_F(AttachCrash, IsToldWithoutAStackIfTheSystemPermitsNoTracing) {
    Words program = {"attach", "--"};
    for (const std::string& word : host("segv")) program.push_back(word);
    Program refused = runner(program);
    refused.arguments.insert(refused.arguments.begin(), {REFUSING_SYSTEM, "ptrace", "--"});
    const ProgramResult result = runProgram(refused);
    EXPECT_EQ(result.status, 128 + SIGSEGV);
    EXPECT_EQ(result.err,
              "vexa-standin: the program was ended by signal 11 (Segmentation fault)\n"
              "    in command 1, \"CRASHING segv\"\n"
              "    stack: unknown: the system does not permit the runner to trace the process: Operation not "
              "permitted\n");
}

#ifdef LEAK_CHECKED_HOST_SHARED
TEST_F(AttachCrash, LeavesAHostWithTheLeakSanitizerAlone) {
    for (const char* const program : {LEAK_CHECKED_HOST_SHARED, LEAK_CHECKED_HOST_STATIC}) {
        const ProgramResult good = attach(host("nothing", addOnWithLines(), program));
        EXPECT_EQ(good.status, 0);
        EXPECT_EQ(good.err, "");
        Words words = host("segv", addOnWithLines(), program);
        words.insert(words.begin(), {"env", "ASAN_OPTIONS=handle_segv=0"});
        const ProgramResult result = attach(words);
        EXPECT_EQ(result.status, 128 + SIGSEGV);
        EXPECT_TRUE(contains(result.err, "    stack: unknown: the leak sanitizer does not work in a traced process\n"))
            << result.err;
    }
}
#endif

}  // namespace
}  // namespace vexa::e2e
