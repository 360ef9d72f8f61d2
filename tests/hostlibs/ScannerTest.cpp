#include "vexa/Scanner.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "support/FailingAllocator.h"
#include "support/GlobalLocale.h"

namespace vexa {
namespace {

constexpr const char* kAllWhiteSpace = " \t\n\r\v\f";

Scanner scannerOf(const std::string& text) {
    Scanner scanner;
    scanner.reset(text);
    return scanner;
}

// Returns the unread text.
std::string restOf(Scanner scanner) {
    std::string rest;
    while (scanner.hasNextChar()) rest += scanner.nextChar();
    return rest;
}

// Returns the number as text, or "refused". Checks that hasNextDoubleToken() and nextDoubleToken() agree.
std::string doubleOf(const std::string& text) {
    Scanner scanner = scannerOf(text);
    if (!scanner.hasNextDoubleToken()) {
        EXPECT_EQ(scanner.nextDoubleToken(), 0.0) << text;
        EXPECT_EQ(restOf(scanner), text);
        return "refused";
    }
    const double value = scanner.nextDoubleToken();
    EXPECT_EQ(restOf(scanner), "") << text;
    char digits[40];
    std::snprintf(digits, sizeof digits, "%.17g", value);
    return digits;
}

std::string integerOf(const std::string& text) {
    Scanner scanner = scannerOf(text);
    if (!scanner.hasNextInt64Token()) {
        EXPECT_EQ(scanner.nextInt64Token(), 0) << text;
        EXPECT_EQ(restOf(scanner), text);
        return "refused";
    }
    const int64_t value = scanner.nextInt64Token();
    EXPECT_EQ(restOf(scanner), "") << text;
    return std::to_string(value);
}

TEST(Scanner, IsOverAnEmptyTextAtFirst) {
    Scanner scanner;
    EXPECT_FALSE(scanner.hasNextChar());
    EXPECT_FALSE(scanner.hasNextToken());
    EXPECT_FALSE(scanner.hasNextToken("]"));
    EXPECT_FALSE(scanner.hasNextDoubleToken());
    EXPECT_FALSE(scanner.hasNextInt64Token());
}

TEST(Scanner, ReadsACommandAsItsUsersDo) {
    Scanner scanner = scannerOf("COUNT = 12");
    EXPECT_EQ(scanner.nextToken(), "COUNT");
    scanner.skipWhitespace();
    EXPECT_EQ(scanner.nextChar(), '=');
    EXPECT_EQ(scanner.nextInt64Token(), 12);
    EXPECT_FALSE(scanner.hasNextToken());
}

TEST(Scanner, ResetStartsOverOnACopyOfTheText) {
    std::string text = "one two";
    Scanner scanner = scannerOf("before");
    scanner.nextChar();
    scanner.reset(text);
    text = "changed";
    EXPECT_EQ(restOf(scanner), "one two");
}

TEST(Scanner, ResetStartsOverOnAShorterText) {
    Scanner scanner = scannerOf("a long text");
    while (scanner.hasNextChar()) scanner.nextChar();
    scanner.reset("b");
    EXPECT_EQ(restOf(scanner), "b");
}

TEST(Scanner, SkipsEveryKindOfWhiteSpaceAndNothingElse) {
    struct Case {
        const char* why;
        std::string text;
        std::string rest;
    };
    const Case cases[] = {
        {"all kinds", std::string(kAllWhiteSpace) + "x" + kAllWhiteSpace, std::string("x") + kAllWhiteSpace},
        {"none", "x y", "x y"},
        {"to the end", kAllWhiteSpace, ""},
        {"the character before the tab", "\b", "\b"},
        {"the character behind the carriage return", "\x0e", "\x0e"},
        {"NUL", std::string(1, '\0'), std::string(1, '\0')},
        {"a no-break space in UTF-8", "\xc2\xa0x", "\xc2\xa0x"},
        {"a no-break space in Latin-1", "\xa0x", "\xa0x"},
        {"a next-line character in Latin-1", "\x85x", "\x85x"},
    };
    for (const Case& c : cases) {
        Scanner scanner = scannerOf(c.text);
        scanner.skipWhitespace();
        EXPECT_EQ(restOf(scanner), c.rest) << c.why;
    }
}

TEST(ScannerChar, ReturnsEveryCharacterWhiteSpaceIncluded) {
    using namespace std::string_literals;
    const std::string text = " a\t\0\xff\n"s;
    EXPECT_EQ(restOf(scannerOf(text)), text);
}

TEST(ScannerChar, AtTheEndReturnsNulAndStays) {
    Scanner scanner = scannerOf("a");
    EXPECT_EQ(scanner.nextChar(), 'a');
    EXPECT_EQ(scanner.nextChar(), '\0');
    EXPECT_EQ(scanner.nextChar(), '\0');
    EXPECT_FALSE(scanner.hasNextChar());
}

TEST(ScannerChar, AtTheEndNeverReachesWhatAnEarlierTextLeft) {
    Scanner scanner = scannerOf("ab45 ");
    scanner.reset("a");
    scanner.nextChar();
    scanner.nextChar();
    EXPECT_FALSE(scanner.hasNextInt64Token());
    EXPECT_FALSE(scanner.hasNextDoubleToken());
}

TEST(ScannerChar, TellsTheNextCharacterWithoutAdvancing) {
    const Scanner scanner = scannerOf("ab");
    EXPECT_TRUE(scanner.hasNextChar('a'));
    EXPECT_FALSE(scanner.hasNextChar('b'));
    EXPECT_TRUE(scanner.hasNextChar());
    EXPECT_EQ(restOf(scanner), "ab");
}

TEST(ScannerChar, HasNoNulAtTheEnd) {
    EXPECT_FALSE(scannerOf("").hasNextChar('\0'));
    EXPECT_TRUE(scannerOf(std::string(1, '\0')).hasNextChar('\0'));
}

TEST(ScannerToken, EndsAtWhiteSpaceAndNowhereElse) {
    for (const char* space = kAllWhiteSpace; *space != '\0'; ++space) {
        Scanner scanner = scannerOf(std::string(1, *space) + "COUNT=12,[3]" + *space + "x");
        EXPECT_EQ(scanner.nextToken(), "COUNT=12,[3]");
        EXPECT_EQ(restOf(scanner), std::string(1, *space) + "x");
    }
}

TEST(ScannerToken, EndsAtTheEndOfTheText) {
    Scanner scanner = scannerOf("one two");
    EXPECT_EQ(scanner.nextToken(), "one");
    EXPECT_TRUE(scanner.hasNextToken());
    EXPECT_EQ(scanner.nextToken(), "two");
    EXPECT_FALSE(scanner.hasNextToken());
}

TEST(ScannerToken, HasNoneInWhiteSpaceAlone) {
    Scanner scanner = scannerOf(kAllWhiteSpace);
    EXPECT_FALSE(scanner.hasNextToken());
    EXPECT_EQ(scanner.nextToken(), "");
    EXPECT_EQ(restOf(scanner), kAllWhiteSpace);
}

TEST(Scanner, AskingNeverAdvances) {
    for (const char* text : {" 12 x]", " x 12]", "]", " 1e400 ]"}) {
        const Scanner scanner = scannerOf(text);
        scanner.hasNextChar();
        scanner.hasNextChar(' ');
        scanner.hasNextToken();
        scanner.hasNextToken("]");
        scanner.hasNextDoubleToken();
        scanner.hasNextInt64Token();
        EXPECT_EQ(restOf(scanner), text);
    }
}

TEST(ScannerDelimitedToken, EndsAtTheFirstDelimiterWhichStaysUnread) {
    struct Case {
        const char* why;
        const char* text;
        const char* delimiters;
        const char* token;
        const char* rest;
    };
    const Case cases[] = {
        {"a set", "1-3,5] x", "]", "1-3,5", "] x"},
        {"white space is kept", " 1 , 2 ]", "]", " 1 , 2 ", "]"},
        {"the first of several", "a;b,c", ",;", "a", ";b,c"},
        {"the delimiter ends the text", "a]", "]", "a", "]"},
        {"white space as a delimiter", "a b", " ", "a", " b"},
    };
    for (const Case& c : cases) {
        Scanner scanner = scannerOf(c.text);
        EXPECT_TRUE(scanner.hasNextToken(c.delimiters)) << c.why;
        EXPECT_EQ(scanner.nextToken(c.delimiters), c.token) << c.why;
        EXPECT_EQ(restOf(scanner), c.rest) << c.why;
    }
}

TEST(ScannerDelimitedToken, HasNoneWithoutADelimiterOrWithNothingBeforeIt) {
    struct Case {
        const char* why;
        std::string text;
        const char* delimiters;
    };
    const Case cases[] = {
        {"no delimiter follows", "1,2", "]"},
        {"nothing before the delimiter", "]1", "]"},
        {"no text", "", "]"},
        {"no delimiters to look for", "1]", ""},
        {"no delimiters to look for, nor is NUL one", std::string("1\0]", 3), ""},
    };
    for (const Case& c : cases) {
        Scanner scanner = scannerOf(c.text);
        EXPECT_FALSE(scanner.hasNextToken(c.delimiters)) << c.why;
        EXPECT_EQ(scanner.nextToken(c.delimiters), "") << c.why;
        EXPECT_EQ(restOf(scanner), c.text) << c.why;
    }
}

TEST(ScannerDelimitedToken, LooksOnlyAtWhatIsLeft) {
    Scanner scanner = scannerOf("a]bc]d");
    scanner.nextToken("]");
    scanner.nextChar();
    EXPECT_EQ(scanner.nextToken("]"), "bc");
    scanner.nextChar();
    EXPECT_FALSE(scanner.hasNextToken("]"));
}

TEST(ScannerDelimitedToken, AskedForIsNotTakenForOneOfOtherDelimiters) {
    Scanner scanner = scannerOf("ab,c]");
    EXPECT_TRUE(scanner.hasNextToken(","));
    EXPECT_EQ(Scanner(scanner).nextToken("]"), "ab,c");
    EXPECT_EQ(Scanner(scanner).nextToken("],"), "ab");
    EXPECT_EQ(Scanner(scanner).nextToken(), "ab,c]");
    EXPECT_EQ(scanner.nextToken(","), "ab");
}

TEST(ScannerInt64, ReadsDecimalIntegers) {
    struct Case {
        const char* why;
        const char* text;
        const char* result;
    };
    const Case cases[] = {
        {"plain", "12", "12"},
        {"negative", "-3", "-3"},
        {"with a plus sign", "+7", "7"},
        {"zero", "0", "0"},
        {"negative zero", "-0", "0"},
        {"leading zeros", "007", "7"},
        {"many leading zeros", "00000000000000000000000000012", "12"},
        {"after white space", " \t\n12", "12"},
        {"the highest", "9223372036854775807", "9223372036854775807"},
        {"the highest with a plus sign", "+9223372036854775807", "9223372036854775807"},
        {"one more", "9223372036854775808", "refused"},
        {"the lowest", "-9223372036854775808", "-9223372036854775808"},
        {"one less", "-9223372036854775809", "refused"},
        {"far too high", "99999999999999999999999999", "refused"},
        {"nothing", "", "refused"},
        {"white space alone", "  ", "refused"},
        {"a sign alone", "-", "refused"},
        {"a plus sign alone", "+", "refused"},
        {"two signs", "+-1", "refused"},
        {"two plus signs", "++1", "refused"},
        {"two minus signs", "--1", "refused"},
        {"a minus before a plus", "-+1", "refused"},
        {"hexadecimal", "0x10", "refused"},
        {"a fraction", "1.0", "refused"},
        {"an exponent", "1e3", "refused"},
        {"a comma", "1,5", "refused"},
        {"text behind", "12abc", "refused"},
        {"a word", "all", "refused"},
    };
    for (const Case& c : cases) EXPECT_EQ(integerOf(c.text), c.result) << c.why;
}

TEST(ScannerInt64, MovesPastTheNumberAndNoFurther) {
    Scanner scanner = scannerOf(" 12 13");
    EXPECT_EQ(scanner.nextInt64Token(), 12);
    EXPECT_EQ(restOf(scanner), " 13");
}

TEST(ScannerInt64, OfANewTextIsReadAnew) {
    Scanner scanner;
    scanner.reset("12 13");
    EXPECT_TRUE(scanner.hasNextInt64Token());
    EXPECT_TRUE(scanner.hasNextDoubleToken());
    scanner.reset("7.5");
    EXPECT_FALSE(scanner.hasNextInt64Token());
    EXPECT_EQ(scanner.nextDoubleToken(), 7.5);
}

TEST(ScannerInt64, AskedForIsForgottenWhenAnotherOperationMovesOn) {
    Scanner scanner;
    scanner.reset("12 13");
    EXPECT_TRUE(scanner.hasNextInt64Token());
    EXPECT_EQ(scanner.nextChar(), '1');
    EXPECT_EQ(scanner.nextInt64Token(), 2);
    EXPECT_EQ(scanner.nextInt64Token(), 13);
}

TEST(ScannerInt64, ReadsManyDigitsUpToTheLimitsExactly) {
    struct Case {
        const char* why;
        const char* text;
        int64_t value;
    };
    const Case cases[] = {
        {"18 digits", "999999999999999999", 999999999999999999},
        {"19 digits", "1000000000000000000", 1000000000000000000},
        {"the highest", "9223372036854775807", std::numeric_limits<int64_t>::max()},
        {"the lowest", "-9223372036854775808", std::numeric_limits<int64_t>::min()},
        {"leading zeros", "-00000000000000000000012", -12},
    };
    for (const Case& c : cases) {
        Scanner scanner;
        scanner.reset(c.text);
        EXPECT_TRUE(scanner.hasNextInt64Token()) << c.why;
        EXPECT_EQ(scanner.nextInt64Token(), c.value) << c.why;
        EXPECT_FALSE(scanner.hasNextChar()) << c.why;
    }
}

TEST(ScannerDouble, ReadsFloatingPointNumbers) {
    struct Case {
        const char* why;
        const char* text;
        const char* result;
    };
    const Case cases[] = {
        {"an integer", "12", "12"},
        {"negative", "-3", "-3"},
        {"with a plus sign", "+7", "7"},
        {"no digit before the point", ".5", "0.5"},
        {"no digit after the point", "5.", "5"},
        {"a plus sign before a point", "+.5", "0.5"},
        {"an exponent", "1e-7", "9.9999999999999995e-08"},
        {"an exponent in upper case", "-2.5E+6", "-2500000"},
        {"after white space", " \f12.5", "12.5"},
        {"zero", "0", "0"},
        {"negative zero", "-0.0", "-0"},
        {"correctly rounded", "0.1", "0.10000000000000001"},
        {"half-way, to even", "9007199254740993", "9007199254740992"},
        {"a little more than half-way", "9007199254740993.00000000000000000000000001", "9007199254740994"},
        {"infinity", "inf", "inf"},
        {"infinity in full", "-Infinity", "-inf"},
        {"infinity with a plus sign", "+INF", "inf"},
        {"not a number", "nan", "nan"},
        {"not a number in upper case", "+NaN", "nan"},
        {"the largest", "1.7976931348623157e308", "1.7976931348623157e+308"},
        {"rounds to the largest", "1.7976931348623158e308", "1.7976931348623157e+308"},
        {"half-way beyond the largest", "1.7976931348623159e308", "refused"},
        {"over the largest", "1e400", "refused"},
        {"under the lowest", "-1e400", "refused"},
        {"the smallest", "4.9e-324", "4.9406564584124654e-324"},
        {"rounds to the smallest", "2.5e-324", "4.9406564584124654e-324"},
        {"rounds to zero", "2.4e-324", "0"},
        {"underflow", "1e-400", "0"},
        {"negative underflow", "-1e-400", "-0"},
        {"underflow with a plus sign", "+1e-400", "0"},
        {"no digits", ".", "refused"},
        {"a sign alone", "-", "refused"},
        {"a plus sign alone", "+", "refused"},
        {"two signs", "+-1", "refused"},
        {"two plus signs", "++1", "refused"},
        {"a minus before a plus", "-+1", "refused"},
        {"two signs before a word", "+-inf", "refused"},
        {"an exponent without digits", "1e", "refused"},
        {"an exponent with a sign alone", "1e+", "refused"},
        {"an exponent alone", "e5", "refused"},
        {"two points", "1.2.3", "refused"},
        {"a comma", "1,5", "refused"},
        {"hexadecimal", "0x10", "refused"},
        {"hexadecimal with an exponent", "0x1p3", "refused"},
        {"text behind", "12abc", "refused"},
        {"text behind infinity", "infinit", "refused"},
        {"not a number with a note", "nan(abc)", "refused"},
        {"not a number with an empty note", "-nan()", "refused"},
        {"a suffix", "1.5f", "refused"},
        {"nothing", "", "refused"},
        {"white space alone", "  ", "refused"},
    };
    for (const Case& c : cases) EXPECT_EQ(doubleOf(c.text), c.result) << c.why << ": " << c.text;
}

TEST(ScannerDouble, TellsOverflowFromUnderflowHoweverLongTheNumber) {
    const std::string zeros(500, '0');
    const std::string nines(400, '9');
    struct Case {
        const char* why;
        std::string text;
        const char* result;
    };
    const Case cases[] = {
        {"a huge exponent", "1e99999999999999999999", "refused"},
        {"a huge exponent with a plus sign", "1e+99999999999999999999", "refused"},
        {"a huge negative exponent", "1e-99999999999999999999", "0"},
        {"a huge negative exponent of a negative number", "-1e-99999999999999999999", "-0"},
        {"the largest exponent of 64 bits", "1e9223372036854775807", "refused"},
        {"the least exponent of 64 bits", "1e-9223372036854775808", "0"},
        {"zero with a huge exponent", "0e99999999999999999999", "0"},
        {"many zeros after the point", "0." + zeros + "1", "0"},
        {"many zeros after the point, none before", "-." + zeros + "1", "-0"},
        {"many zeros undone by the exponent", "0." + zeros + "1e501", "1"},
        {"many zeros outdone by the exponent", "0." + zeros + "1e900", "refused"},
        {"many digits", nines, "refused"},
        {"many digits with a point", nines + ".5", "refused"},
        {"many zeros before the number", zeros + "1e400", "refused"},
        {"many zeros before the number, and underflow", zeros + "1e-400", "0"},
        {"many digits undone by the exponent", nines + "e-400", "1"},
        {"many digits outdone by the exponent", nines + "e-800", "0"},
        {"many digits nearly undone by the exponent", nines + "e-300", "1.0000000000000000e+100"},
        {"many digits hardly undone by the exponent", nines + "e-50", "refused"},
        {"many zeros hardly undone by the exponent", "0." + zeros + "1e100", "0"},
        {"many zeros behind the number", "1" + zeros + "e-900", "0"},
        {"many digits before a negative number", nines + " -99999", "refused"},
        {"a small mantissa hardly outdone by the exponent", "0.00001e+500", "refused"},
        {"overflow with a point among the digits", "123.456e400", "refused"},
        {"underflow with a point among the digits", "123.456e-400", "0"},
    };
    for (const Case& c : cases) {
        const std::string result = doubleOf(c.text);
        if (result != "refused") {
            EXPECT_EQ(std::strtod(result.c_str(), nullptr), std::strtod(c.result, nullptr)) << c.why;
            EXPECT_EQ(result[0] == '-', c.result[0] == '-') << c.why;
        }
        EXPECT_EQ(result == "refused", std::strcmp(c.result, "refused") == 0) << c.why;
    }
}

TEST(ScannerDouble, MovesPastTheNumberAndNoFurther) {
    Scanner scanner = scannerOf(" 1.5 2.5");
    EXPECT_EQ(scanner.nextDoubleToken(), 1.5);
    EXPECT_EQ(restOf(scanner), " 2.5");
}

// The global C++ locale has a decimal comma and digit groups.
TEST(Scanner, IgnoresTheLocale) {
    const tests::GlobalLocale locale(new tests::GroupedNumbers);
    EXPECT_EQ(doubleOf("1.5"), "1.5");
    EXPECT_EQ(doubleOf("1,5"), "refused");
    EXPECT_EQ(doubleOf("1.234.567"), "refused");
    EXPECT_EQ(integerOf("1.234"), "refused");
    EXPECT_EQ(integerOf("1234567"), "1234567");
}

TEST(Scanner, IgnoresWhatTheLocaleTakesForWhiteSpace) {
    const tests::GlobalLocale locale(new tests::UnderscoreForBlank);
    EXPECT_EQ(integerOf(" \t12"), "12");
    EXPECT_EQ(integerOf("12_"), "refused");
    EXPECT_EQ(integerOf("_12"), "refused");
    Scanner scanner = scannerOf(" one_two three");
    EXPECT_EQ(scanner.nextToken(), "one_two");
}

TEST(Scanner, CopiesAreIndependent) {
    Scanner source = scannerOf("one two");
    source.nextToken();
    Scanner copy(source);
    Scanner assigned;
    assigned = source;
    source.reset("three");
    EXPECT_EQ(copy.nextToken(), "two");
    EXPECT_EQ(restOf(assigned), " two");
}

TEST(Scanner, AdvancesOnlyWhenThereIsMemoryForTheToken) {
    const std::string token(40, 'x');
    const std::string delimiters = "]";
    std::string taken;
    Scanner scanner = scannerOf(token + "]");
    {
        const tests::FailingAllocator allocator(0, tests::Failing::Once);
        try {
            taken = scanner.nextToken(delimiters);
        } catch (const std::bad_alloc&) {}
    }
    EXPECT_TRUE(tests::FailingAllocator::hasFailed());
    EXPECT_EQ(restOf(scanner), token + "]");
    {
        const tests::FailingAllocator allocator(0, tests::Failing::Once);
        try {
            taken = scanner.nextToken();
        } catch (const std::bad_alloc&) {}
    }
    EXPECT_TRUE(tests::FailingAllocator::hasFailed());
    EXPECT_EQ(restOf(scanner), token + "]");
}

bool areSame(double a, double b) {
    return (std::isnan(a) && std::isnan(b)) || (a == b && std::signbit(a) == std::signbit(b));
}

rc::Gen<std::string> someDigits(std::size_t atMost) {
    return rc::gen::resize(static_cast<int>(atMost),
                           rc::gen::container<std::string>(rc::gen::elementOf(std::string("0000123456789"))));
}

// The test program keeps the "C" locale, in which strtod() reads the same numbers.
RC_GTEST_PROP(ScannerProperty, ReadsDecimalNumbersAsTheCLibraryDoes, ()) {
    std::string text = *rc::gen::element<std::string>("", "-", "+");
    text += "1" + *someDigits(350);
    if (*rc::gen::arbitrary<bool>()) text += "." + *someDigits(400);
    if (*rc::gen::arbitrary<bool>()) text += "e" + std::to_string(*rc::gen::inRange(-800, 800));
    const double expected = std::strtod(text.c_str(), nullptr);
    Scanner scanner = scannerOf(text);
    const bool isInRange = !std::isinf(expected);
    RC_CLASSIFY(!isInRange, "too large");
    RC_CLASSIFY(expected == 0.0, "too small");
    RC_ASSERT(scanner.hasNextDoubleToken() == isInRange);
    if (isInRange) RC_ASSERT(areSame(scanner.nextDoubleToken(), expected));
}

RC_GTEST_PROP(ScannerProperty, ReadsSmallNumbersAsTheCLibraryDoes, ()) {
    const std::string text = "-0." + std::string(*rc::gen::inRange<std::size_t>(0, 400), '0') + *someDigits(30) + "7e" +
                             std::to_string(*rc::gen::inRange(-30, 800));
    const double expected = std::strtod(text.c_str(), nullptr);
    Scanner scanner = scannerOf(text);
    RC_ASSERT(scanner.hasNextDoubleToken() == !std::isinf(expected));
    if (!std::isinf(expected)) RC_ASSERT(areSame(scanner.nextDoubleToken(), expected));
}

RC_GTEST_PROP(ScannerProperty, ReadsEveryDoubleBackUnchanged, ()) {
    const auto bits = *rc::gen::arbitrary<uint64_t>();
    double value = 0.0;
    std::memcpy(&value, &bits, sizeof value);
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", value);
    Scanner scanner = scannerOf(text);
    RC_ASSERT(scanner.hasNextDoubleToken());
    RC_ASSERT(areSame(scanner.nextDoubleToken(), value));
}

RC_GTEST_PROP(ScannerProperty, ReadsEveryIntegerBackUnchanged, (int64_t value)) {
    Scanner scanner = scannerOf(std::to_string(value));
    RC_ASSERT(scanner.hasNextInt64Token());
    RC_ASSERT(scanner.nextInt64Token() == value);
}

// Calls the operation with this number. Returns its result as text.
std::string answerOf(Scanner& scanner, int number) {
    switch (number) {
        case 0: return scanner.hasNextToken() ? "token" : "none";
        case 1: return scanner.hasNextToken("]") ? "bracketed" : "none";
        case 2: return scanner.hasNextToken("=]") ? "delimited" : "none";
        case 3: return scanner.hasNextDoubleToken() ? "double" : "none";
        case 4: return scanner.hasNextInt64Token() ? "integer" : "none";
        case 5: return scanner.nextToken();
        case 6: return scanner.nextToken("]");
        case 7: return scanner.nextToken("=");
        case 8: return std::to_string(scanner.nextDoubleToken());
        case 9: return std::to_string(scanner.nextInt64Token());
        case 10: return {scanner.nextChar()};
        default: scanner.skipWhitespace(); return "";
    }
}

RC_GTEST_PROP(ScannerProperty, AnswersAsOneThatWasAskedNothingBefore, ()) {
    Scanner scanner = scannerOf(*rc::gen::container<std::string>(rc::gen::elementOf(std::string("12.-=]] a"))));
    for (const int operation : *rc::gen::container<std::vector<int>>(rc::gen::inRange(0, 12))) {
        Scanner fresh = scannerOf(restOf(scanner));
        RC_ASSERT(answerOf(scanner, operation) == answerOf(fresh, operation));
        RC_ASSERT(restOf(scanner) == restOf(fresh));
    }
}

// If hasNextToken() returns true, nextToken() returns a token. All tokens and white space together are the text.
RC_GTEST_PROP(ScannerProperty, TokensAndWhiteSpaceMakeUpTheText, ()) {
    const auto text = *rc::gen::container<std::string>(rc::gen::elementOf(std::string("ab1.-+e= \t\n\v\f\r")));
    Scanner scanner = scannerOf(text);
    std::string read;
    while (scanner.hasNextToken()) {
        while (scanner.hasNextChar() && std::strchr(kAllWhiteSpace, restOf(scanner)[0]) != nullptr) {
            read += scanner.nextChar();
        }
        const std::string token = scanner.nextToken();
        RC_ASSERT(!token.empty());
        RC_ASSERT(token.find_first_of(kAllWhiteSpace) == std::string::npos);
        read += token;
    }
    RC_ASSERT(read + restOf(scanner) == text);
}

}  // namespace
}  // namespace vexa
