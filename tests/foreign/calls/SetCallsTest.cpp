// Tests which operations of Set the library calls. A call of any other operation would not compile.
#include <gtest/gtest.h>

#include "foreign/SetCalls.h"
#include "library/macro/Tokens.h"
#include "library/processor/ScriptedProcessor.h"
#include "support/Sets.h"
#include "vexastandin/Host.h"
#include "vexautilutil/SetMacroOption.h"
#include "vexautilutil/StyleValue.h"

namespace vexa::vexautilutil {
namespace {

using foreign::SetCalls;
using foreign::setCalls;
using toolbox::Set;

// Returns the calls that `operation` makes.
template <class Operation>
SetCalls callsOf(Operation operation) {
    setCalls() = SetCalls();
    operation();
    return setCalls();
}

void expectCalls(const SetCalls& calls, const SetCalls& expected) {
    EXPECT_EQ(calls.constructed, expected.constructed);
    EXPECT_EQ(calls.copied, expected.copied);
    EXPECT_EQ(calls.constructedFromHandle, expected.constructedFromHandle);
    EXPECT_EQ(calls.destroyed, expected.destroyed);
    EXPECT_EQ(calls.cleared, expected.cleared);
    EXPECT_EQ(calls.assigned, expected.assigned);
    EXPECT_EQ(calls.rendered, expected.rendered);
}

TEST(SetCalls, OfAnOptionMadeOfValuesAreACopyOfEach) {
    const Set set = tests::setOf("[1-3]");
    SetCalls expected;
    expected.copied = expected.destroyed = 2;
    expectCalls(callsOf([&] { SetMacroOption("ZONES", &set, true, &set); }), expected);
}

TEST(SetCalls, OfAnOptionReadFromTextAreOneSetThatIsAssignedAndCopied) {
    SetCalls expected;
    expected.constructed = expected.assigned = expected.copied = 1;
    expected.destroyed = 2;
    expectCalls(callsOf([] { parsedAs<SetMacroOption>("ZONES=[1]", false, nullptr); }), expected);
}

TEST(SetCalls, OfARefusedOptionDestroyTheSet) {
    SetCalls expected;
    expected.constructed = expected.assigned = expected.destroyed = 1;
    expectCalls(callsOf([] { refusedAs<SetMacroOption>("ZONES=[x]", nullptr, false, nullptr); }), expected);
}

TEST(SetCalls, OfARenderedOptionAreItsText) {
    const Set set = tests::setOf("[1-3]");
    const SetMacroOption option("ZONES", &set, false, nullptr);
    SetCalls expected;
    expected.rendered = 1;
    expectCalls(callsOf([&] { static_cast<void>(option.toString()); }), expected);
}

TEST(SetCalls, OfTheGetterEmptyAndAssignTheSetThatIsGiven) {
    const standin::Host host;
    Set value;
    SetCalls expected;
    expected.cleared = expected.assigned = 1;
    expectCalls(
        callsOf([&] { outcomeOf("[1-3]", [&](MacroCommandProcessorAbstract& p) { return p.getSetValue(value); }); }),
        expected);
}

TEST(SetCalls, OfAnAssignmentAreACopyAndItsText) {
    const Set set = tests::setOf("[1-3]");
    SetCalls expected;
    expected.copied = expected.destroyed = expected.rendered = 1;
    expectCalls(callsOf([&] { MacroCommandProcessorAbstract::toNameValueAssignment("ZONES", set); }), expected);
}

TEST(SetCalls, OfAStyleValueAreASetOfTheHandleAndItsText) {
    standin::Host host;
    host.setStyle({"ActiveFieldMaps"}, tests::setOf("[1-3]"));
    std::vector<std::string> path{"ActiveFieldMaps"};
    ResultType_e type = ResultType_None;
    GetValueReturnCode_e code = GetValueReturnCode_Ok;
    std::string text;
    SetCalls expected;
    expected.constructedFromHandle = expected.destroyed = expected.rendered = 1;
    expectCalls(callsOf([&] { getValueAsString(path, 0, 0, type, code, text); }), expected);
    EXPECT_EQ(text, "[1-3]");
}

}  // namespace
}  // namespace vexa::vexautilutil
