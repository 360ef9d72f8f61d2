#include "formats/StyleFile.h"

#include <gtest/gtest.h>

#include "formats/JsonText.h"

namespace vexa::runner {
namespace {

using Path = std::vector<std::string>;

// "INDEX: REASON" of the error in \p text; empty when there is none.
std::string errorIn(const std::string& text) {
    try {
        parseStyles(text);
        return "";
    } catch (const JsonError& error) {
        return std::to_string(error.at) + ": " + error.what();
    }
}

TEST(StyleFile, HasAPathForEachValue) {
    const std::vector<StyleSetting> settings = parseStyles(R"({"A": {"B": 1, "C": {"D": 2.5}}, "TEXT": "text"})");
    ASSERT_EQ(settings.size(), 3U);
    EXPECT_EQ(settings[0].path, (Path{"A", "B"}));
    EXPECT_EQ(std::get<std::int64_t>(settings[0].value), 1);
    EXPECT_EQ(settings[1].path, (Path{"A", "C", "D"}));
    EXPECT_EQ(std::get<double>(settings[1].value), 2.5);
    EXPECT_EQ(settings[2].path, Path{"TEXT"});
    EXPECT_EQ(std::get<std::string>(settings[2].value), "text");
}

TEST(StyleFile, MakesADoubleOfAnIntegerThatIsMarked) {
    EXPECT_EQ(std::get<double>(parseStyles(R"({"A": {"$double": 3}})").front().value), 3);
}

TEST(StyleFile, HasTheValuesOfPairsOfOffsets) {
    const std::vector<StyleSetting> settings =
        parseStyles(R"({"A": {"$offsets": [{"offset1": 1, "value": 2.5}], "$value": 1.5}})");
    ASSERT_EQ(settings.size(), 2U);
    for (const StyleSetting& setting : settings) {
        EXPECT_EQ(std::get<double>(setting.value), setting.offsets ? 2.5 : 1.5);
    }
    EXPECT_EQ(settings[1].offsets, std::make_pair(1L, 0L));
    EXPECT_FALSE(settings[0].offsets);
}

TEST(StyleFile, PlacesAnError) {
    EXPECT_EQ(errorIn(R"({"A": true})"), "6: expected a number, a text, a set or keywords");
    EXPECT_EQ(errorIn("[]"), "0: expected an object of keywords");
}

TEST(StyleFile, TakesSixKeywordsAtMost) {
    EXPECT_EQ(errorIn(R"({"A":{"B":{"C":{"D":{"E":{"F":1}}}}}})"), "");
    EXPECT_EQ(errorIn(R"({"A":{"B":{"C":{"D":{"E":{"F":{"G":1}}}}}}})"),
              "31: 'G' is the seventh keyword of a path; at most six are allowed");
}

}  // namespace
}  // namespace vexa::runner
