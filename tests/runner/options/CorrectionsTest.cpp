#include "options/Corrections.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

using Words = std::vector<std::string>;

TEST(Corrections, ListUnexpectedWords) {
    EXPECT_EQ(unexpectedWords({"a"}), "The following argument was not expected: a");
    EXPECT_EQ(unexpectedWords({"a", "b"}), "The following arguments were not expected: a b");
}

TEST(Corrections, AreOptionsAndForTheFirstWordCommands) {
    bool isFast = false;
    Command program{"prog", "Does things"};
    program.commands = {Command{"run", "Runs"}, Command{"rum", "Hides"}};
    program.commands.back().isHidden = true;
    program.add(flag({"-f", "--fast"}, "", &isFast));
    EXPECT_EQ(corrections({"rnu", "rnu", "--fats=1", "-z", "frobnicate"}, program),
              Words({"rnu: did you mean run?", "--fats: did you mean --fast?"}));
}

}  // namespace
}  // namespace vexa::runner
