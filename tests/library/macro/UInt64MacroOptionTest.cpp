#include "vexautilutil/UInt64MacroOption.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <limits>

#include "library/macro/OptionTests.h"
#include "library/macro/Tokens.h"
#include "support/GlobalLocale.h"
#include "support/VirtualSlots.h"
#include "vexautilutil/MacroCommandAbstract.h"

namespace vexa::vexautilutil {
namespace {

using Texts = std::vector<std::string>;

UInt64MacroOption parsed(const std::string& text, const uint64_t* defaultValue = nullptr) {
    return parsedAs<UInt64MacroOption>(text, defaultValue);
}

std::string refusal(const std::string& text) { return refusedAs<UInt64MacroOption>(text, nullptr, nullptr); }

TEST(UInt64MacroOption, RendersPlainDecimalDigits) {
    EXPECT_EQ(UInt64MacroOption("COUNT", 0, nullptr).toString(), "COUNT=0");
    EXPECT_EQ(UInt64MacroOption("COUNT", 1234567, nullptr).toString(), "COUNT=1234567");
    EXPECT_EQ(UInt64MacroOption("COUNT", std::numeric_limits<uint64_t>::max(), nullptr).toString(),
              "COUNT=18446744073709551615");
}

TEST(UInt64MacroOption, KeepsItsNameVerbatim) {
    for (const char* name : {"", "two words", "Mixed_1"}) {
        const UInt64MacroOption option(name, 1, nullptr);
        EXPECT_EQ(option.name(), name);
        EXPECT_EQ(option.toString(), std::string(name) + "=1");
    }
}

TEST(UInt64MacroOption, IsNeverAtItsDefaultWithoutOne) {
    EXPECT_FALSE(UInt64MacroOption("A", 0, nullptr).isDefaultValue());
    EXPECT_FALSE(parsed("A=0").isDefaultValue());
}

TEST(UInt64MacroOption, IsAtItsDefaultWhenTheValueEqualsIt) {
    const uint64_t byDefault = 0;
    EXPECT_TRUE(UInt64MacroOption("A", 0, &byDefault).isDefaultValue());
    EXPECT_FALSE(UInt64MacroOption("A", 1, &byDefault).isDefaultValue());
    EXPECT_TRUE(parsed("A=00", &byDefault).isDefaultValue());
    EXPECT_FALSE(parsed("A=1", &byDefault).isDefaultValue());
    const uint64_t other = 5;
    EXPECT_TRUE(parsed("A=5", &other).isDefaultValue());
    EXPECT_FALSE(parsed("A=0", &other).isDefaultValue());
}

TEST(UInt64MacroOption, CopiesItsDefault) {
    uint64_t byDefault = 7;
    const UInt64MacroOption option("A", 7, &byDefault);
    byDefault = 8;
    EXPECT_TRUE(option.isDefaultValue());
}

TEST(UInt64MacroOption, ReadsDecimalDigitsWithAnOptionalPlusSign) {
    struct Case {
        const char* why;
        const char* text;
        uint64_t value;
    };
    const Case cases[] = {
        {"plain", "COUNT=12", 12},
        {"a plus sign", "COUNT=+12", 12},
        {"leading zeros", "COUNT=0012", 12},
        {"many leading zeros", "COUNT=000000000000000000000000000000000012", 12},
        {"a plus sign and leading zeros", "COUNT=+007", 7},
        {"zero", "COUNT=0", 0},
        {"the largest", "COUNT=18446744073709551615", std::numeric_limits<uint64_t>::max()},
        {"the largest with a plus sign", "COUNT=+18446744073709551615", std::numeric_limits<uint64_t>::max()},
    };
    for (const Case& c : cases) {
        const UInt64MacroOption option = parsed(c.text);
        EXPECT_EQ(option.name(), "COUNT") << c.why;
        EXPECT_EQ(option.value(), c.value) << c.why;
        EXPECT_EQ(option.toString(), "COUNT=" + std::to_string(c.value)) << c.why;
    }
}

TEST(UInt64MacroOption, LeavesTheIteratorPastTheValue) {
    Tokens tokens("COUNT=12 B=1");
    const UInt64MacroOption option(tokens.current, tokens.end, nullptr);
    EXPECT_EQ(tokens.rest(), (Texts{" ", "B", "=", "1"}));
}

TEST(UInt64MacroOption, RefusesAnythingElseOnTheOffendingToken) {
    const std::vector<RefusalCase> cases = {
        {"one more than the largest",
         "C=18446744073709551616",
         "Invalid integer value 18446744073709551616",
         {"18446744073709551616"}},
        {"many more",
         "C=99999999999999999999999",
         "Invalid integer value 99999999999999999999999",
         {"99999999999999999999999"}},
        {"negative: the minus is a token", "C=-5", "Invalid integer value -", {"-", "5"}},
        {"a fraction", "C=12.5", "Invalid integer value 12.5", {"12.5"}},
        {"hexadecimal", "C=0x10", "Invalid integer value 0x10", {"0x10"}},
        {"a word", "C=abc", "Invalid integer value abc", {"abc"}},
        {"digits and a word", "C=12abc D", "Invalid integer value 12abc", {"12abc", " ", "D"}},
        {"an exponent", "C=1e3", "Invalid integer value 1e3", {"1e3"}},
        {"a lone plus sign", "C=+", "Invalid integer value +", {"+"}},
        {"two plus signs", "C=++1", "Invalid integer value ++1", {"++1"}},
        {"a digit group", "C=1.234", "Invalid integer value 1.234", {"1.234"}},
        {"a tab", "C=\t1", "Invalid integer value \t1", {"\t1"}},
        {"a blank", "C= 12", "Invalid integer value  ", {" ", "12"}},
        {"no value", "C=", "Expected UInt64 operator missing", {}},
        {"no operator", "C", "Expected assignment operator", {}},
        {"something for an operator", "C 12", "Expected assignment operator, but found  ", {" ", "12"}},
        {"no name", "12", "Invalid macro identifier, 12", {"12"}},
    };
    expectRefusals<UInt64MacroOption>(cases, nullptr);
}

// Another tokenizer may make tokens with a minus sign. The conversion to unsigned then wraps around.
TEST(UInt64MacroOption, WrapsANegativeTokenOfAnotherTokenizer) {
    const std::string text = "C = -1";
    const MacroTokenizer tokenizer(text, MacroTokenSeparator(" ", "="));
    MacroTokenIterator current = tokenizer.begin();
    const MacroTokenIterator end = tokenizer.end();
    EXPECT_EQ(UInt64MacroOption(current, end, nullptr).value(), std::numeric_limits<uint64_t>::max());
}

TEST(UInt64MacroOption, FollowsTheGlobalLocalesGrouping) {
    const tests::GlobalLocale locale(new tests::GroupedNumbers);
    EXPECT_EQ(UInt64MacroOption("COUNT", 1234567, nullptr).toString(), "COUNT=1.234.567");
    EXPECT_EQ(parsed("COUNT=1.234.567").value(), 1234567u);
    EXPECT_EQ(parsed("COUNT=1234567").value(), 1234567u);
    EXPECT_EQ(refusal("COUNT=1.23.4567"), "Invalid integer value 1.23.4567");
}

TEST(UInt64MacroOption, RefusesDigitGroupsInTheClassicLocale) {
    EXPECT_EQ(refusal("COUNT=1.234.567"), "Invalid integer value 1.234.567");
}

RC_GTEST_PROP(UInt64MacroOption, IsReadBackFromItsText, (uint64_t value)) {
    const UInt64MacroOption readBack = parsed(UInt64MacroOption("COUNT", value, nullptr).toString());
    RC_ASSERT(readBack.name() == "COUNT");
    RC_ASSERT(readBack.value() == value);
}

TEST(UInt64MacroOption, KeepsTheSlotOrder) { expectOptionSlots<UInt64MacroOption>(); }

TEST(UInt64MacroOption, KeepsTheFieldOrder) {
    const uint64_t byDefault = 9;
    const UInt64MacroOption option("NAME", 7, &byDefault);
    constexpr std::size_t kValue = sizeof(void*) + sizeof(std::string);
    EXPECT_EQ(tests::fieldAt<std::string>(option, sizeof(void*)), "NAME");
    EXPECT_EQ(tests::fieldAt<uint64_t>(option, kValue), 7u);
    EXPECT_TRUE(tests::fieldAt<bool>(option, kValue + 8));
    EXPECT_EQ(tests::fieldAt<uint64_t>(option, kValue + 16), 9u);
    const UInt64MacroOption other("NAME", 7, nullptr);
    EXPECT_FALSE(tests::fieldAt<bool>(other, kValue + 8));
    EXPECT_EQ(tests::fieldAt<uint64_t>(other, kValue + 16), 0u) << "the default without a default";
}

}  // namespace
}  // namespace vexa::vexautilutil
