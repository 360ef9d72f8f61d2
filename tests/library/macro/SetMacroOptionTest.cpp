#include "vexautilutil/SetMacroOption.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "library/macro/OptionTests.h"
#include "library/macro/Tokens.h"
#include "support/Sets.h"
#include "support/VirtualSlots.h"
#include "vexa/InvalidArgumentException.h"

namespace vexa::vexautilutil {
namespace {

using Texts = std::vector<std::string>;
using tests::setOf;
using toolbox::Set;

SetMacroOption parsed(const std::string& text, bool hasDefault = false, const Set* defaultValue = nullptr) {
    return parsedAs<SetMacroOption>(text, hasDefault, defaultValue);
}

std::string refusal(const std::string& text, Texts* rest) {
    return refusedAs<SetMacroOption>(text, rest, false, nullptr);
}

// Returns the message with which Set refuses a text.
std::string setsOwnRefusal(const std::string& text) {
    try {
        setOf(text);
    } catch (const InvalidArgumentException& error) {
        return error.what();
    }
    return "accepted";
}

TEST(SetMacroOption, RendersTheSetsOwnText) {
    const Set set = setOf("[5,1-3]");
    EXPECT_EQ(SetMacroOption("ZONES", &set, false, nullptr).toString(), "ZONES=[1-3,5]");
}

TEST(SetMacroOption, KeepsItsNameVerbatim) {
    const Set set;
    for (const char* name : {"", "two words", "Mixed_1"}) {
        const SetMacroOption option(name, &set, false, nullptr);
        EXPECT_EQ(option.name(), name);
        EXPECT_EQ(option.toString(), std::string(name) + "=[]");
    }
}

TEST(SetMacroOption, CopiesTheSetsItIsMadeFrom) {
    Set set = setOf("[1]");
    Set byDefault = setOf("[2]");
    const SetMacroOption option("ZONES", &set, true, &byDefault);
    set.clear();
    byDefault.clear();
    EXPECT_EQ(option.value()->toString(), "[1]");
}

TEST(SetMacroOption, SharesItsSetWithWhoeverAsksForIt) {
    const Set set = setOf("[1]");
    const SetMacroOption option("ZONES", &set, false, nullptr);
    EXPECT_EQ(option.value(), option.value());
    option.value()->assign("[1,7]");
    EXPECT_EQ(option.toString(), "ZONES=[1,7]");
}

TEST(SetMacroOption, KeepsItsSetAliveForOthers) {
    std::shared_ptr<Set> value;
    {
        const Set set = setOf("[1]");
        value = SetMacroOption("ZONES", &set, false, nullptr).value();
    }
    EXPECT_EQ(value.use_count(), 1);
    EXPECT_EQ(value->toString(), "[1]");
}

TEST(SetMacroOption, SharesItsSetWithItsCopy) {
    const Set set = setOf("[1]");
    const SetMacroOption option("ZONES", &set, false, nullptr);
    const SetMacroOption copy(option);
    EXPECT_EQ(copy.value(), option.value());
    EXPECT_EQ(copy.name(), "ZONES");
}

TEST(SetMacroOption, HoldsNoSetWhenMadeWithoutValue) {
    EXPECT_EQ(SetMacroOption("ZONES", nullptr, false, nullptr).value(), nullptr);
}

TEST(SetMacroOption, IsNotAtADefaultWithTheSameMembers) {
    const Set set = setOf("[1-3]");
    EXPECT_FALSE(SetMacroOption("ZONES", &set, true, &set).isDefaultValue());
}

TEST(SetMacroOption, IsNotAtADefaultWithOtherMembers) {
    const Set set = setOf("[1-3]");
    const Set other = setOf("[4]");
    EXPECT_FALSE(SetMacroOption("ZONES", &set, true, &other).isDefaultValue());
}

TEST(SetMacroOption, IsAtItsDefaultOnlyWithoutValueAndDefault) {
    const Set set = setOf("[1]");
    EXPECT_TRUE(SetMacroOption("ZONES", nullptr, true, nullptr).isDefaultValue());
    EXPECT_FALSE(SetMacroOption("ZONES", nullptr, false, nullptr).isDefaultValue());
    EXPECT_FALSE(SetMacroOption("ZONES", nullptr, true, &set).isDefaultValue());
    EXPECT_FALSE(SetMacroOption("ZONES", &set, true, nullptr).isDefaultValue());
}

TEST(SetMacroOption, IgnoresADefaultThatTheFlagDenies) {
    const Set set = setOf("[1]");
    const SetMacroOption option("ZONES", nullptr, false, &set);
    EXPECT_FALSE(option.isDefaultValue());
    constexpr std::size_t kDefault = sizeof(void*) + sizeof(std::string) + sizeof(std::shared_ptr<Set>) + sizeof(void*);
    EXPECT_EQ(tests::fieldAt<std::shared_ptr<Set>>(option, kDefault), nullptr);
}

TEST(SetMacroOption, IsNeverAtItsDefaultWhenParsed) {
    const Set set = setOf("[1]");
    EXPECT_FALSE(parsed("A=[1]").isDefaultValue());
    EXPECT_FALSE(parsed("A=[1]", true, &set).isDefaultValue());
    EXPECT_FALSE(parsed("A=[1]", true, nullptr).isDefaultValue());
    EXPECT_FALSE(parsed("A=[]", true, nullptr).isDefaultValue());
}

TEST(SetMacroOption, ReadsNameAndSet) {
    const SetMacroOption option = parsed("Zones=[1-3,5]");
    EXPECT_EQ(option.name(), "Zones");
    EXPECT_EQ(option.value()->toString(), "[1-3,5]");
}

TEST(SetMacroOption, ReadsAnEmptySet) { EXPECT_EQ(parsed("ZONES=[]").value()->toString(), "[]"); }

TEST(SetMacroOption, HandsBlanksWithinTheBracketsToTheSet) {
    EXPECT_EQ(parsed("ZONES=[ 1 , 2 ]").value()->toString(), "[1-2]");
}

TEST(SetMacroOption, LeavesTheIteratorPastTheClosingBracket) {
    Tokens tokens("ZONES=[1]X");
    const SetMacroOption option(tokens.current, tokens.end, false, nullptr);
    EXPECT_EQ(tokens.rest(), Texts{"X"});
}

TEST(SetMacroOption, StopsAtTheFirstClosingBracket) {
    Tokens tokens("ZONES=[1]]");
    const SetMacroOption option(tokens.current, tokens.end, false, nullptr);
    EXPECT_EQ(tokens.rest(), Texts{"]"});
}

TEST(SetMacroOption, RefusesMalformedTextWhereItIsFound) {
    const std::vector<RefusalCase> cases = {
        {"no value", "ZONES=", "Expected set operator missing", {}},
        {"no bracket", "ZONES=1", "Expected opening set character, [", {"1"}},
        {"a blank before the bracket", "ZONES= [1]", "Expected opening set character, [", {" ", "[", "1", "]"}},
        {"a closing bracket first", "ZONES=]", "Expected opening set character, [", {"]"}},
        {"never closed", "ZONES=[1,2", "Expected closing set character, ]", {}},
        {"nothing after the bracket", "ZONES=[", "Expected closing set character, ]", {}},
        {"no operator", "ZONES [1]", "Expected assignment operator, but found  ", {" ", "[", "1", "]"}},
        {"no name", "[1]", "Invalid macro identifier, [", {"[", "1", "]"}},
        {"nothing", "", "Invalid macro identifier, ", {}},
    };
    expectRefusals<SetMacroOption>(cases, false, nullptr);
}

TEST(SetMacroOption, PassesOnWhatTheSetSaysOfItsText) {
    for (const char* text : {"[1,,2]", "[ a ]", "[3-1]", "[[1]", "[1\t\xC3\xA4]"}) {
        Texts rest;
        EXPECT_EQ(refusal(std::string("ZONES=") + text + " X", &rest), setsOwnRefusal(text)) << text;
        EXPECT_EQ(rest, (Texts{" ", "X"})) << text;
    }
}

TEST(SetMacroOption, KeepsTheSetsRefusalAsTheCause) {
    Tokens tokens("ZONES=[x]");
    try {
        SetMacroOption(tokens.current, tokens.end, false, nullptr);
    } catch (const MacroCommandError& error) {
        ASSERT_NE(error.cause(), nullptr);
        EXPECT_THROW(std::rethrow_exception(error.cause()), InvalidArgumentException);
        return;
    }
    FAIL() << "accepted";
}

RC_GTEST_PROP(SetMacroOption, IsReadBackFromItsText, ()) {
    const auto members = *rc::gen::container<std::vector<uint16_t>>(rc::gen::arbitrary<uint16_t>());
    const Set set = setOf(tests::setText(members));
    const SetMacroOption readBack = parsed(SetMacroOption("ZONES", &set, false, nullptr).toString());
    RC_ASSERT(readBack.name() == "ZONES");
    RC_ASSERT(readBack.value()->toString() == set.toString());
}

TEST(SetMacroOption, KeepsTheSlotOrder) { expectOptionSlots<SetMacroOption>(); }

TEST(SetMacroOption, KeepsTheFieldOrder) {
    const Set set = setOf("[1]");
    const SetMacroOption option("NAME", &set, true, &set);
    constexpr std::size_t kValue = sizeof(void*) + sizeof(std::string);
    constexpr std::size_t kFlag = kValue + sizeof(std::shared_ptr<Set>);
    constexpr std::size_t kDefault = kFlag + sizeof(void*);
    EXPECT_EQ(tests::fieldAt<std::string>(option, sizeof(void*)), "NAME");
    EXPECT_EQ(tests::fieldAt<std::shared_ptr<Set>>(option, kValue), option.value());
    EXPECT_TRUE(tests::fieldAt<bool>(option, kFlag));
    const auto& byDefault = tests::fieldAt<std::shared_ptr<Set>>(option, kDefault);
    ASSERT_NE(byDefault, nullptr);
    EXPECT_NE(byDefault, option.value());
    EXPECT_EQ(byDefault->toString(), "[1]");
}

}  // namespace
}  // namespace vexa::vexautilutil
