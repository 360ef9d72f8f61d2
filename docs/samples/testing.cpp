// What the page about testing shows, on the add-on of the README and on that of the page about progress.
#include "vexastandin/Testing.h"

#include <gtest/gtest.h>

#include "vexa/AddOn.h"
#include "vexastandin/RandomCommands.h"
#include "vexautilutil/StyleValue.h"

namespace {

using namespace vexa::standin;

TEST(Testing, TheHostFailsWhenToldTo) {
    AddOnTester tester(vexaAddOn);
    Host& host = tester.host();
    // [faults]
    host.failCall("VexaUtilMacroRecordExtCommand");  // the next call returns 0
    host.failCall("VexaUtilStringAlloc", 2);         // the second call returns null
    host.throwFromCall("VexaUtilStatusStartPercentDone");
    // [faults]
    EXPECT_FALSE(tester.run("GREET").accepted);
    EXPECT_TRUE(tester.run("GREET").accepted);
    EXPECT_EQ(tester.run("SHOUT").error, "");
}

TEST(Testing, TheUserPressesStop) {
    AddOnTester tester(PRIMES_ADDON);
    Host& host = tester.host();
    // [stop]
    host.pressStop();             // now, before the command starts
    host.pressStopAtCheck(3);     // when the add-on checks the button for the third time
    host.pressStopAtPercent(50);  // when the add-on reports 50 percent or more
    host.releaseStop();           // for the next command
    // [stop]
    EXPECT_TRUE(tester.run("COUNT").accepted);
}

// [stopped]
TEST(Primes, AreNotRecordedWhenTheUserStops) {
    vexa::standin::AddOnTester primes(PRIMES_ADDON);
    primes.host().pressStopAtPercent(50);
    const vexa::standin::TestedCommand stopped = primes.run("COUNT UPTO = 5000");
    EXPECT_EQ(stopped.error, "Error: COUNT was stopped by the user");
    EXPECT_TRUE(stopped.recorded.empty()) << stopped;
    EXPECT_TRUE(stopped.findings.empty()) << stopped;
}
// [stopped]

TEST(Testing, StylesAreGivenValues) {
    Host host;
    // [style]
    host.setStyle({"Frame", "Title", "Text"}, std::string("Wake"));
    host.setStyle({"FieldMap", "Mesh", "LineThickness"}, 1, 0, 0.4);  // for one pair of offsets
    // [style]
    std::vector<std::string> path = {"FieldMap", "Mesh", "LineThickness"};
    vexa::vexautilutil::ResultType_e type;
    GetValueReturnCode_e code;
    std::string text;
    vexa::vexautilutil::getValueAsString(path, 1, 0, type, code, text);
    EXPECT_EQ(text, "0.4");
}

TEST(Styles, AreAnsweredByOneOfFourCodes) {
    Host host;
    const auto answerTo = [](std::vector<std::string> path, long offset1) {
        vexa::vexautilutil::ResultType_e type{};
        GetValueReturnCode_e code{};
        std::string text;
        vexa::vexautilutil::getValueAsString(path, offset1, 0, type, code, text);
        return code;
    };
    host.setStyle({"FieldMap", "Name"}, 1, 0, std::string("wake"));
    EXPECT_EQ(answerTo({"FieldMap", "Name"}, 1), GetValueReturnCode_Ok);
    EXPECT_EQ(answerTo({"FieldMap", "Name"}, 2), GetValueReturnCode_NotAvailable);
    EXPECT_EQ(answerTo({"FieldMap"}, 1), GetValueReturnCode_NotAvailable);
    EXPECT_EQ(answerTo({"FieldMap", "Title"}, 1), GetValueReturnCode_UnknownPath);
    host.failCall("VexaUtilStyleGetLowLevelX", 2, GetValueReturnCode_OtherType);  // neither a double nor anything else
    EXPECT_EQ(answerTo({"FieldMap", "Name"}, 1), GetValueReturnCode_OtherType);
}

TEST(Testing, RandomCommandsMakeNoFinding) {
    constexpr std::uint64_t seed = 1;
    AddOnTester tester(vexaAddOn);
    // [random]
    const std::vector<CommandForm> forms = {{"GREET", " = ", {{"TIMES", {"1", "2"}, {"-1", "many"}}}}};
    RandomCommands random(seed);
    for (int i = 0; i < 1000; ++i) {
        random.setModes(tester.host());
        const TestedCommand tested = tester.run(random.command(forms));
        ASSERT_TRUE(tested.findings.empty()) << tested << "seed " << seed;
    }
    // [random]
}

}  // namespace
