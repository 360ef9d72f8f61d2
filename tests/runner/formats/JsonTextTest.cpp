#include "formats/JsonText.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

using Array = JsonValue::Array;
using Object = JsonValue::Object;

// "INDEX: REASON" of the error in \p text; empty when there is none.
std::string errorIn(const std::string& text) {
    try {
        parseJson(text);
        return "";
    } catch (const JsonError& error) {
        return std::to_string(error.at) + ": " + error.what();
    }
}

template <class Type>
Type valueOf(const std::string& text) {
    return std::get<Type>(parseJson(text).value);
}

TEST(JsonText, TellsIntegersFromDoubles) {
    EXPECT_EQ(valueOf<std::int64_t>("3"), 3);
    EXPECT_EQ(valueOf<std::int64_t>("-9223372036854775808"), INT64_MIN);
    EXPECT_EQ(valueOf<double>("3.0"), 3);
    EXPECT_EQ(valueOf<double>("3e0"), 3);
}

TEST(JsonText, HasTheOtherValues) {
    EXPECT_EQ(valueOf<std::nullptr_t>("null"), nullptr);
    EXPECT_TRUE(valueOf<bool>("true"));
    EXPECT_EQ(valueOf<std::string>(R"("a\nb")"), "a\nb");
    EXPECT_EQ(valueOf<Array>("[1, 2]").size(), 2U);
}

TEST(JsonText, KeepsMembersInTheirOrderAndTwice) {
    const Object members = valueOf<Object>(R"({"b": 1, "b": 2, "a": 3})");
    ASSERT_EQ(members.size(), 3U);
    EXPECT_EQ(members[0].name + members[1].name + members[2].name, "bba");
    EXPECT_EQ(std::get<std::int64_t>(members[1].value.value), 2);
}

TEST(JsonText, KnowsWhereEachTokenStands) {
    const JsonValue root = parseJson("\xEF\xBB\xBF {\"a\" :\n [10, \"x\"]}");
    EXPECT_EQ(root.at, 4U);
    const JsonMember& member = std::get<Object>(root.value).front();
    EXPECT_EQ(member.at, 5U);
    EXPECT_EQ(member.value.at, 12U);
    EXPECT_EQ(std::get<Array>(member.value.value)[1].at, 17U);
}

TEST(JsonText, PlacesAnError) {
    EXPECT_EQ(errorIn("[1, x]").substr(0, 3), "4: ");
    EXPECT_EQ(errorIn("[1,").substr(0, 3), "2: ");
}

TEST(JsonText, RefusesAnIntegerOfMoreThan64Bits) {
    const std::string reason = ": the integer needs more than 64 bits; with .0 after it, it is a double";
    EXPECT_EQ(errorIn("[9223372036854775808]"), '1' + reason);
    EXPECT_EQ(errorIn("123456789012345678901"), '0' + reason);
}

TEST(JsonText, RefusesDeepNesting) {
    EXPECT_EQ(errorIn(std::string(16, '[') + std::string(16, ']')), "");
    EXPECT_EQ(errorIn(std::string(17, '[') + std::string(17, ']')), "16: nested too deeply");
}

}  // namespace
}  // namespace vexa::runner
