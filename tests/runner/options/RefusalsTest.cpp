#include "options/Refusals.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

TEST(Refusals, NameTheRulesThatMayBeMeant) {
    EXPECT_EQ(noSuchRule("unbalanced-lok"), "there is no rule \"unbalanced-lok\"; is unbalanced-lock meant?");
    EXPECT_EQ(noSuchRule("lock"),
              "there is no rule \"lock\"; is unbalanced-lock, lock-identity or mutex-locked-twice meant?");
    EXPECT_EQ(noSuchRule("frob"), "there is no rule \"frob\"; 'vexa-standin explain' lists them");
}

TEST(Refusals, SayHowToListTheTests) {
    EXPECT_EQ(noSuchTest("frob"), "there is no test \"frob\"; 'check --list' names them");
}

TEST(Refusals, NameTheLoadedAddOns) {
    EXPECT_EQ(noSuchAddOn("STATZ", {"STATS", "LOADER"}),
              "no add-on 'STATZ' is loaded (loaded: LOADER, STATS); did you mean STATS?");
    EXPECT_EQ(noSuchAddOn("FROB", {"STATS"}), "no add-on 'FROB' is loaded (loaded: STATS)");
    EXPECT_EQ(noSuchAddOn("STATS", {}), "no add-on 'STATS' is loaded");
}

}  // namespace
}  // namespace vexa::runner
