#include "text/NearNames.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

using Names = std::vector<std::string>;

TEST(NearNames, FindsANameWithOneMistake) {
    struct Case {
        const char* mistake;
        const char* name;
    };
    const Case cases[] = {{"a character is missing", "leakedset"},
                          {"a character is added", "leaked-sets"},
                          {"a character is replaced", "leaked_set"},
                          {"two characters are swapped", "laeked-set"},
                          {"another case", "LEAKED-SET"},
                          {"a part of the name", "leaked"}};
    for (const Case& c : cases) EXPECT_EQ(nearNames(c.name, {"leaked-set", "other"}), Names{"leaked-set"}) << c.mistake;
}

TEST(NearNames, CountsASwapAsOneMistake) { EXPECT_EQ(nearNames("ste", {"set"}), Names{"set"}); }

TEST(NearNames, FindsNothingForAnotherWord) { EXPECT_EQ(nearNames("frob", {"leaked-set", "other"}), Names{}); }

TEST(NearNames, AllowsMoreMistakesInALongName) {
    EXPECT_EQ(nearNames("xnbalanced-lxck", {"unbalanced-lock"}), Names{"unbalanced-lock"});
    EXPECT_EQ(nearNames("lxxk", {"lock"}), Names{"lock"});
    EXPECT_EQ(nearNames("lxx", {"lck"}), Names{});
}

TEST(NearNames, FindsTheNearestOnly) { EXPECT_EQ(nearNames("mean", {"means2", "mean"}), Names{"mean"}); }

TEST(NearNames, FindsThreeAtMost) { EXPECT_EQ(nearNames("a", {"a1", "a2", "a3", "a4"}), (Names{"a1", "a2", "a3"})); }

TEST(Alternatives, JoinsThemForASentence) {
    EXPECT_EQ(alternatives({}), "");
    EXPECT_EQ(alternatives({"a"}), "a");
    EXPECT_EQ(alternatives({"a", "b"}), "a or b");
    EXPECT_EQ(alternatives({"a", "b", "c"}), "a, b or c");
}

}  // namespace
}  // namespace vexa::runner
