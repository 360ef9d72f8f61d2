#include "commands/check/ToldCauses.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

Verdict failed(const std::string& reason) { return {Outcome_e::Failed, reason}; }

std::string breach(const std::string& place, const std::string& call, const std::string& command) {
    return place + "ID: error: it leaks [leaked-set]\n    first: call " + call + ", Alloc, in \"" + command +
           "\", thread 1\n    hint:  Free it.";
}

TEST(ToldCauses, TellsTheFirstInFull) {
    ToldCauses causes;
    const ToldCauses::Told told = causes.tell("one", failed(breach("m:1: ", "1", "ID a") + "\ntried: a"));
    EXPECT_TRUE(told.isNew);
    EXPECT_EQ(told.text, breach("m:1: ", "1", "ID a") + "\ntried: a");
}

TEST(ToldCauses, PointsBackToOneThatCameFromAnotherPlace) {
    ToldCauses causes;
    causes.tell("one", failed(breach("m:1: ", "1", "ID a") + "\ntried: a"));
    const ToldCauses::Told told = causes.tell("two", failed(breach("", "27", "ID a") + "\ntried: b"));
    EXPECT_FALSE(told.isNew);
    EXPECT_EQ(told.text, "as above (one)");
}

TEST(ToldCauses, TellsThatOfAnotherCommand) {
    ToldCauses causes;
    causes.tell("one", failed(breach("m:1: ", "1", "ID a")));
    EXPECT_TRUE(causes.tell("two", failed(breach("m:2: ", "1", "ID b"))).isNew);
}

TEST(ToldCauses, TellsWhatIsNewBesideWhatIsNot) {
    ToldCauses causes;
    causes.tell("one", failed(breach("m:1: ", "1", "ID a")));
    const ToldCauses::Told told =
        causes.tell("two", failed(breach("m:1: ", "1", "ID a") + '\n' + breach("m:2: ", "4", "ID b") + "\ntried: x"));
    EXPECT_TRUE(told.isNew);
    EXPECT_EQ(told.text, breach("m:2: ", "4", "ID b") + "\ntried: x\nand as above (one)");
}

TEST(ToldCauses, TellsWhatATestHasTwiceOnce) {
    ToldCauses causes;
    const std::string one = breach("m:1: ", "1", "ID a");
    EXPECT_EQ(causes.tell("one", failed(one + '\n' + breach("m:1: ", "2", "ID a"))).text, one);
    EXPECT_EQ(causes.summary(), "");
}

TEST(ToldCauses, DistinguishesMessagesOfFailedCommands) {
    ToldCauses causes;
    const std::string headline = "m:1: the command failed: ID a\n";
    causes.tell("one", failed(headline + "its message: no file"));
    EXPECT_TRUE(causes.tell("two", failed(headline + "its message: no memory")).isNew);
    EXPECT_FALSE(causes.tell("three", failed("the command failed: ID a\nits message: no file")).isNew);
}

TEST(ToldCauses, DistinguishesEndsByTheSignalAndTheCommand) {
    const auto crashed = [](const std::string& how, const std::string& during, const std::string& call) {
        return Verdict{Outcome_e::Crashed, how + "\ntried: x\nduring: " + during + "\nlast host call: " + call};
    };
    ToldCauses causes;
    EXPECT_TRUE(causes.tell("one", crashed("SIGSEGV: x", "ID a (m:1)", "1, Alloc()")).isNew);
    EXPECT_FALSE(causes.tell("two", crashed("SIGSEGV: x", "ID a", "9, Alloc()")).isNew);
    EXPECT_TRUE(causes.tell("three", crashed("SIGSEGV: x", "ID a (1)", "1, Alloc()")).isNew);
    EXPECT_TRUE(causes.tell("four", crashed("SIGABRT: x", "ID a", "1, Alloc()")).isNew);
    EXPECT_EQ(causes.summary(), "2 tests have the same cause, first seen in one: SIGSEGV: x, during: ID a");
}

TEST(ToldCauses, CountsNothingThatPassedOrWasSkipped) {
    ToldCauses causes;
    for (const Outcome_e outcome : {Outcome_e::Passed, Outcome_e::Skipped}) {
        for (int i = 0; i != 2; ++i)
            EXPECT_EQ(causes.tell("one", {outcome, "no macro was given"}).text, "no macro was given");
    }
    EXPECT_EQ(causes.summary(), "");
}

}  // namespace
}  // namespace vexa::runner
