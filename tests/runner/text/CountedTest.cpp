#include "text/Counted.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

TEST(Counted, NamesOneThingInTheSingular) {
    EXPECT_EQ(counted(0, "call"), "0 calls");
    EXPECT_EQ(counted(1, "host call"), "1 host call");
    EXPECT_EQ(counted(2, "host call"), "2 host calls");
}

}  // namespace
}  // namespace vexa::runner
