#include "text/Columns.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

TEST(Columns, AreAsWideAsTheirWidestCell) {
    EXPECT_EQ(columnsOf({{"A", "BB", "C"}, {"long", "1", ""}}), "A     BB  C\nlong  1   \n");
    EXPECT_EQ(columnsOf({}), "");
}

}  // namespace
}  // namespace vexa::runner
