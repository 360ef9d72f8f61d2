#include "text/Joined.h"

#include <gtest/gtest.h>

namespace vexa::vexautilutil {
namespace {

TEST(Joined, KeepsThePartsInTheirOrder) {
    const std::string name = "ZONES";
    EXPECT_EQ(joined(name, "=", std::string_view("[1-3]"), "' "), "ZONES=[1-3]' ");
}

TEST(Joined, TakesEmptyParts) {
    EXPECT_EQ(joined("", std::string(), ""), "");
    EXPECT_EQ(joined("a", "", "b"), "ab");
}

TEST(Joined, KeepsNulCharactersOfStrings) {
    const std::string text("a\0b", 3);
    EXPECT_EQ(joined(text, text), text + text);
}

}  // namespace
}  // namespace vexa::vexautilutil
