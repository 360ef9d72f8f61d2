#include "text/Joined.h"

#include <gtest/gtest.h>

#include <vector>

namespace vexa::runner {
namespace {

TEST(Joined, SeparatesTextsFromOneAnother) {
    EXPECT_EQ(joined(std::vector<std::string>(), ", "), "");
    EXPECT_EQ(joined(std::vector<std::string>{"a"}, ", "), "a");
    EXPECT_EQ(joined(std::vector<const char*>{"a", "b", "c"}, ", "), "a, b, c");
    EXPECT_EQ(joined(std::vector<std::string>{"", "b"}, ","), ",b");
}

}  // namespace
}  // namespace vexa::runner
