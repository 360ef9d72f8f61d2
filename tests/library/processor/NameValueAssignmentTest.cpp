// Tests the NAME = value text of a composed command, and that the getters read it back.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <limits>

#include "library/processor/ScriptedProcessor.h"
#include "support/GlobalLocale.h"
#include "support/Sets.h"
#include "vexa/toolbox/Set.h"
#include "vexastandin/Host.h"

namespace vexa::vexautilutil {
namespace {

using Processor = MacroCommandProcessorAbstract;
using toolbox::Set;

template <class Value>
std::string assigned(const std::string& name, Value value) {
    return Processor::toNameValueAssignment(name, value);
}

// Writes a backslash before each quote and backslash, as an add-on must do before it composes a text.
std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c == '\'' || c == '\\') result += '\\';
        result += c;
    }
    return result;
}

TEST(ToNameValueAssignment, WritesOneLetterForABoolean) {
    EXPECT_EQ(assigned("SHOW", char{2}), "SHOW = T ");
    EXPECT_EQ(assigned("SHOW", char{1}), "SHOW = T ");
    EXPECT_EQ(assigned("SHOW", char{0}), "SHOW = F ");
    EXPECT_EQ(assigned("SHOW", static_cast<char>(-1)), "SHOW = T ");
}

TEST(ToNameValueAssignment, WritesAStringBetweenSingleQuotes) {
    EXPECT_EQ(assigned("TITLE", std::string()), "TITLE = '' ");
    EXPECT_EQ(assigned("TITLE", std::string("a  b")), "TITLE = 'a  b' ");
}

TEST(ToNameValueAssignment, TakesATextLiteralForAString) {
    EXPECT_EQ(Processor::toNameValueAssignment("TITLE", "text"), "TITLE = 'text' ");
}

TEST(ToNameValueAssignment, EscapesNothing) {
    EXPECT_EQ(assigned("TITLE", std::string("it's \\ \"x\"")), "TITLE = 'it's \\ \"x\"' ");
}

TEST(ToNameValueAssignment, WritesSixSignificantDigits) {
    EXPECT_EQ(assigned("X", 0.1), "X = 0.1 ");
    EXPECT_EQ(assigned("X", 2.5e6), "X = 2.5e+06 ");
    EXPECT_EQ(assigned("X", 100.0), "X = 100 ");
    EXPECT_EQ(assigned("X", 1.0 / 3.0), "X = 0.333333 ");
    EXPECT_EQ(assigned("X", -1e-7), "X = -1e-07 ");
    EXPECT_EQ(assigned("X", 123456.0), "X = 123456 ");
    EXPECT_EQ(assigned("X", 1234567.0), "X = 1.23457e+06 ");
    EXPECT_EQ(assigned("X", std::numeric_limits<double>::infinity()), "X = inf ");
    EXPECT_EQ(assigned("X", std::numeric_limits<double>::quiet_NaN()), "X = nan ");
}

TEST(ToNameValueAssignment, WritesIntegersInDecimal) {
    EXPECT_EQ(assigned("N", int32_t{-5}), "N = -5 ");
    EXPECT_EQ(assigned("N", std::numeric_limits<int32_t>::min()), "N = -2147483648 ");
    EXPECT_EQ(assigned("N", int64_t{0}), "N = 0 ");
    EXPECT_EQ(assigned("N", std::numeric_limits<int64_t>::min()), "N = -9223372036854775808 ");
    EXPECT_EQ(assigned("N", std::numeric_limits<int64_t>::max()), "N = 9223372036854775807 ");
}

TEST(ToNameValueAssignment, WritesASetWithNothingAfterIt) {
    Set set;
    set.assign("[1,2,3]");
    EXPECT_EQ(assigned("ZONES", set), "ZONES = [1-3]");
    EXPECT_EQ(assigned("ZONES", Set()), "ZONES = []");
}

TEST(ToNameValueAssignment, UsesTheNameUnchanged) {
    EXPECT_EQ(assigned("", int64_t{1}), " = 1 ");
    EXPECT_EQ(assigned("Mixed name", int64_t{1}), "Mixed name = 1 ");
}

TEST(ToNameValueAssignment, WritesNumbersInTheGlobalLocale) {
    const tests::GlobalLocale locale(new tests::GroupedNumbers);
    EXPECT_EQ(assigned("N", int32_t{1234567}), "N = 1.234.567 ");
    EXPECT_EQ(assigned("N", int64_t{-1234567}), "N = -1.234.567 ");
    EXPECT_EQ(assigned("X", 0.5), "X = 0,5 ");
}

// The values of one command. The getters must read all of them back, in order.
class ReadBack : public ScriptedProcessor {
public:
    ReadBack() : ScriptedProcessor([this](Processor&) { return readAll(); }) {}

    char flag = 0;
    std::string text;
    double number = 0;
    int32_t small = 0;
    int64_t large = 0;
    Set set;

private:
    bool readAll() {
        std::string name;
        return getCommand(name) && getNextName(name) && getBooleanValue(flag) && getNextName(name) &&
               getStringValue(text, true) && getNextName(name) && getDoubleValue(number) && getNextName(name) &&
               getInt32Value(small) && getNextName(name) && getInt64Value(large) && getNextName(name) &&
               getSetValue(set);
    }
};

RC_GTEST_PROP(ToNameValueAssignment, IsReadBackByTheGetters,
              (bool flag, int32_t small, int64_t large, int32_t mantissa)) {
    const standin::Host host;
    // The text is passed as a C string, so it must have no NUL.
    const auto text = *rc::gen::container<std::string>(rc::gen::distinctFrom(rc::gen::arbitrary<char>(), '\0'));
    const auto members = *rc::gen::container<std::vector<uint16_t>>(rc::gen::arbitrary<uint16_t>());
    const double number = (mantissa % 1000000) / 1024.0;
    const Set set = tests::setOf(tests::setText(members));

    const std::string command = "CMD " + assigned("A", static_cast<char>(flag)) + assigned("B", escaped(text)) +
                                assigned("C", number) + assigned("D", small) + assigned("E", large) +
                                assigned("F", set);
    ReadBack processor;
    RC_ASSERT(outcomeOf(processor, command.c_str()) == std::nullopt);
    RC_ASSERT(processor.flag == static_cast<char>(flag));
    RC_ASSERT(processor.text == text);
    RC_ASSERT(std::abs(processor.number - number) <= 5e-6 * std::abs(number));
    RC_ASSERT(processor.small == small);
    RC_ASSERT(processor.large == large);
    RC_ASSERT(processor.set.toString() == set.toString());
}

}  // namespace
}  // namespace vexa::vexautilutil
