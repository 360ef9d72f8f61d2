// What is hard to watch: the program goes on as it does without the layer, and the layer sees what happened.

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>
#include <vector>

#include "RunProgram.h"
#include "support/TemporaryFolder.h"

namespace vexa::layer {
namespace {

using Lines = std::vector<std::string>;
using e2e::ProgramResult;

class StrangeHost : public ::testing::Test {
protected:
    ProgramResult run(const Lines& commands) const { return start({}, commands); }
    ProgramResult attach(const Lines& commands, Lines options = {}) const {
        options.insert(options.begin(), {VEXA_STANDIN, "attach"});
        options.emplace_back("--");
        return start(options, commands);
    }

    /// The rules of the findings that \p result shows, in their order.
    static Lines rulesIn(const ProgramResult& result) {
        static const std::regex kFinding("(?:error|warning): .*\\[([a-z-]+)\\]");
        Lines rules;
        const std::sregex_iterator end;
        for (std::sregex_iterator found(result.err.begin(), result.err.end(), kFinding); found != end; ++found) {
            rules.push_back((*found)[1]);
        }
        return rules;
    }

    /// The rules of the findings in a host that asks for the function otherEntry.
    Lines rulesWithOtherEntry(const Lines& options) const {
        Lines words = {"env", "STRANGE_ENTRY=otherEntry", VEXA_STANDIN, "attach"};
        words.insert(words.end(), options.begin(), options.end());
        words.emplace_back("--");
        return rulesIn(start(words, {"lock"}));
    }

