#include "vexautilutil/BooleanMacroOption.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <type_traits>

#include "library/macro/OptionTests.h"
#include "library/macro/Tokens.h"
#include "support/GlobalLocale.h"
#include "support/VirtualSlots.h"

namespace vexa::vexautilutil {
namespace {

using Texts = std::vector<std::string>;

BooleanMacroOption parsed(const std::string& text, const bool* defaultValue = nullptr) {
    return parsedAs<BooleanMacroOption>(text, defaultValue);
}

std::string refusal(const std::string& text) { return refusedAs<BooleanMacroOption>(text, nullptr, nullptr); }

TEST(BooleanMacroOption, RendersTrueAndFalseInUpperCase) {
    EXPECT_EQ(BooleanMacroOption("ENABLED", true, nullptr).toString(), "ENABLED=TRUE");
    EXPECT_EQ(BooleanMacroOption("ENABLED", false, nullptr).toString(), "ENABLED=FALSE");
}

TEST(BooleanMacroOption, KeepsItsNameVerbatim) {
    for (const char* name : {"", "two words", "Mixed_1"}) {
        const BooleanMacroOption option(name, true, nullptr);
        EXPECT_EQ(option.name(), name);
        EXPECT_EQ(option.toString(), std::string(name) + "=TRUE");
    }
}

TEST(BooleanMacroOption, RendersItsOwnNameWhateverADerivedClassAnswers) {
    class Renamed : public BooleanMacroOption {
    public:
        Renamed() : BooleanMacroOption("OWN", true, nullptr) {}
        std::string name() const override { return "OTHER"; }
    };
    EXPECT_EQ(Renamed().toString(), "OWN=TRUE");
}

TEST(BooleanMacroOption, IsNeverAtItsDefaultWithoutOne) {
    EXPECT_FALSE(BooleanMacroOption("A", true, nullptr).isDefaultValue());
    EXPECT_FALSE(BooleanMacroOption("A", false, nullptr).isDefaultValue());
}

TEST(BooleanMacroOption, IsAtItsDefaultWhenTheValueEqualsIt) {
    for (const bool byDefault : {true, false}) {
        EXPECT_TRUE(BooleanMacroOption("A", byDefault, &byDefault).isDefaultValue());
        EXPECT_FALSE(BooleanMacroOption("A", !byDefault, &byDefault).isDefaultValue());
    }
}

TEST(BooleanMacroOption, CopiesItsDefault) {
    bool byDefault = true;
    const BooleanMacroOption option("A", true, &byDefault);
    byDefault = false;
    EXPECT_TRUE(option.isDefaultValue());
}

TEST(BooleanMacroOption, ReadsAnyLetterCase) {
    for (const char* text : {"TRUE", "True", "true", "tRuE"}) {
        EXPECT_TRUE(parsed(std::string("A=") + text).value()) << text;
    }
    for (const char* text : {"FALSE", "False", "false", "fAlSe"}) {
        EXPECT_FALSE(parsed(std::string("A=") + text).value()) << text;
    }
}

TEST(BooleanMacroOption, ReadsNameAndValueAndRendersThemBack) {
    const BooleanMacroOption option = parsed("ENABLED=true");
    EXPECT_EQ(option.name(), "ENABLED");
    EXPECT_TRUE(option.value());
    EXPECT_EQ(option.toString(), "ENABLED=TRUE");
}

TEST(BooleanMacroOption, TakesADefaultWhenParsedToo) {
    const bool byDefault = true;
    EXPECT_TRUE(parsed("A=TRUE", &byDefault).isDefaultValue());
    EXPECT_FALSE(parsed("A=FALSE", &byDefault).isDefaultValue());
    EXPECT_FALSE(parsed("A=TRUE").isDefaultValue());
}

TEST(BooleanMacroOption, TakesADefaultOfFalseWhenParsedToo) {
    const bool byDefault = false;
    EXPECT_TRUE(parsed("A=FALSE", &byDefault).isDefaultValue());
    EXPECT_FALSE(parsed("A=TRUE", &byDefault).isDefaultValue());
}

TEST(BooleanMacroOption, LeavesTheIteratorPastTheValue) {
    Tokens tokens("ENABLED=TRUE COUNT=12");
    const BooleanMacroOption option(tokens.current, tokens.end, nullptr);
    EXPECT_EQ(tokens.rest(), (Texts{" ", "COUNT", "=", "12"}));
}

TEST(BooleanMacroOption, RefusesAnythingElseOnTheOffendingToken) {
    const std::vector<RefusalCase> cases = {
        {"longer than TRUE", "A=TRUEX", "Expected a Boolean operator, but found TRUEX", {"TRUEX"}},
        {"shorter than TRUE", "A=TRU", "Expected a Boolean operator, but found TRU", {"TRU"}},
        {"a number", "A=1", "Expected a Boolean operator, but found 1", {"1"}},
        {"yes", "A=YES B", "Expected a Boolean operator, but found YES", {"YES", " ", "B"}},
        {"one letter", "A=T", "Expected a Boolean operator, but found T", {"T"}},
        {"a blank", "A= TRUE", "Expected a Boolean operator, but found  ", {" ", "TRUE"}},
        {"a second operator", "A==TRUE", "Expected a Boolean operator, but found =", {"=", "TRUE"}},
        {"no value", "A=", "Expected Boolean operator missing", {}},
        {"no operator", "A", "Expected assignment operator", {}},
        {"a blank for an operator", "A =TRUE", "Expected assignment operator, but found  ", {" ", "=", "TRUE"}},
        {"no name", "=TRUE", "Invalid macro identifier, =", {"=", "TRUE"}},
        {"nothing", "", "Invalid macro identifier, ", {}},
    };
    expectRefusals<BooleanMacroOption>(cases, nullptr);
}

TEST(BooleanMacroOption, ComparesInTheGlobalLocalesUpperCase) {
    struct SevenIsT : std::ctype<char> {
    protected:
        char do_toupper(char c) const override { return c == '7' ? 'T' : std::ctype<char>::do_toupper(c); }
    };
    EXPECT_EQ(refusal("A=7rue"), "Expected a Boolean operator, but found 7rue");
    const tests::GlobalLocale locale(new SevenIsT);
    EXPECT_TRUE(parsed("A=7rue").value());
}

RC_GTEST_PROP(BooleanMacroOption, IsReadBackFromItsText, (bool value)) {
    const auto name = *rc::gen::nonEmpty(rc::gen::container<std::string>(rc::gen::elementOf(std::string("abcXYZ"))));
    const BooleanMacroOption readBack = parsed(BooleanMacroOption(name, value, nullptr).toString());
    RC_ASSERT(readBack.name() == name);
    RC_ASSERT(readBack.value() == value);
}

TEST(BooleanMacroOption, KeepsTheSlotOrder) { expectOptionSlots<BooleanMacroOption>(); }

TEST(BooleanMacroOption, KeepsTheFieldOrder) {
    const bool byDefault = true;
    const BooleanMacroOption option("NAME", false, &byDefault);
    constexpr std::size_t kFlags = sizeof(void*) + sizeof(std::string);
    EXPECT_EQ(tests::fieldAt<std::string>(option, sizeof(void*)), "NAME");
    EXPECT_FALSE(tests::fieldAt<bool>(option, kFlags)) << "value";
    EXPECT_TRUE(tests::fieldAt<bool>(option, kFlags + 1)) << "has default";
    EXPECT_TRUE(tests::fieldAt<bool>(option, kFlags + 2)) << "default value";
    const BooleanMacroOption other("NAME", true, nullptr);
    EXPECT_TRUE(tests::fieldAt<bool>(other, kFlags)) << "value";
    EXPECT_FALSE(tests::fieldAt<bool>(other, kFlags + 1)) << "has default";
    EXPECT_FALSE(tests::fieldAt<bool>(other, kFlags + 2)) << "default value without a default";
}

TEST(BooleanMacroOption, IsAnOptionByPublicVirtualInheritance) {
    static_assert(std::is_convertible_v<BooleanMacroOption*, MacroOptionInterface*>);
    struct Both : virtual MacroOptionInterface, BooleanMacroOption {
        Both() : BooleanMacroOption("A", true, nullptr) {}
        using BooleanMacroOption::isDefaultValue;
    };
    Both both;
    MacroOptionInterface& theOnlyBase = both;  // would be ambiguous without virtual inheritance
    EXPECT_EQ(theOnlyBase.toString(), "A=TRUE");
}

}  // namespace
}  // namespace vexa::vexautilutil
