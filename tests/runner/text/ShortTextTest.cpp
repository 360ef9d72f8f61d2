#include "text/ShortText.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

TEST(ShortText, LeavesTwoHundredBytesAsTheyAre) {
    const std::string text(200, 'x');
    EXPECT_EQ(shortText(text), text);
}

TEST(ShortText, CutsALongerText) { EXPECT_EQ(shortText(std::string(201, 'x')), std::string(200, 'x') + "..."); }

TEST(ShortText, CutsNoCharacterApart) {
    const std::string start(198, 'x');
    EXPECT_EQ(shortText(start + "\xE2\x82\xAC"), start + "...");
    EXPECT_EQ(shortText(start + "\xC3\xA9" + 'x'), start + "\xC3\xA9...");
}

TEST(ShortText, CutsBytesThatAreNoCharacters) {
    EXPECT_EQ(shortText(std::string(300, '\x80')), std::string(196, '\x80') + "...");
}

}  // namespace
}  // namespace vexa::runner
