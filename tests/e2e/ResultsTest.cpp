#include <sstream>

#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

class Results : public RunnerTest {
protected:
    Results() {
        write("a.macro", "ONE ECHO a\n");
        write("b.macro", "ONE FAIL no zone\n");
        write("c.macro", "ONE KILL now\n");
        write("list.txt", "a.macro\nb.macro\nc.macro\n");
    }

    ProgramResult runShard(const std::string& shard, const std::string& json, const std::string& coverage) const {
        return runProgram(runner(
            {"run", "@list.txt", "--shard", shard, "--addon", ADDON_ONE, "--json", json, "--coverage", coverage}));
    }

    void runShards() const {
        EXPECT_EQ(runShard("1/2", "1.jsonl", "1.json").status, 5);
        EXPECT_EQ(runShard("2/2", "2.jsonl", "2.json").status, 1);
    }

    ProgramResult merge(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "results");
        return runProgram(runner(std::move(arguments)));
    }

    // The output without the line with the time.
    static std::string withoutTime(const std::string& text) {
        std::istringstream lines(text);
        std::string rest;
        for (std::string line; std::getline(lines, line);) {
            if (line.find(" commands in ") == std::string::npos) rest += line + '\n';
        }
        return rest;
    }
};

TEST_F(Results, OfShardsAreThoseOfOneRun) {
    runShards();
    const ProgramResult result = merge({"1.jsonl", "2.jsonl", "--list", "list.txt"});
    EXPECT_EQ(result.status, 5);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(withoutTime(result.out),
              "3 macro files, 3 results: 1 succeeded, 2 failed\n"
              "0 macro files without a result, 0 with unexpected results\n"
              "    b.macro: a command failed\n"
              "    c.macro: an add-on ended its process (the process ended: SIGKILL (Killed))\n");
}

TEST_F(Results, TellWhatWasLostAndWhatWasRunTwice) {
    runShards();
    const ProgramResult result = merge({"2.jsonl", "2.jsonl", "--list", "list.txt"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(withoutTime(result.out),
              "3 macro files, 2 results: 0 succeeded, 2 failed\n"
              "2 macro files without a result, 1 with unexpected results\n"
              "    a.macro: no result: it was not run, or the runner was killed\n"
              "    b.macro: a command failed\n"
              "    b.macro: a command failed\n"
              "    b.macro: 2 results; it is in the list 1 time\n"
              "    c.macro: no result: it was not run, or the runner was killed\n");
}

TEST_F(Results, AreMergedIntoOneFile) {
    runShards();
    write("3.jsonl", R"({"place":"d.macro:1","accepted":true})");
    EXPECT_EQ(merge({"1.jsonl", "2.jsonl", "3.jsonl", "--json", "all.jsonl"}).status, 5);
    EXPECT_EQ(read("all.jsonl"), read("1.jsonl") + read("2.jsonl")) << "without what was cut off";
}

TEST_F(Results, MakeAJunitReport) {
    runShards();
    merge({"1.jsonl", "2.jsonl", "--junit", "r.xml"});
    const std::string report = read("r.xml");
    EXPECT_NE(report.find("tests=\"3\" failures=\"1\" errors=\"1\" skipped=\"0\""), std::string::npos) << report;
    EXPECT_NE(report.find("<failure message=\"a command failed\" type=\"exit status 1\">b.macro:1: no zone</failure>"),
              std::string::npos)
        << report;
}

TEST_F(Results, MergeTheCoverage) {
    runShards();
    const ProgramResult result = merge({"1.jsonl", "1.json", "2.json", "2.jsonl", "--coverage", "all.json"});
    EXPECT_EQ(result.status, 5);
    EXPECT_NE(result.out.find("\ncoverage of the contract: "), std::string::npos) << result.out;
    const ProgramResult expected = runProgram(runner({"coverage", "1.json", "2.json", "--json", "expected.json"}));
    ASSERT_EQ(expected.status, 0);
    EXPECT_EQ(read("all.json"), read("expected.json"));
    EXPECT_NE(read("all.json"), read("1.json")) << "both shards must count";
}

TEST_F(Results, NeedCoverageToWriteIt) {
    runShards();
    const ProgramResult result = merge({"1.jsonl", "--coverage", "all.json"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "--coverage: no input is a coverage file\n");
}

TEST_F(Results, OfForeignFilesAreRefusedAndNothingIsWritten) {
    runShards();
    write("notes.txt", "hello\n");
    write("r.xml", "old");
    write("all.jsonl", "old");
    const ProgramResult result = merge({"1.jsonl", "notes.txt", "--junit", "r.xml", "--json", "all.jsonl"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "notes.txt:1: this is not a line of 'run --json'\n");
    EXPECT_EQ(read("r.xml"), "old");
    EXPECT_EQ(read("all.jsonl"), "old");
}

TEST_F(Results, OfMissingFilesAreRefused) {
    const ProgramResult result = merge({"none.jsonl"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "none.jsonl: cannot be read: No such file or directory\n");
}

TEST_F(Results, AreReadFromTheStandardInput) {
    runShards();
    Program program = runner({"results", "-"});
    program.input = read("2.jsonl");
    EXPECT_EQ(withoutTime(runProgram(program).out),
              "1 macro files, 1 results: 0 succeeded, 1 failed\n"
              "0 macro files without a result\n"
              "    b.macro: a command failed\n");
}

// Memory holds the lines of one macro file and a summary, not the whole file.
TEST_F(Results, OfManyCommandsNeedLittleMemory) {
    if (VEXA_IS_SANITIZED != 0) GTEST_SKIP() << "sanitizers change the memory";
    constexpr int kFiles = 500;
    constexpr int kCommands = 1000;
    {
        std::ofstream file(folder() / "large.jsonl");
        for (int i = 0; i != kFiles; ++i) {
            for (int line = 1; line <= kCommands; ++line) {
                file << R"({"place":")" << i << ".macro:" << line << R"(","addOn":"STATS","command":")"
                     << std::string(50, 'x') << R"(","accepted":true,"error":"","seconds":0.001,"findings":[]})"
                     << '\n';
            }
            file << R"({"macroFile":")" << i << R"(.macro","exitStatus":0,"findings":[]})" << '\n';
        }
    }
    const ProgramResult result = merge({"large.jsonl", "--json", "all.jsonl"});
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.out.find("\n500000 commands in 500.0 s\n"), std::string::npos) << result.out;
    const auto size = std::filesystem::file_size(folder() / "large.jsonl");
    EXPECT_EQ(std::filesystem::file_size(folder() / "all.jsonl"), size);
    EXPECT_LT(static_cast<std::size_t>(result.peakKiB), size / 1024 / 2);
}

}  // namespace
}  // namespace vexa::e2e
