#include "system/files/WholeOutput.h"

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"
#include "system/files/WholeFile.h"

namespace vexa::runner {
namespace {

class WholeOutputTest : public ::testing::Test {
protected:
    const tests::TemporaryFolder m_folder;
    const std::string m_path = m_folder.write("file", "old");
};

TEST_F(WholeOutputTest, HasItsPartsWhenItIsFinished) {
    WholeOutput output(m_path);
    output.append("new ");
    output.append("text");
    EXPECT_EQ(readWholeFile(m_path), "old");
    output.finish();
    EXPECT_EQ(readWholeFile(m_path), "new text");
    EXPECT_EQ(m_folder.count(), 1);
}

TEST_F(WholeOutputTest, MayHaveNoParts) {
    WholeOutput(m_path).finish();
    EXPECT_EQ(readWholeFile(m_path), "");
}

TEST_F(WholeOutputTest, LeavesTheOldFileIfItIsNotFinished) {
    WholeOutput(m_path).append("new");
    EXPECT_EQ(readWholeFile(m_path), "old");
    EXPECT_EQ(m_folder.count(), 1);
}

}  // namespace
}  // namespace vexa::runner
