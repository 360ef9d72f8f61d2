#include "AddOnFiles.h"
#include "vexastandin/Testing.h"

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "CallTrace.h"
#include "vexa/AddOn.h"
#include "vexa/InvalidArgumentException.h"

namespace vexa::standin {
namespace {

// An add-on that shows each command, and has it recorded twice.
VexaBoolean showAndRecord(const char* command, char**) {
    VexaUtilDialogErrMsg(command);
    return VexaUtilMacroRecordExtCommand("LINKED", command) && VexaUtilMacroRecordExtCommand("LINKED", "again");
}

const VexaAddOn_s* linkedEntry(AddOnList_s*) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "LINKED", nullptr, showAndRecord, nullptr};
    return &description;
}

Lines rulesOf(const std::vector<Finding>& findings) {
    Lines names;
    for (const Finding& finding : findings) names.push_back(finding.rule);
    return names;
}

std::string shown(const TestedCommand& command) {
    std::ostringstream out;
    out << command;
    return out.str();
}

// ---- Testing an add-on

TEST(AddOnTester, RunsCommandsOfALoadedAddOn) {
    AddOnTester probe(addOnFile("probe"));
    const TestedCommand tested = probe.run("SUCCEED");
    EXPECT_EQ(tested.command, "PROBE SUCCEED");
    EXPECT_TRUE(tested.accepted);
    EXPECT_EQ(tested.error, "");
    EXPECT_EQ(tested.recorded, Lines());
    EXPECT_EQ(tested.dialogs, Lines());
    EXPECT_TRUE(tested.findings.empty());
}

TEST(AddOnTester, TellsWhyACommandFailed) {
    AddOnTester probe(addOnFile("probe"));
    const TestedCommand tested = probe.run("THROW");
    EXPECT_FALSE(tested.accepted);
    EXPECT_EQ(tested.error, "an exception escaped from the add-on: no such zone");
    EXPECT_EQ(rulesOf(tested.findings), Lines({"escaped-exception"}));
}

TEST(AddOnTester, RecordsAndTakesLinkedAddOns) {
    AddOnTester linked(linkedEntry);
    const TestedCommand tested = linked.run("GO");
    EXPECT_TRUE(tested.accepted);
    EXPECT_EQ(tested.recorded, Lines({"GO", "again"}));
    EXPECT_EQ(tested.dialogs, Lines({"GO"}));
}

TEST(AddOnTester, TellsOfEachCommandWhatHappenedMeanwhile) {
    AddOnTester linked(linkedEntry);
    linked.run("FIRST");
    const TestedCommand tested = linked.run("SECOND");
    EXPECT_EQ(tested.recorded, Lines({"SECOND", "again"}));
    EXPECT_EQ(tested.dialogs, Lines({"SECOND"}));

    AddOnTester misbehaving(addOnFile("misbehaving"));
    EXPECT_EQ(rulesOf(misbehaving.run("leaked-string").findings), Lines({"leaked-string"}));
    EXPECT_EQ(rulesOf(misbehaving.run("leaked-string-twin").findings), Lines());
    EXPECT_EQ(rulesOf(misbehaving.run("mutex-not-held").findings), Lines({"mutex-not-held"}));
}

TEST(AddOnTester, TellsAlsoOfBreachesThatAreOnlyCounted) {
    AddOnTester misbehaving(addOnFile("misbehaving"));
    for (int i = 0; i < 10; ++i) misbehaving.run("leaked-string");
    EXPECT_EQ(misbehaving.run("leaked-string-twin").findings.size(), 0U);
    for (std::size_t repeats = 1; repeats <= 2; ++repeats) {
        const TestedCommand tested = misbehaving.run("leaked-string");
        ASSERT_EQ(tested.findings.size(), 1U);
        EXPECT_EQ(tested.findings[0].repeats, repeats);
    }
}

TEST(AddOnTester, ShowsTheHostOfATesterThatMayNotChange) {
    const AddOnTester linked(linkedEntry);
    EXPECT_EQ(&linked.host(), Host::current());
}

TEST(AddOnTester, RefusesWhatIsNoAddOn) {
    EXPECT_THROW(AddOnTester(addOnFile("missing")), LoadError);
    EXPECT_THROW(AddOnTester([](AddOnList_s*) -> const VexaAddOn_s* { return nullptr; }), LoadError);
}

