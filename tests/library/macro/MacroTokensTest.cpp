#include "vexautilutil/MacroTokens.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "library/macro/Tokens.h"

namespace vexa::vexautilutil {
namespace {

using Texts = std::vector<std::string>;

Texts tokensOf(const std::string& text) { return Tokens(text).rest(); }

std::string identifierRefusal(const std::string& text) {
    Tokens tokens(text);
    return refusalOf([&] { parseIdentifier(tokens.current, tokens.end); });
}

TEST(Tokenize, CutsACommandAtBlanksAndEqualsSigns) {
    EXPECT_EQ(tokensOf("CMD ENABLED=TRUE COUNT=12"),
              (Texts{"CMD", " ", "ENABLED", "=", "TRUE", " ", "COUNT", "=", "12"}));
}

TEST(Tokenize, CutsASetAtItsSigns) {
    EXPECT_EQ(tokensOf("ZONES=[1-3,5]"), (Texts{"ZONES", "=", "[", "1", "-", "3", ",", "5", "]"}));
}

TEST(Tokenize, CutsAStringAtItsQuotesAndBlanks) {
    EXPECT_EQ(tokensOf("TITLE=\"a b\""), (Texts{"TITLE", "=", "\"", "a", " ", "b", "\""}));
}

TEST(Tokenize, MakesEachOfTheEightDelimitersATokenOfItsOwn) {
    EXPECT_EQ(tokensOf(" =\"'-,[]"), (Texts{" ", "=", "\"", "'", "-", ",", "[", "]"}));
}

TEST(Tokenize, MakesTwoBlanksTwoTokens) { EXPECT_EQ(tokensOf("a  b"), (Texts{"a", " ", " ", "b"})); }

TEST(Tokenize, TakesEveryOtherCharacterForPartOfAWord) {
    for (int code = -128; code < 128; ++code) {
        const char c = static_cast<char>(code);
        if (c == '\0' || std::string(" =\"'-,[]").find(c) != std::string::npos) continue;
        const std::string word = std::string("a") + c + "b";
        EXPECT_EQ(tokensOf(word), Texts{word}) << "character code " << code;
    }
}

TEST(Tokenize, TakesWordsAroundATabForOneToken) { EXPECT_EQ(tokensOf("a\tb"), Texts{"a\tb"}); }

TEST(Tokenize, TakesANulForPartOfAWord) {
    const std::string word("a\0b", 3);
    EXPECT_EQ(tokensOf(word), Texts{word});
}

TEST(Tokenize, MakesTwoTokensOfANegativeNumber) { EXPECT_EQ(tokensOf("-5"), (Texts{"-", "5"})); }

TEST(Tokenize, FindsNoTokensInAnEmptyText) { EXPECT_TRUE(tokensOf("").empty()); }

RC_GTEST_PROP(Tokenize, LosesNothing, ()) {
    const auto text = *rc::gen::container<std::string>(rc::gen::oneOf(
        rc::gen::elementOf(std::string(" =\"'-,[]")), rc::gen::elementOf(std::string("aZ09_\t\n\\.+\x80"))));
    std::string joined;
    for (const std::string& token : tokensOf(text)) joined += token;
    RC_ASSERT(joined == text);
}

TEST(ParseIdentifier, ReturnsTheNameAndMovesPastIt) {
    Tokens tokens("COUNT=12");
    EXPECT_EQ(parseIdentifier(tokens.current, tokens.end), "COUNT");
    EXPECT_EQ(tokens.rest(), (Texts{"=", "12"}));
}

TEST(ParseIdentifier, KeepsTheLetterCase) {
    Tokens tokens("Count=12");
    EXPECT_EQ(parseIdentifier(tokens.current, tokens.end), "Count");
}

TEST(ParseIdentifier, AcceptsDigitsAfterALetter) {
    Tokens tokens("A1");
    EXPECT_EQ(parseIdentifier(tokens.current, tokens.end), "A1");
}

TEST(ParseIdentifier, RefusesWhatIsNoNameWithTheWholeToken) {
    struct Case {
        const char* why;
        const char* text;
        const char* refusal;
    };
    const Case cases[] = {
        {"a digit first", "1A", "Invalid macro identifier, 1A"},
        {"an underscore, within one token", "MY_OPT", "Invalid macro identifier, MY_OPT"},
        {"an underscore first", "_A", "Invalid macro identifier, _A"},
        {"a full stop", "A.B", "Invalid macro identifier, A.B"},
        {"a blank not stepped over", " A", "Invalid macro identifier,  "},
        {"the operator", "=1", "Invalid macro identifier, ="},
        {"a tab within the word", "A\tB", "Invalid macro identifier, A\tB"},
        {"a byte beyond ASCII first", "\xC3\xA4", "Invalid macro identifier, \xC3\xA4"},
        {"a byte beyond ASCII later", "a\xFF", "Invalid macro identifier, a\xFF"},
    };
    for (const Case& c : cases) EXPECT_EQ(identifierRefusal(c.text), c.refusal) << c.why;
}

TEST(ParseIdentifier, StaysOnTheRefusedToken) {
    Tokens tokens("MY_OPT=1");
    refusalOf([&] { parseIdentifier(tokens.current, tokens.end); });
    EXPECT_EQ(tokens.rest(), (Texts{"MY_OPT", "=", "1"}));
}

TEST(ParseIdentifier, RefusesAnEmptyTextWithNothingInTheMessage) {
    EXPECT_EQ(identifierRefusal(""), "Invalid macro identifier, ");
}

TEST(ParseIdentifier, RefusesAnEmptyTokenOfAnotherTokenizer) {
    const std::string text = "=1";
    const MacroTokenizer tokens(text, MacroTokenSeparator("", "=", boost::keep_empty_tokens));
    MacroTokenIterator current = tokens.begin();
    ASSERT_EQ(*current, "");
    EXPECT_EQ(refusalOf([&] { parseIdentifier(current, tokens.end()); }), "Invalid macro identifier, ");
}

TEST(ParseIdentifier, RefusesTheEndWithTheLastTokenDelivered) {
    Tokens tokens("ENABLED=TRUE");
    while (tokens.current != tokens.end) ++tokens.current;
    EXPECT_EQ(refusalOf([&] { parseIdentifier(tokens.current, tokens.end); }), "Invalid macro identifier, TRUE");
}

TEST(ParseAssignmentOperator, ReturnsTheOperatorAndMovesPastIt) {
    Tokens tokens("=12");
    EXPECT_EQ(parseAssignmentOperator(tokens.current, tokens.end), "=");
    EXPECT_EQ(tokens.rest(), Texts{"12"});
}

TEST(ParseAssignmentOperator, LeavesASecondOperatorToTheValue) {
    Tokens tokens("COUNT==12");
    parseIdentifier(tokens.current, tokens.end);
    parseAssignmentOperator(tokens.current, tokens.end);
    EXPECT_EQ(tokens.rest(), (Texts{"=", "12"}));
}

TEST(ParseAssignmentOperator, RefusesABlankBeforeTheOperator) {
    Tokens tokens("COUNT = 12");
    parseIdentifier(tokens.current, tokens.end);
    EXPECT_EQ(refusalOf([&] { parseAssignmentOperator(tokens.current, tokens.end); }),
              "Expected assignment operator, but found  ");
    EXPECT_EQ(tokens.rest(), (Texts{" ", "=", " ", "12"}));
}

TEST(ParseAssignmentOperator, RefusesAWordThatOnlyBeginsLikeIt) {
    Tokens tokens("X");
    EXPECT_EQ(refusalOf([&] { parseAssignmentOperator(tokens.current, tokens.end); }),
              "Expected assignment operator, but found X");
}

TEST(ParseAssignmentOperator, RefusesTheEnd) {
    Tokens tokens("COUNT");
    parseIdentifier(tokens.current, tokens.end);
    EXPECT_EQ(refusalOf([&] { parseAssignmentOperator(tokens.current, tokens.end); }), "Expected assignment operator");
    EXPECT_EQ(tokens.current, tokens.end);
}

}  // namespace
}  // namespace vexa::vexautilutil
