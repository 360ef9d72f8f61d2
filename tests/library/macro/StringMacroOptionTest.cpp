#include "vexautilutil/StringMacroOption.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "library/macro/OptionTests.h"
#include "library/macro/Tokens.h"
#include "support/VirtualSlots.h"

namespace vexa::vexautilutil {
namespace {

using Texts = std::vector<std::string>;

StringMacroOption parsed(const std::string& text, const std::string* defaultValue = nullptr) {
    return parsedAs<StringMacroOption>(text, defaultValue);
}

std::string rendered(const std::string& value) { return StringMacroOption("T", value, nullptr).toString(); }

TEST(StringMacroOption, RendersBetweenDoubleQuotesByPreference) {
    EXPECT_EQ(rendered("a b"), "T=\"a b\"");
    EXPECT_EQ(rendered(""), "T=\"\"");
    EXPECT_EQ(rendered("it's"), "T=\"it's\"");
}

TEST(StringMacroOption, RendersAValueWithDoubleQuotesBetweenSingleOnes) {
    EXPECT_EQ(rendered("say \"hi\""), "T='say \"hi\"'");
    EXPECT_EQ(rendered("\""), "T='\"'");
}

TEST(StringMacroOption, RendersAValueWithBothQuotesUnreadably) {
    EXPECT_EQ(rendered("it's \"x\""), "T='it's \"x\"'");
    Tokens tokens(rendered("it's \"x\""));
    const StringMacroOption readBack(tokens.current, tokens.end, nullptr);
    EXPECT_EQ(readBack.value(), "it");
    EXPECT_EQ(tokens.rest(), (Texts{"s", " ", "\"", "x", "\"", "'"}));
}

TEST(StringMacroOption, KeepsItsNameVerbatim) {
    for (const char* name : {"", "two words", "Mixed_1"}) {
        EXPECT_EQ(StringMacroOption(name, "x", nullptr).toString(), std::string(name) + "=\"x\"");
        EXPECT_EQ(StringMacroOption(name, "x", nullptr).name(), name);
    }
}

TEST(StringMacroOption, IsAtItsDefaultOnlyByteForByte) {
    const std::string byDefault = "x";
    EXPECT_TRUE(StringMacroOption("T", "x", &byDefault).isDefaultValue());
    EXPECT_FALSE(StringMacroOption("T", "X", &byDefault).isDefaultValue());
    EXPECT_FALSE(StringMacroOption("T", "x ", &byDefault).isDefaultValue());
    EXPECT_FALSE(StringMacroOption("T", "", &byDefault).isDefaultValue());
    EXPECT_TRUE(parsed("T='x'", &byDefault).isDefaultValue());
}

TEST(StringMacroOption, IsNeverAtItsDefaultWithoutOne) {
    EXPECT_FALSE(StringMacroOption("T", "", nullptr).isDefaultValue());
    EXPECT_FALSE(parsed("T=\"\"").isDefaultValue());
}

TEST(StringMacroOption, CopiesItsDefault) {
    std::string byDefault = "x";
    const StringMacroOption option("T", "x", &byDefault);
    byDefault = "y";
    EXPECT_TRUE(option.isDefaultValue());
}

TEST(StringMacroOption, ReadsWhatStandsBetweenTheQuotes) {
    struct Case {
        const char* why;
        const char* text;
        const char* value;
        Texts rest;
    };
    const Case cases[] = {
        {"empty", "T=\"\"", "", {}},
        {"two blanks", "T=\"a  b\"", "a  b", {}},
        {"blanks at the ends", "T=\" x \"", " x ", {}},
        {"a single quote inside", "T=\"it's\"", "it's", {}},
        {"double quotes inside", "T='say \"hi\"'", "say \"hi\"", {}},
        {"single quotes", "T='abc'", "abc", {}},
        {"all delimiters", "T='[a]=-1,2'", "[a]=-1,2", {}},
        {"a backslash does not escape", "T=\"a\\\"b\"", "a\\", {"b", "\""}},
        {"more options", "T=\"a\" B=1", "a", {" ", "B", "=", "1"}},
        {"tabs and line feeds", "T=\"a\tb\nc\"", "a\tb\nc", {}},
        {"adjacent text", "T=\"a\"\"b\"", "a", {"\"", "b", "\""}},
    };
    for (const Case& c : cases) {
        Tokens tokens(c.text);
        const StringMacroOption option(tokens.current, tokens.end, nullptr);
        EXPECT_EQ(option.name(), "T") << c.why;
        EXPECT_EQ(option.value(), c.value) << c.why;
        EXPECT_EQ(tokens.rest(), c.rest) << c.why;
    }
}

TEST(StringMacroOption, RendersBackWithTheQuotesItWasWrittenWith) {
    for (const char* text : {"T=\"\"", "T=''", "T='abc'", "T=\"it's\"", "T='say \"hi\"'", "T=\" x \""}) {
        EXPECT_EQ(parsed(text).toString(), text);
    }
}

TEST(StringMacroOption, RefusesMalformedTextWhereItIsFound) {
    const std::vector<RefusalCase> cases = {
        {"no value", "T=", "Expected string operator missing", {}},
        {"a bare word", "T=abc", "Expected single or double quoted string", {"abc"}},
        {"a blank before the quote", "T= \"abc\"", "Expected single or double quoted string", {" ", "\"", "abc", "\""}},
        {"no closing double quote", "T=\"abc", "Expected string to terminate with a double quotation mark", {}},
        {"no closing single quote", "T='abc", "Expected string to terminate with a single quotation mark", {}},
        {"closed by the other quote", "T='abc\"", "Expected string to terminate with a single quotation mark", {}},
        {"a lone quote", "T=\"", "Expected string to terminate with a double quotation mark", {}},
        {"no operator", "T", "Expected assignment operator", {}},
        {"something for an operator", "T'x'", "Expected assignment operator, but found '", {"'", "x", "'"}},
        {"no name", "'x'", "Invalid macro identifier, '", {"'", "x", "'"}},
    };
    expectRefusals<StringMacroOption>(cases, nullptr);
}

RC_GTEST_PROP(StringMacroOption, IsReadBackFromItsTextUnlessItHoldsBothQuotes, ()) {
    const auto otherQuote = *rc::gen::element('\'', '"');
    const auto value = *rc::gen::container<std::string>(
        rc::gen::suchThat(rc::gen::arbitrary<char>(), [=](char c) { return c != otherQuote; }));
    const StringMacroOption readBack = parsed(rendered(value));
    RC_ASSERT(readBack.value() == value);
    RC_ASSERT(readBack.toString() == rendered(value));
}

TEST(StringMacroOption, KeepsTheSlotOrder) { expectOptionSlots<StringMacroOption>(); }

TEST(StringMacroOption, KeepsTheFieldOrder) {
    const std::string byDefault = "byDefault";
    const StringMacroOption option("NAME", "a\"b", &byDefault);
    constexpr std::size_t kText = sizeof(std::string);
    constexpr std::size_t kName = sizeof(void*);
    EXPECT_EQ(tests::fieldAt<std::string>(option, kName), "NAME");
    EXPECT_EQ(tests::fieldAt<std::string>(option, kName + kText), "a\"b");
    EXPECT_EQ(tests::fieldAt<std::string>(option, kName + 2 * kText), "'");
    EXPECT_TRUE(tests::fieldAt<bool>(option, kName + 3 * kText));
    EXPECT_EQ(tests::fieldAt<std::string>(option, kName + 3 * kText + sizeof(void*)), "byDefault");
    const StringMacroOption other("NAME", "x", nullptr);
    EXPECT_EQ(tests::fieldAt<std::string>(other, kName + 3 * kText + sizeof(void*)), "");
}

}  // namespace
}  // namespace vexa::vexautilutil