TEST(AddOnTester, RefusesToRunWhatIsUnloaded) {
    AddOnTester linked(linkedEntry);
    linked.host().unloadAddOns();
    EXPECT_THROW(linked.run("GO"), InvalidArgumentException);
}

TEST(TestedCommand, ShowsAllToPeople) {
    TestedCommand command;
    command.command = "PROBE GO";
    command.accepted = true;
    EXPECT_EQ(shown(command), "PROBE GO: accepted\n");
    command.recorded = {"GO", "COME"};
    command.dialogs = {"gone"};
    Finding finding;
    finding.rule = "unknown";
    finding.message = "it broke";
    command.findings = {finding};
    EXPECT_EQ(
        shown(command),
        "PROBE GO: accepted\n    recorded: GO\n    recorded: COME\n    dialog: gone\nerror: it broke [unknown]\n");
}

TEST(TestedCommand, ShowsWhyItFailed) {
    AddOnTester probe(addOnFile("probe"));
    EXPECT_EQ(shown(probe.run("FAIL")), "PROBE FAIL: failed: it went wrong\n\n\n");
    EXPECT_EQ(testing::PrintToString(probe.run("SUCCEED")), "PROBE SUCCEED: accepted\n");
}

// ---- Expecting no findings

TEST(ExpectNoFindings, IsQuietWhenTheContractIsKept) {
    Lines reports;
    AddOnTester misbehaving(addOnFile("misbehaving"));
    {
        const ExpectNoFindings expectation(misbehaving.host(),
                                           [&](const std::string& text) { reports.push_back(text); });
        misbehaving.run("leaked-string-twin");
    }
    EXPECT_EQ(reports, Lines());
    EXPECT_TRUE(misbehaving.host().addOns().empty());
}

TEST(ExpectNoFindings, ReportsWhatBrokeTheContract) {
    Lines reports;
    AddOnTester misbehaving(addOnFile("misbehaving"));
    TestedCommand tested;
    {
        const ExpectNoFindings expectation(misbehaving.host(),
                                           [&](const std::string& text) { reports.push_back(text); });
        tested = misbehaving.run("leaked-string");
        misbehaving.run("mutex-not-held");
        EXPECT_EQ(reports, Lines());
    }
    ASSERT_EQ(reports.size(), 2U);
    ASSERT_EQ(tested.findings.size(), 1U);
    EXPECT_EQ(reports[0], textOf(tested.findings[0]));
    EXPECT_NE(reports[1].find("[mutex-not-held]"), std::string::npos);
}

TEST(ExpectNoFindings, ReportsWhatAnAddOnKeptForEver) {
    Lines reports;
    AddOnTester misbehaving(addOnFile("misbehaving"));
    {
        const ExpectNoFindings expectation(misbehaving.host(),
                                           [&](const std::string& text) { reports.push_back(text); });
        EXPECT_TRUE(misbehaving.run("leaked-mutex").findings.empty());
    }
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_NE(reports[0].find("[leaked-mutex]"), std::string::npos);
}

TEST(ExpectNoFindings, ReportsWhenAnExceptionEndsTheScope) {
    int reports = 0;
    AddOnTester misbehaving(addOnFile("misbehaving"));
    try {
        const ExpectNoFindings expectation(misbehaving.host(), [&](const std::string&) { ++reports; });
        misbehaving.run("leaked-string");
        throw std::runtime_error("the test goes wrong");
    } catch (const std::runtime_error&) {
        EXPECT_EQ(reports, 1);
    }
}

// Each test of a suite has a host of its own.
TEST(ExpectNoFindings, ReportsACauseInFullOnceForSeveralTests) {
    FindingCauses causes;
    Lines reports;
    for (int test = 0; test != 2; ++test) {
        AddOnTester misbehaving(addOnFile("misbehaving"));
        const ExpectNoFindings expectation(
            misbehaving.host(), [&](const std::string& text) { reports.push_back(text); }, causes);
        misbehaving.run("leaked-string");
    }
    ASSERT_EQ(reports.size(), 2U);
    EXPECT_NE(reports[0].find("\n    hint:  "), std::string::npos) << reports[0];
    EXPECT_EQ(reports[1], reports[0].substr(0, reports[0].find('\n')) + ", as before\n");
}

TEST(ExpectNoFindings, NeedsAReport) {
    Host host;
    EXPECT_THROW(const ExpectNoFindings expectation(host, nullptr), InvalidArgumentException);
}

}  // namespace
}  // namespace vexa::standin
