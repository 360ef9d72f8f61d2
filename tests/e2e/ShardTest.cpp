#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

class Shards : public RunnerTest {
protected:
    Shards() {
        std::string list;
        for (const char* name : {"a", "b", "c", "d", "e"}) {
            write(name + std::string(".macro"), std::string("ONE ECHO ") + name + '\n');
            list += name + std::string(".macro\n");
        }
        write("list.txt", list);
    }

    ProgramResult run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "run");
        arguments.insert(arguments.end(), {"--addon", ADDON_ONE});
        return runProgram(runner(std::move(arguments)));
    }
};

TEST_F(Shards, RunEachFileOfAListOnce) {
    EXPECT_EQ(run({"@list.txt"}).out, "a\nb\nc\nd\ne\n");
    EXPECT_EQ(run({"@list.txt", "--shard", "1/3"}).out, "a\nd\n");
    EXPECT_EQ(run({"@list.txt", "--shard", "2/3"}).out, "b\ne\n");
    const ProgramResult last = run({"@list.txt", "--shard", "3/3"});
    EXPECT_EQ(last.out, "c\n");
    EXPECT_EQ(last.err, "vexa-standin: 1 macro files run, 0 failed\n") << "a shard of one file is a shard";
}

TEST_F(Shards, CountTheFilesOfListsAndNamesTogether) {
    EXPECT_EQ(run({"e.macro", "@list.txt", "a.macro", "--shard", "2/2"}).out, "a\nc\ne\n");
}

TEST_F(Shards, MayBeEmpty) {
    const ProgramResult result = run({"@list.txt", "--shard", "6/6", "--json", "r.jsonl"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err,
              "vexa-standin: shard 6/6 is empty, because 5 macro files were given\n"
              "vexa-standin: 0 macro files run, 0 failed\n");
    EXPECT_EQ(read("r.jsonl"), "");
}

TEST_F(Shards, AreRefusedWithBadNumbers) {
    const ProgramResult result = run({"@list.txt", "--shard", "6/5"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err,
              "vexa-standin: --shard: expected I/N, the shard I of N, with I from 1 to N: for example 2/20\n"
              "run 'vexa-standin run --help' for the usage\n");
}

TEST_F(Shards, RefuseWhatWorksWithOneFileOnly) {
    write("one.txt", "a.macro\n");
    for (const char* macro : {"@one.txt", "a.macro"}) {
        const ProgramResult result = run({macro, "--shard", "1/1", "--record", "r.macro"});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err,
                  "vexa-standin: --record: works with one macro file only\n"
                  "run 'vexa-standin run --help' for the usage\n");
    }
}

TEST_F(Shards, ReadAListFromTheStandardInput) {
    Program program = runner({"run", "@-", "--shard", "2/2", "--addon", ADDON_ONE});
    program.input = "a.macro\nb.macro\n";
    EXPECT_EQ(runProgram(program).out, "b\n");
}

TEST_F(Shards, DoNotRunWithoutTheirList) {
    const ProgramResult result = run({"a.macro", "@none.txt"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "none.txt: cannot be read: No such file or directory\n");
}

TEST_F(Shards, DoNotReplaceTheirList) {
    const ProgramResult result = run({"@list.txt", "--json", "list.txt"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "list.txt: cannot be written: the command also uses it as list.txt\n");
}

}  // namespace
}  // namespace vexa::e2e
