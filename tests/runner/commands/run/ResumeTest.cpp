#include "commands/run/Resume.h"

#include <gtest/gtest.h>

#include "formats/ResultsFile.h"
#include "formats/ResultsReader.h"
#include "support/TemporaryFolder.h"
#include "system/files/WholeFile.h"

namespace vexa::runner {
namespace {

using Names = std::vector<std::string>;

std::string commandOf(const std::string& file) { return resultLine({file + ":1", "A", "X"}, {true, ""}, {}); }
std::string endOf(const std::string& file, ExitStatus_e status = ExitStatus_e::AllWell) {
    return endLine(file, status);
}

class Resume : public ::testing::Test {
protected:
    CutOffRun takeUpFrom(const std::string& text, const Names& macroFiles) const {
        m_folder.write("r.jsonl", text);
        return takeUp(m_path, macroFiles);
    }

    std::string refusal(const std::string& text, const Names& macroFiles) const {
        try {
            takeUpFrom(text, macroFiles);
        } catch (const ResultsError& error) {
            return error.what();
        }
        return "(none)";
    }

    const tests::TemporaryFolder m_folder;
    const std::string m_path = m_folder.path("r.jsonl");
};

TEST_F(Resume, SkipsTheMacroFilesThatHaveAnEndLine) {
    const std::string results = commandOf("b") + endOf("b") + commandOf("a") + endOf("a", ExitStatus_e::CommandFailed);
    const CutOffRun run = takeUpFrom(results, {"a", "b", "c", "d"});
    EXPECT_EQ(run.left, Names({"c", "d"}));
    EXPECT_EQ(run.done, 2U);
    ASSERT_EQ(run.failed.size(), 1U);
    EXPECT_EQ(run.failed[0].first, "a");
    EXPECT_EQ(run.failed[0].second, ExitStatus_e::CommandFailed);
    EXPECT_EQ(readWholeFile(m_path), results);
}

TEST_F(Resume, RemovesTheResultsOfMacroFilesWithoutAnEndLine) {
    const std::string half = commandOf("b").substr(0, 30);
    for (const std::string& end : {commandOf("b"), half, commandOf("b") + half}) {
        EXPECT_EQ(takeUpFrom(endOf("a") + end, {"a", "b"}).left, Names({"b"}));
        EXPECT_EQ(readWholeFile(m_path), endOf("a"));
    }
}

TEST_F(Resume, KeepsAnEndLineThatLacksItsLineFeedOnly) {
    std::string end = endOf("a");
    end.pop_back();
    EXPECT_EQ(takeUpFrom(end, {"a", "b"}).left, Names({"b"}));
    EXPECT_EQ(readWholeFile(m_path), endOf("a"));
}

TEST_F(Resume, RunsWhatCtrlCStoppedAgain) {
    const std::string stopped = commandOf("a") + endOf("a", ExitStatus_e::Stopped);
    EXPECT_EQ(takeUpFrom(stopped + endOf("b"), {"a", "b"}).left, Names({"a"}));
    EXPECT_EQ(readWholeFile(m_path), endOf("b"));
}

TEST_F(Resume, CountsMacroFilesThatAreListedTwice) {
    EXPECT_EQ(takeUpFrom(endOf("a"), {"a", "b", "a"}).left, Names({"b", "a"}));
    EXPECT_EQ(takeUpFrom(endOf("a") + endOf("a"), {"a", "b", "a"}).left, Names({"b"}));
}

TEST_F(Resume, KnowsNamesThatAreNotUtf8) { EXPECT_EQ(takeUpFrom(endOf("a\377"), {"a\377", "b"}).left, Names({"b"})); }

TEST_F(Resume, StartsAnewWithoutAFile) {
    const CutOffRun run = takeUp(m_path, {"a", "b"});
    EXPECT_EQ(run.left, Names({"a", "b"}));
    EXPECT_EQ(run.done, 0U);
}

TEST_F(Resume, RefusesTheResultsOfAnotherRunAndKeepsThem) {
    const std::string results = endOf("a") + endOf("c");
    EXPECT_EQ(refusal(results, {"a", "b"}), m_path + ": it has results of c, which this run does not include");
    EXPECT_EQ(readWholeFile(m_path), results);
    EXPECT_EQ(refusal(endOf("a") + endOf("a"), {"a", "b"}),
              m_path + ": it has more results of a than this run includes");
}

TEST_F(Resume, RefusesAFileWithoutResultsAndKeepsIt) {
    EXPECT_EQ(refusal("my notes\n", {"a"}), m_path + ":1: this is not a line of 'run --json'");
    EXPECT_EQ(readWholeFile(m_path), "my notes\n");
}

}  // namespace
}  // namespace vexa::runner
