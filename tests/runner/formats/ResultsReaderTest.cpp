#include "formats/ResultsReader.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/TemporaryFolder.h"

namespace vexa::runner {
namespace {

const std::string kGood = R"({"place":"a.macro:1","addOn":"A","command":"X","accepted":true,"error":"","seconds":0.5})"
                          "\n";
const std::string kBad =
    R"({"place":"a.macro:2","addOn":"A","command":"Y","accepted":false,"error":"no\nzone","seconds":1})"
    "\n";
const std::string kEnd = R"({"macroFile":"a.macro","exitStatus":1,"findings":[]})"
                         "\n";
const std::string kOther = R"({"macroFile":"b.macro","exitStatus":5,"findings":[],"error":"SIGSEGV"})"
                           "\n";

class ResultsReaderTest : public ::testing::Test {
protected:
    std::vector<MacroResult> resultsIn(const std::string& text) const {
        InputLines lines(m_folder.write("r.jsonl", text));
        ResultsReader reader(lines, "r.jsonl");
        std::vector<MacroResult> results;
        while (auto result = reader.next()) results.push_back(std::move(*result));
        return results;
    }

    std::string refusal(const std::string& text) const {
        try {
            resultsIn(text);
        } catch (const ResultsError& error) {
            return error.what();
        }
        return "(none)";
    }

private:
    const tests::TemporaryFolder m_folder;
};

TEST_F(ResultsReaderTest, ReturnsTheResultsOfEachMacroFile) {
    const auto results = resultsIn(kGood + kBad + kEnd + kOther);
    ASSERT_EQ(results.size(), 2U);
    EXPECT_EQ(results[0].macroFile, "a.macro");
    EXPECT_EQ(results[0].exitStatus, 1);
    EXPECT_EQ(results[0].commands, 2U);
    EXPECT_EQ(results[0].seconds, 1.5);
    EXPECT_EQ(results[0].failures, "a.macro:2: no zone");
    EXPECT_EQ(results[0].lines, kGood + kBad + kEnd);
    EXPECT_EQ(results[1].macroFile, "b.macro");
    EXPECT_EQ(results[1].error, "SIGSEGV");
    EXPECT_EQ(results[1].lines, kOther);
}

TEST_F(ResultsReaderTest, FindsNothingInAnEmptyFile) { EXPECT_TRUE(resultsIn("").empty()); }

TEST_F(ResultsReaderTest, TellsThatTheLastMacroHasNoEnd) {
    const auto results = resultsIn(kOther + kGood);
    ASSERT_EQ(results.size(), 2U);
    EXPECT_EQ(results[1].macroFile, "a.macro");
    EXPECT_FALSE(results[1].exitStatus);
}

// Wherever the runner was killed: what it wrote before is there, and only what it was writing is cut off.
TEST_F(ResultsReaderTest, ReadsEachStartOfAFile) {
    const std::string whole = kGood + kEnd + kOther;
    const std::size_t firstEnd = (kGood + kEnd).size();
    for (std::size_t size = 1; size != whole.size(); ++size) {
        const auto results = resultsIn(whole.substr(0, size));
        const bool hasFirst = size + 1 >= firstEnd;  // a line that lacks its line feed only is complete
        const bool isCutOff = size + 1 != firstEnd && size != firstEnd && size + 1 != whole.size();
        ASSERT_EQ(results.size(), (hasFirst ? 1U : 0U) + (size + 1 == whole.size() ? 1U : 0U) + (isCutOff ? 1U : 0U))
            << size;
        EXPECT_EQ(results.front().lines == kGood + kEnd, hasFirst) << size;
        EXPECT_EQ(results.back().exitStatus.has_value(), !isCutOff) << size;
    }
}

TEST_F(ResultsReaderTest, RefusesForeignLines) {
    EXPECT_EQ(refusal(kGood + "hello\n" + kEnd), "r.jsonl:2: this is not a line of 'run --json'");
    EXPECT_EQ(refusal(kEnd + "\n"), "r.jsonl:2: this is not a line of 'run --json'");
    EXPECT_EQ(refusal(kGood.substr(0, 20) + '\n'), "r.jsonl:1: this is not a line of 'run --json'");
    EXPECT_EQ(refusal("hello"), "r.jsonl:1: this is not a line of 'run --json'")
        << "no results were ever cut off there";
}

TEST_F(ResultsReaderTest, KeepsTheFirstFailures) {
    std::string text;
    std::string expected;
    for (int i = 0; i != 100; ++i) text += kBad;
    for (int i = 0; i != 10; ++i) expected += "a.macro:2: no zone\n";
    EXPECT_EQ(resultsIn(text + kEnd)[0].failures, expected + "...");
}

}  // namespace
}  // namespace vexa::runner
