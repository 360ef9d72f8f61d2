#include "formats/ProjectFile.h"

#include <gtest/gtest.h>

#include "options/UsageError.h"
#include "support/TemporaryFolder.h"

namespace vexa::runner {
namespace {

class ProjectFileTest : public ::testing::Test {
protected:
    ContractOptions read(const std::string& text) const { return readProjectFile(m_folder.write("p.toml", text)); }

    /// The error in \p text, without the path of the file; empty when there is none.
    std::string errorIn(const std::string& text) const {
        try {
            read(text);
            return "";
        } catch (const UsageError& error) {
            return std::string(error.what()).substr(m_folder.path("p.toml").size());
        }
    }

private:
    tests::TemporaryFolder m_folder;
};

TEST_F(ProjectFileTest, LeavesWhatItDoesNotSayEmpty) {
    const ContractOptions options = read("");
    EXPECT_FALSE(options.strict);
    EXPECT_FALSE(options.warningsAsErrors);
    EXPECT_FALSE(options.timeout);
    EXPECT_TRUE(options.suppressed.empty());
}

TEST_F(ProjectFileTest, HasEachKey) {
    const ContractOptions options = read(
        "strict = false\nwarnings-as-errors = true\ntimeout = 2.5\nsuppress = ['leaked-set', 'unbalanced-lock']\n");
    EXPECT_EQ(options.strict, false);
    EXPECT_EQ(options.warningsAsErrors, true);
    EXPECT_EQ(options.timeout->count(), 2.5);
    EXPECT_EQ(options.suppressed, (std::vector<std::string>{"leaked-set", "unbalanced-lock"}));
}

TEST_F(ProjectFileTest, TakesATimeWithoutFraction) { EXPECT_EQ(read("timeout = 1_000\n").timeout->count(), 1000); }

TEST_F(ProjectFileTest, TellsTheLineOfAnError) {
    EXPECT_EQ(errorIn("\n\nstrict = 1\n"), ":3: strict: expected true or false");
}

TEST_F(ProjectFileTest, HasItsErrorOnOneLine) {
    EXPECT_EQ(errorIn("strict = tru\n"), ":1: Error while parsing boolean: expected 'true', saw 'tru\\n'");
    EXPECT_EQ(errorIn("suppress = 'a\tb'\n").find("there is no rule \"a\\tb\""), std::string(":1: suppress: ").size());
}

TEST_F(ProjectFileTest, ThatIsMissingIsRefused) {
    try {
        readProjectFile("missing.toml");
        ADD_FAILURE() << "it was read";
    } catch (const UsageError& error) {
        EXPECT_STREQ(error.what(), "missing.toml: No such file or directory");
    }
}

}  // namespace
}  // namespace vexa::runner
