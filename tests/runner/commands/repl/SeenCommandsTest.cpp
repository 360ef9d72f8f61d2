#include "commands/repl/SeenCommands.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

TEST(SeenCommands, HaveRunsFailuresAndOptions) {
    SeenCommands seen;
    seen.add("STATS", "MEAN ZONES = '1'", true);
    seen.add("STATS", "MEAN COUNT = 2 ZONES = '3'", false);
    seen.add("STATS", "CLEAR", true);
    seen.add("OTHER", "SUM", true);
    EXPECT_EQ(seen.describe("STATS", ""),
              "  CLEAR  run 1 time\n  MEAN   run 2 times, 1 failed; options: COUNT, ZONES\n");
    EXPECT_EQ(seen.describe("STATS", "CLEAR"), "  CLEAR  run 1 time\n");
    EXPECT_EQ(seen.describe("STATS", "SUM"), "");
    EXPECT_EQ(seen.describe("NONE", ""), "");
}

TEST(SeenCommands, ArePrintable) {
    SeenCommands seen;
    seen.add("STATS", "A\033[2J B\033 = 1", true);
    EXPECT_EQ(seen.describe("STATS", ""), "  A\\x1B[2J  run 1 time; options: B\\x1B\n");
}

}  // namespace
}  // namespace vexa::runner
