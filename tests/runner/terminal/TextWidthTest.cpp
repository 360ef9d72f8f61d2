#include "terminal/TextWidth.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

TEST(WidthOf, CountsColumns) {
    EXPECT_EQ(widthOf(""), 0U);
    EXPECT_EQ(widthOf("Größe"), 5U);
    EXPECT_EQ(widthOf("中文"), 4U);
    EXPECT_EQ(widthOf("e\u0301"), 1U) << "an accent takes no column";
}

TEST(WidthOf, CountsAColumnForAByteThatIsNoCharacter) { EXPECT_EQ(widthOf("a\xFF\xFE"), 3U); }

TEST(CutToWidth, LeavesWhatFits) { EXPECT_EQ(cutToWidth("Größe", 5), "Größe"); }

TEST(CutToWidth, EndsACutTextWithAnEllipsis) {
    EXPECT_EQ(cutToWidth("Größe", 4), "Grö…");
    EXPECT_EQ(cutToWidth("中文", 3), "中…");
    EXPECT_EQ(cutToWidth("中文", 2), "…") << "half a character does not fit";
}

TEST(CutToWidth, HasNothingInNoColumn) { EXPECT_EQ(cutToWidth("a", 0), ""); }

TEST(AsOneLine, HasNothingThatATerminalWouldObey) {
    EXPECT_EQ(asOneLine("a\033[2J\n\tb\rc"), "a [2J  b c");
    EXPECT_EQ(asOneLine("a\u009Bb\xFF"
                        "c"),
              "a?b?c");
    EXPECT_EQ(asOneLine("a\u202Eb\u2066c"), "a?b?c");
    EXPECT_EQ(asOneLine("Größe 中文"), "Größe 中文");
}

}  // namespace
}  // namespace vexa::runner
