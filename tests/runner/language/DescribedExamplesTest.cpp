#include "language/DescribedExamples.h"

#include <gtest/gtest.h>

#include "formats/DescriptionFile.h"

namespace vexa::runner {
namespace {

using Mistakes = std::vector<std::string>;

Mistakes mistakesOfExamples(const std::string& members) {
    return wrongExamples(parseDescription(R"({"addon": "A", "commands": [{"name": "LOAD", "kind": "processor",
        "purpose": "p"}, {"name": "C", "kind": "processor", "purpose": "p", "options": [
        {"name": "T", "type": "Int64", "help": "h"}, {"name": "Z", "type": "Set", "help": "h"}], )" +
                                              members + "}]}",
                                          "f")
                             .description);
}

TEST(DescribedExamples, AreRight) {
    EXPECT_EQ(mistakesOfExamples(R"("before": ["LOAD"], "examples": ["C", "C T = 2"])"), Mistakes{});
}

TEST(DescribedExamples, HaveThePlaceOfEachMistake) {
    EXPECT_EQ(
        mistakesOfExamples(R"("before": ["LOAD", "LOAD T = 1"], "examples": ["C T = x", "D", "C T = 1", "C Z = [1"])"),
        (Mistakes{"/commands/1/before/1: LOAD has no option T",
                  "/commands/1/examples/0: T: expected an Int64, such as -12, but found x",
                  "/commands/1/examples/1: A has no command D; did you mean LOAD or C?",
                  "/commands/1/examples/3: Z: the closing ] is missing"}));
}

TEST(DescribedExamples, MayHaveWarnings) { EXPECT_EQ(mistakesOfExamples(R"("examples": ["C Z = []"])"), Mistakes{}); }

}  // namespace
}  // namespace vexa::runner
