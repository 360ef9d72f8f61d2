#include <cstdlib>

#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

// `vexa-standin test --budget` with the macro t/m.macro.
class Budget : public RunnerTest {
protected:
    Budget() { std::filesystem::create_directory(folder() / "t"); }

    void SetUp() override {
        if (VEXA_IS_SANITIZED) GTEST_SKIP() << "a sanitizer has its own allocator";
    }

    Program tester(const std::vector<std::string>& options = {}) const {
        Program program = runner({"test", "t", "--addon", ADDON_COSTLY, "--budget"});
        program.arguments.insert(program.arguments.end(), options.begin(), options.end());
        return program;
    }
    ProgramResult test(const std::vector<std::string>& options = {}) const { return runProgram(tester(options)); }
    // The budget of a macro after it was accepted.
    std::string accepted(const std::string& macro) const {
        write("t/m.macro", macro);
        const ProgramResult result = test({"--accept"});
        EXPECT_EQ(result.status, 0) << result.out << result.err;
        return read("t/m.budget");
    }
    static std::string costs(const std::string& command, int calls, int allocations, int bytes) {
        return "> COSTLY " + command + "\n  host calls: " + std::to_string(calls) +
               "\n  allocations: " + std::to_string(allocations) + "\n  peak bytes: " + std::to_string(bytes) + '\n';
    }
};

TEST_F(Budget, HasWhatEachCommandCosts) {
    EXPECT_EQ(accepted("COSTLY BLOCKS 3 SIZE 100\nCOSTLY CALLS 7\n"),
              costs("BLOCKS 3 SIZE 100", 0, 3, 300) + costs("CALLS 7", 7, 0, 0));
    EXPECT_EQ(test().out, "passed t/m.macro\n1 of 1 macros passed\n");
}

TEST_F(Budget, CountsEachFunctionThatAllocates) { EXPECT_EQ(accepted("COSTLY EACHWAY\n"), costs("EACHWAY", 0, 9, 64)); }

TEST_F(Budget, OmitsWhatTheHostAllocates) {
    EXPECT_EQ(accepted("COSTLY HOSTSTRING\nCOSTLY CALLS 1000\n"),
              costs("HOSTSTRING", 2, 0, 0) + costs("CALLS 1000", 1000, 0, 0));
}

TEST_F(Budget, OmitsThreadsOfTheAddOn) {
    const std::string once = accepted("COSTLY THREAD 100\nCOSTLY THREAD 100\n");
    const std::string again = accepted("COSTLY THREAD 100\nCOSTLY THREAD 10000\n");
    const std::size_t second = once.find("> COSTLY", 1);
    EXPECT_EQ(once.substr(once.find('\n', second)), again.substr(again.find('\n', second)));
}

TEST_F(Budget, SeesMemoryThatAnotherThreadReleases) {
    const std::string budget = accepted("COSTLY FREEELSEWHERE\nCOSTLY FREEELSEWHERE\n");
    const std::string last = budget.substr(budget.rfind("peak bytes: "));
    EXPECT_LT(std::atoi(last.c_str() + std::string("peak bytes: ").size()), 200) << budget;
}

TEST_F(Budget, StartsEachCommandWithoutTheMemoryOfOthers) {
    EXPECT_EQ(accepted("COSTLY KEEP 1000\nCOSTLY KEEP 10\n"),
              costs("KEEP 1000", 0, 1, 1000) + costs("KEEP 10", 0, 1, 10));
}

TEST_F(Budget, IsTheSameWithOtherOptions) {
    const std::string budget = accepted("COSTLY BLOCKS 3 SIZE 100\nCOSTLY EACHWAY\nCOSTLY THREAD 7\nCOSTLY CALLS 7\n");
    for (const std::vector<std::string>& options : std::vector<std::vector<std::string>>{{},
                                                                                         {"--calls"},
                                                                                         {"--coverage", "c.json"},
                                                                                         {"--jobs", "3"},
                                                                                         {"--strict"},
                                                                                         {"--timeout", "60"},
                                                                                         {"--batch"}}) {
        std::vector<std::string> accepting = options;
        accepting.emplace_back("--accept");
        EXPECT_EQ(test(accepting).status, 0);
        EXPECT_EQ(read("t/m.budget"), budget) << (options.empty() ? "" : options.front());
    }
}

