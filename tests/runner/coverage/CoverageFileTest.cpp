#include "coverage/CoverageFile.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <iterator>

#include "support/TemporaryFolder.h"
#include "system/files/OutputTarget.h"

namespace vexa::runner {
namespace {

Coverage someCoverage() {
    Coverage coverage;
    coverage.commands["ONE A"] = {{kAccepted}, {"FILE"}, {{"VexaUtilStringAlloc", {"handle", "null"}}}};
    coverage.commands["ONE \"B\""].calls["VexaUtilLockStart"];
    coverage.rules = {"leaked-string"};
    return coverage;
}

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(CoverageFile, KeepsEveryFact) {
    const std::string text = coverageText(someCoverage());
    const Coverage coverage = coverageIn(text, "c.json");
    EXPECT_EQ(coverageText(coverage), text);
    EXPECT_EQ(coverage.commands.at("ONE A").calls.at("VexaUtilStringAlloc"), (Names{"handle", "null"}));
    EXPECT_EQ(coverage.commands.at("ONE A").ends, Names{kAccepted});
    EXPECT_EQ(coverage.commands.at("ONE A").options, Names{"FILE"});
    EXPECT_EQ(coverage.commands.count("ONE \"B\""), 1U);
    EXPECT_EQ(coverage.rules, Names{"leaked-string"});
}

TEST(CoverageFile, OfAnotherFormIsRefused) {
    const char* const texts[] = {
        "",
        "{",
        "{}",
        "[]",
        R"({"format": "vexa-standin coverage 2"})",
        R"({"format": 1})",
        R"({"format": "vexa-standin coverage 1", "rules": {}})",
        R"({"format": "vexa-standin coverage 1", "rules": [1]})",
        R"({"format": "vexa-standin coverage 1", "commands": []})",
        R"({"format": "vexa-standin coverage 1", "commands": {"ONE A": {"calls": ["VexaUtilLockStart"]}}})",
    };
    for (const char* const text : texts) EXPECT_THROW(coverageIn(text, "c.json"), CoverageError) << text;
    EXPECT_NO_THROW(coverageIn(R"({"format": "vexa-standin coverage 1", "later": [1]})", "c.json"));
}

TEST(CoverageFile, GrowsWithEachRun) {
    const tests::TemporaryFolder folder;
    const std::string path = folder.path("c.json");
    addToCoverageFile(path, someCoverage());
    EXPECT_EQ(contentOf(path), coverageText(someCoverage()));
    Coverage more;
    more.rules = {"leaked-set"};
    addToCoverageFile(path, more);
    EXPECT_EQ(coverageIn(contentOf(path), path).rules, (Names{"leaked-set", "leaked-string"}));
    EXPECT_EQ(coverageIn(contentOf(path), path).commands.size(), 2U);
}

TEST(CoverageFile, DoesNotReplaceAnotherFile) {
    const tests::TemporaryFolder folder;
    const std::string path = folder.write("notes", "keep me\n");
    EXPECT_THROW(checkCoverageFile(path), OutputError);
    EXPECT_THROW(addToCoverageFile(path, someCoverage()), OutputError);
    EXPECT_EQ(contentOf(path), "keep me\n");
    EXPECT_NO_THROW(checkCoverageFile(folder.path("new")));
    EXPECT_NO_THROW(checkCoverageFile(folder.write("empty", "")));
}

TEST(CoverageFile, LosesNothingWhenProcessesWriteAtOnce) {
    constexpr int kProcesses = 8;
    constexpr int kFactsOfEach = 5;
    const tests::TemporaryFolder folder;
    const std::string path = folder.path("c.json");
    for (int process = 0; process != kProcesses; ++process) {
        if (fork() != 0) continue;
        for (int fact = 0; fact != kFactsOfEach; ++fact) {
            Coverage coverage;
            coverage.rules = {std::to_string(process) + '-' + std::to_string(fact)};
            addToCoverageFile(path, coverage);
        }
        _exit(0);
    }
    for (int process = 0; process != kProcesses; ++process) {
        int status = -1;
        wait(&status);
        EXPECT_EQ(status, 0);
    }
    EXPECT_EQ(coverageIn(contentOf(path), path).rules.size(), std::size_t{kProcesses * kFactsOfEach});
}

}  // namespace
}  // namespace vexa::runner
