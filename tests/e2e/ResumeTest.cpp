#include <map>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>

#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

class Resume : public RunnerTest {
protected:
    // Writes COUNT macro files of two commands each, and their list.
    void writeMacros(int count) const {
        std::string list;
        for (int i = 0; i != count; ++i) {
            const std::string name = std::to_string(i) + ".macro";
            write(name, "ONE ECHO " + name + "\nONE SLEEP 2\n");
            list += name + '\n';
        }
        write("list.txt", list);
    }

    Program resumed(std::vector<std::string> options = {}) const {
        options.insert(options.begin(), {"run", "@list.txt", "--addon", ADDON_ONE, "--json", "r.jsonl", "--resume"});
        return runner(std::move(options));
    }

    // How many end lines each macro file has. A last line may be cut off; all others must be JSON.
    std::map<std::string, int> endsIn(const std::string& text) const {
        std::map<std::string, int> ends;
        for (std::size_t begin = 0, end = 0; (end = text.find('\n', begin)) != std::string::npos; begin = end + 1) {
            const auto line = nlohmann::json::parse(text.substr(begin, end - begin));
            if (line.contains("macroFile")) ++ends[line.at("macroFile")];
        }
        return ends;
    }
};

TEST_F(Resume, RunsWhatIsLeft) {
    writeMacros(3);
    write("1.macro", "ONE FAIL no\n");
    ASSERT_EQ(runProgram(runner({"run", "0.macro", "1.macro", "--addon", ADDON_ONE, "--json", "r.jsonl"})).status, 1);
    const std::string before = read("r.jsonl");
    write("r.jsonl", before + R"({"place":"2.mac)");
    const ProgramResult result = runProgram(resumed());
    EXPECT_EQ(result.out, "2.macro\n");
    EXPECT_EQ(result.err,
              "vexa-standin: 1 macro files run, 0 failed; 2 done before, 1 of them failed\n"
              "    1.macro: before: a command failed\n");
    EXPECT_EQ(result.status, 1) << "as one run would have";
    EXPECT_EQ(read("r.jsonl").substr(0, before.size()), before);
    EXPECT_EQ(endsIn(read("r.jsonl")), (std::map<std::string, int>{{"0.macro", 1}, {"1.macro", 1}, {"2.macro", 1}}));
}

TEST_F(Resume, RunsAllWithoutResultsAndNothingWithAllResults) {
    writeMacros(2);
    const ProgramResult first = runProgram(resumed());
    EXPECT_EQ(first.err, "vexa-standin: 2 macro files run, 0 failed; 0 done before, 0 of them failed\n");
    const std::string results = read("r.jsonl");
    const ProgramResult second = runProgram(resumed());
    EXPECT_EQ(second.status, 0);
    EXPECT_EQ(second.out, "");
    EXPECT_EQ(second.err, "vexa-standin: 0 macro files run, 0 failed; 2 done before, 0 of them failed\n");
    EXPECT_EQ(read("r.jsonl"), results);
}

// The number of milliseconds until the kill is random, so each run of the test kills at other moments.
TEST_F(Resume, LosesNothingAndRunsNothingTwiceAfterKills) {
    constexpr int kMacros = 200;
    writeMacros(kMacros);
    std::mt19937 random(std::random_device{}());
    std::map<std::string, int> before;
    int kills = 0;
    for (int i = 0; i != 60 && before.size() != kMacros; ++i) {
        Program program = resumed({"--jobs", "3"});
        const std::string seconds = "0." + std::to_string(std::uniform_int_distribution(1010, 1060)(random)).substr(1);
        program.arguments.insert(program.arguments.begin(), {"timeout", "--signal=KILL", seconds});
        if (runProgram(program).status < 0) ++kills;
        const std::map<std::string, int> after = endsIn(read("r.jsonl"));
        for (const auto& [file, count] : before) EXPECT_EQ(after.count(file), 1U) << file << " was lost";
        before = after;
    }
    EXPECT_GT(kills, 0);
    const ProgramResult last = runProgram(resumed());
    EXPECT_EQ(last.status, 0) << last.err;
    std::map<std::string, int> once;
    for (int i = 0; i != kMacros; ++i) once[std::to_string(i) + ".macro"] = 1;
    EXPECT_EQ(endsIn(read("r.jsonl")), once);
}

TEST_F(Resume, KeepsTheCoverageOfKilledRuns) {
    writeMacros(1);
    write("hang.macro", "ONE SLEEP 600000\n");
    write("list.txt", "0.macro\nhang.macro\n");
    Program program = resumed({"--coverage", "c.json"});
    const std::string killAfterResult =
        "touch r.jsonl; \"$@\" & until grep -q exitStatus r.jsonl; do sleep 0.01; done; kill -9 $!";
    program.arguments.insert(program.arguments.begin(), {"sh", "-c", killAfterResult, "sh"});
    ASSERT_EQ(runProgram(program).status, 0);
    EXPECT_EQ(endsIn(read("r.jsonl")), (std::map<std::string, int>{{"0.macro", 1}}));
    EXPECT_NE(read("c.json").find("\"ONE ECHO\""), std::string::npos) << read("c.json");
}

TEST_F(Resume, RefusesResultsOfAnotherShard) {
    writeMacros(4);
    ASSERT_EQ(runProgram(resumed({"--shard", "1/2"})).status, 0);
    const std::string results = read("r.jsonl");
    const ProgramResult result = runProgram(resumed({"--shard", "2/2"}));
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "r.jsonl: it has results of 0.macro, which this run does not include\n");
    EXPECT_EQ(read("r.jsonl"), results);
}

TEST_F(Resume, NeedsAFileOfResults) {
    writeMacros(1);
    const std::vector<std::vector<std::string>> refused = {
        {"run", "@list.txt", "--addon", ADDON_ONE, "--resume"},
        {"run", "@list.txt", "--addon", ADDON_ONE, "--resume", "--json", "-"}};
    for (const auto& arguments : refused) {
        const ProgramResult result = runProgram(runner(arguments));
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err,
                  "vexa-standin: --resume: needs --json FILE, the results so far\n"
                  "run 'vexa-standin run --help' for the usage\n");
    }
}

TEST_F(Resume, RefusesReportsThatWouldLackTheFilesDoneBefore) {
    writeMacros(1);
    const ProgramResult result = runProgram(resumed({"--sarif", "s.json"}));
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("--resume cannot be used with --sarif and --annotate"), std::string::npos) << result.err;
}

}  // namespace
}  // namespace vexa::e2e
