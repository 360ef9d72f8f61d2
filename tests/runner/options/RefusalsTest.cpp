#include "options/Refusals.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

using Words = std::vector<std::string>;

TEST(Refusals, NameTheRulesThatMayBeMeant) {
    EXPECT_EQ(noSuchRule("unbalanced-lok"), "there is no rule \"unbalanced-lok\"; is unbalanced-lock meant?");
    EXPECT_EQ(noSuchRule("lock"),
              "there is no rule \"lock\"; is unbalanced-lock, lock-identity or mutex-locked-twice meant?");
    EXPECT_EQ(noSuchRule("frob"), "there is no rule \"frob\"; 'vexa-standin explain' lists them");
}

TEST(Refusals, SayHowToListTheTests) {
    EXPECT_EQ(noSuchTest("frob"), "there is no test \"frob\"; 'check --list' lists them");
}

TEST(Refusals, NameTheLoadedAddOns) {
    EXPECT_EQ(noSuchAddOn("STATZ", {"STATS", "LOADER"}),
              "no add-on 'STATZ' is loaded (loaded: LOADER, STATS); did you mean STATS?");
    EXPECT_EQ(noSuchAddOn("FROB", {"STATS"}), "no add-on 'FROB' is loaded (loaded: STATS)");
    EXPECT_EQ(noSuchAddOn("STATS", {}), "no add-on 'STATS' is loaded");
}

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
