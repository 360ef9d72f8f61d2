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
    const Command command{"run", "Runs"};
    EXPECT_EQ(unexpectedWords({"a"}, command), "unexpected argument: a");
    EXPECT_EQ(unexpectedWords({"a", "b"}, command), "unexpected arguments: a b");
}

TEST(Corrections, NameTheCommandThatDoesNotExist) {
    Command program{"prog", "Does things"};
    program.commands = {Command{"run", "Runs"}};
    EXPECT_EQ(unexpectedWords({"rnu", "a"}, program), "there is no command 'rnu'");
    EXPECT_EQ(unexpectedWords({"--fats"}, program), "unexpected argument: --fats");
}

TEST(Corrections, TakeTheNameOfAnOptionForThisOption) {
    bool isShown = false;
    Command program{"prog", "Does things"};
    program.commands = {Command{"repl", "Reads"}};
    program.add(flag({"--help"}, "", &isShown));
    EXPECT_EQ(corrections({"help"}, program), Words({"help: did you mean --help?"}));
}

TEST(Refusals, SayInPlainWordsWhatTheParserRefuses) {
    EXPECT_EQ(inPlainWords("--id: 1 required ID missing"), "--id: the value ID is missing");
    EXPECT_EQ(inPlainWords("RULE excludes --long"), "RULE cannot be used with --long");
    EXPECT_EQ(inPlainWords("FOLDER is required"), "FOLDER is required");
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