TEST_F(Budget, FailsWhenACommandCostsMore) {
    accepted("COSTLY BLOCKS 3 SIZE 100\nCOSTLY CALLS 7\n");
    write("t/m.budget", costs("BLOCKS 3 SIZE 100", 0, 2, 310) + costs("CALLS 7", 5, 0, 0));
    const ProgramResult result = test();
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out,
              "failed t/m.macro: it exceeds t/m.budget; --accept saves the new costs\n"
              "> COSTLY BLOCKS 3 SIZE 100\n"
              "  allocations: 3, 1 more than 2\n"
              "  peak bytes: 300, 10 less than 310\n"
              "> COSTLY CALLS 7\n"
              "  host calls: 7, 2 more than 5\n"
              "0 of 1 macros passed\n");
    EXPECT_EQ(test({"--accept"}).status, 0);
    EXPECT_EQ(test().out, "passed t/m.macro\n1 of 1 macros passed\n");
}

TEST_F(Budget, TellsWhenACommandCostsLess) {
    accepted("COSTLY BLOCKS 3 SIZE 100\n");
    write("t/m.budget", costs("BLOCKS 3 SIZE 100", 0, 4, 300));
    const ProgramResult result = test();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out,
              "passed t/m.macro: it costs less than t/m.budget; --accept saves the new costs\n"
              "> COSTLY BLOCKS 3 SIZE 100\n  allocations: 3, 1 less than 4\n1 of 1 macros passed\n");
}

TEST_F(Budget, FailsForOtherCommands) {
    accepted("COSTLY CALLS 1\n");
    write("t/m.budget", costs("CALLS 2", 2, 0, 0));
    const ProgramResult result = test();
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out,
              "failed t/m.macro: its commands are not those of t/m.budget; --accept saves the new costs\n"
              "@@ line 1 @@\n- > COSTLY CALLS 2\n+ > COSTLY CALLS 1\n0 of 1 macros passed\n");
}

TEST_F(Budget, FailsWithoutItsFileOrWithALineThatIsWrong) {
    accepted("COSTLY CALLS 1\n");
    write("t/m.budget", "> COSTLY CALLS 1\n  host calls: many\n");
    EXPECT_NE(test().out.find("failed t/m.macro: t/m.budget:2: this is not a line of a budget here"),
              std::string::npos);
    std::filesystem::remove(folder() / "t/m.budget");
    const ProgramResult result = test();
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.out.find("there is no t/m.budget; --accept writes it\n"), std::string::npos) << result.out;
    EXPECT_EQ(runProgram(runner({"test", "t", "--addon", ADDON_COSTLY})).status, 0);
}

TEST_F(Budget, HidesItsLibraryFromTheAddOns) {
    write("t/m.macro", "COSTLY PRELOADED\n");
    write("t/m.expected", "> COSTLY PRELOADED\n  nothing\n");
    EXPECT_EQ(test({"--accept"}).out, "passed t/m.macro: accepted\n1 of 1 macros passed\n");
    EXPECT_EQ(read("t/m.expected"), "> COSTLY PRELOADED\n  nothing\n");
}

TEST_F(Budget, IsRefusedInOneProcess) {
    const ProgramResult result = test({"--in-process"});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("--budget cannot be used with --in-process: each macro needs a process of its own"),
              std::string::npos)
        << result.err;
}

TEST(BudgetUnderASanitizer, IsRefused) {
    const tests::TemporaryFolder where;
    Program program{{VEXA_STANDIN, "test", ".", "--addon", ADDON_COSTLY, "--budget"}, where.path(), "", false};
    if (!VEXA_IS_SANITIZED) program.arguments.insert(program.arguments.begin(), {"env", "LD_PRELOAD=" ASAN_RUNTIME});
    const ProgramResult result = runProgram(program);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err,
              "vexa-standin: error: --budget: a sanitizer has an allocator of its own, whose allocations cannot be "
              "counted\n");
}

}  // namespace
}  // namespace vexa::e2e
