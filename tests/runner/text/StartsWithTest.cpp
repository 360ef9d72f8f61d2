#include "text/StartsWith.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

TEST(StartsWith, ComparesTheStartOnly) {
    EXPECT_TRUE(startsWith("VexaUtilLockStart", "VexaUtil"));
    EXPECT_FALSE(startsWith("xVexaUtil", "VexaUtil"));
}

TEST(StartsWith, IsFalseForAShorterText) { EXPECT_FALSE(startsWith("Vexa", "VexaUtil")); }

TEST(StartsWith, IsTrueForAnEmptyStart) { EXPECT_TRUE(startsWith("", "")); }

}  // namespace
}  // namespace vexa::runner