    std::string traceOf(const Lines& commands) const {
        attach(commands, {"--trace-text", "trace.txt"});
        std::ifstream file(m_folder.path("trace.txt"));
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    ProgramResult start(Lines words, const Lines& commands) const {
        words.insert(words.end(), {m_host, STRANGE_ADDON});
        words.insert(words.end(), commands.begin(), commands.end());
        return e2e::runProgram({words, m_folder.path(), "", false});
    }

    const tests::TemporaryFolder m_folder;

protected:
    const char* m_host = STRANGE_HOST;
};

// ---- As without the layer

class Unchanged : public StrangeHost, public ::testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(Layer, Unchanged,
                         ::testing::Values("ask", "errno", "floating-point", "signal-mask", "catch", "jump", "nested",
                                           "throw", "signals", "end-threads", "fork", "by-address", "lock", "exit",
                                           "crash", "load", "fail", "threads ask", "threads fail", "thread exit-thread",
                                           "close-all"));

TEST_P(Unchanged, IsWhatTheProgramPrintsAndItsStatus) {
    const ProgramResult plain = run({GetParam(), "ask"});
    const ProgramResult attached = attach({GetParam(), "ask"});
    EXPECT_NE(plain.out, "");
    EXPECT_EQ(attached.out, plain.out);
    EXPECT_EQ(attached.status, plain.status < 0 ? 128 - plain.status : plain.status);
}

TEST_P(Unchanged, IsWhatATracedProgramPrints) {
    const ProgramResult attached = attach({GetParam(), "ask"}, {"--trace-text", "/dev/null"});
    EXPECT_EQ(attached.out, run({GetParam(), "ask"}).out);
}

TEST_F(StrangeHost, ShowsThatTheThreadKeepsItsState) {
    EXPECT_EQ(attach({"errno"}).out, "errno: kept, the host's, done\n");
    EXPECT_EQ(attach({"floating-point"}).out, "floating-point: kept, the host's, done\n");
    EXPECT_EQ(attach({"signal-mask"}).out, "signal-mask: kept, done\n");
    EXPECT_EQ(attach({"end-threads"}).out, "end-threads: cancelled, done\n");
}

// ---- What the layer sees

TEST_F(StrangeHost, HasNoFindingForWhatIsAllowed) {
    for (const char* const command : {"ask", "errno", "floating-point", "signal-mask", "catch", "nested", "fork",
                                      "by-address", "fail", "threads ask", "threads fail", "close-all", "exit"}) {
        EXPECT_EQ(rulesIn(attach({command, "ask"})), Lines()) << command;
    }
}

TEST_F(StrangeHost, HasAFindingForAnExceptionThatLeavesTheAddOn) {
    EXPECT_EQ(rulesIn(attach({"throw"})), Lines{"escaped-exception"});
    EXPECT_EQ(rulesIn(attach({"throw", "ask", "throw"})), (Lines{"escaped-exception", "escaped-exception"}));
}

TEST_F(StrangeHost, HasAFindingForAJumpOfTheHostOverTheAddOn) {
    EXPECT_EQ(rulesIn(attach({"jump", "ask"})), Lines{"escaped-exception"});
}

TEST_F(StrangeHost, HasAFindingForAThreadThatEndsInTheAddOn) {
    EXPECT_EQ(rulesIn(attach({"thread exit-thread"})), Lines{"escaped-exception"});
}

TEST_F(StrangeHost, HasAFindingForACallOfAnotherThread) {
    EXPECT_EQ(rulesIn(attach({"end-threads"})), (Lines{"wrong-thread", "wrong-thread"}));
}

TEST_F(StrangeHost, KeepsTheFindingsThatPrecedeACrash) {
    const ProgramResult result = attach({"lock", "crash"});
    EXPECT_EQ(result.status, 128 + SIGSEGV);
    EXPECT_EQ(rulesIn(result), Lines{"unbalanced-lock"});
    EXPECT_NE(result.err.find("vexa-standin: the program was ended by signal 11 (Segmentation fault)\n"
                              "    in command 2, \"STRANGE crash\"\n"),
              std::string::npos)
        << result.err;
}

TEST_F(StrangeHost, KeepsTheFindingsAfterTheProgramHasClosedAllFiles) {
    EXPECT_EQ(rulesIn(attach({"close-all", "lock"})), Lines{"unbalanced-lock"});
}

TEST_F(StrangeHost, FindsWhatALibraryDoesThatACommandLoads) {
    EXPECT_EQ(rulesIn(attach({"load"})), (Lines{"null-handle", "unbalanced-lock"}));
}

TEST_F(StrangeHost, MayHaveAnotherKindOfHashTable) {
    m_host = STRANGE_HOST_SYSV;
    EXPECT_EQ(rulesIn(attach({"lock", "load"})), (Lines{"unbalanced-lock", "null-handle", "unbalanced-lock"}));
}

TEST_F(StrangeHost, MayAskForAnotherEntry) {
    EXPECT_EQ(rulesWithOtherEntry({"--entry", "otherEntry"}), Lines{"unbalanced-lock"});
    EXPECT_EQ(rulesWithOtherEntry({}), Lines());
}

TEST_F(StrangeHost, SeesCallsOfConstructorsAndByAddress) {
    const std::string trace = traceOf({"by-address"});
    EXPECT_EQ(trace,
              "# thread, then commands, and their calls of the host with arguments and results\n"
              "1  VexaUtilThreadMutexAlloc() = mutex#1\n"
              "1  VexaUtilThreadMutexDealloc(mutex#1)\n"
              "1  load test-addon-strange.so\n"
              "1    => loaded STRANGE\n"
              "1  command 1: STRANGE by-address\n"
              "1    VexaUtilLockStart(STRANGE)\n"
              "1    VexaUtilLockFinish(STRANGE)\n"
              "1    => accepted\n"
              "1  unload STRANGE\n"
              "1    => unloaded\n"
              "=> exit status 0: the program ended with status 0\n");
}

TEST_F(StrangeHost, ShowsInTheTraceThatACallThrew) {
    EXPECT_NE(traceOf({"catch"}).find("1    VexaUtilDialogErrMsg(\"throw\") threw\n"), std::string::npos);
}

TEST_F(StrangeHost, ShowsACommandWithinACommandInTheTrace) {
    EXPECT_NE(traceOf({"nested"})
                  .find("1  command 1: STRANGE nested\n"
                        "1    command 2: STRANGE ask\n"
                        "1        VexaUtilMacroIsBatchModeActive() = 1\n"
                        "1      => accepted\n"
                        "1    VexaUtilDialogErrMsg(\"command\")\n"
                        "1    => accepted\n"),
              std::string::npos)
        << traceOf({"nested"});
}

}  // namespace
}  // namespace vexa::layer
