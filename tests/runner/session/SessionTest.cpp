#include "session/Session.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>

#include "support/TemporaryFolder.h"
#include "vexa/AddOn.h"
#include "vexa/VexaUtil.h"

namespace vexa::runner {
namespace {

const ProcessBox* theBox = nullptr;  // an add-on's command is given nothing
std::string whatTheBoxHad;

// What the box has while a command runs.
VexaBoolean readBox(const char* command, char**) {
    if (theBox != nullptr) {
        whatTheBoxHad = theBox->place.text() + '|' + theBox->addOnId.text() + '|' + theBox->work.text() + '|' +
                        (theBox->isInAddOn ? "in" : "out");
    }
    if (std::string(command) == "SUSPEND") VexaUtilDataSetSuspendMarking(1);
    if (std::string(command) == "HANG") std::this_thread::sleep_for(std::chrono::hours(1));
    return 1;
}

const VexaAddOn_s* enter(AddOnList_s*) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "BOXES", nullptr, readBox, nullptr};
    return &description;
}

class SessionTest : public testing::Test {
protected:
    SessionTest() { theBox = m_box.get(); }
    ~SessionTest() override { theBox = nullptr; }

    SessionOptions m_options;
    std::unique_ptr<ProcessBox> m_box = std::make_unique<ProcessBox>();
};

TEST_F(SessionTest, NotesTheCommandWhileItsAddOnRuns) {
    Session session(m_options, *m_box);
    session.host().linkAddOn(enter);
    EXPECT_TRUE(session.run({"a.macro:3", "BOXES", "READ"}).accepted);
    EXPECT_EQ(whatTheBoxHad, "a.macro:3|BOXES|READ|in");
    EXPECT_FALSE(m_box->isInAddOn);
}

TEST_F(SessionTest, CountsTheHostCallsInTheBox) {
    Session session(m_options, *m_box);
    session.host().linkAddOn(enter);
    const std::size_t before = m_box->calls.calls;
    session.run({"", "BOXES", "SUSPEND"});
    EXPECT_EQ(m_box->calls.calls, before + 1);
}

TEST_F(SessionTest, ToldOfBatchModeAnswersSo) {
    m_options.batch = true;
    const Session session(m_options, *m_box);
    EXPECT_EQ(VexaUtilMacroIsBatchModeActive(), 1);
}

TEST_F(SessionTest, LoadsTheOthersWhenAnAddOnCannotBeLoaded) {
    m_options.addOns = {"./missing.so", MISBEHAVING_ADDON};
    Session session(m_options, *m_box);
    EXPECT_FALSE(session.loadAddOns());
    EXPECT_EQ(session.host().addOns().size(), 1U);
}

TEST_F(SessionTest, ReadsMacrosOfTheLoadedAddOns) {
    const tests::TemporaryFolder folder;
    Session session(m_options, *m_box);
    session.host().linkAddOn(enter);
    const MacroFile macro = session.readMacro(folder.write("a.macro", "BOXES READ\n"));
    ASSERT_EQ(macro.commands.size(), 1U);
    EXPECT_EQ(macro.commands[0].place, macro.name + ":1");
    EXPECT_EQ(session.readMacro(folder.write("b.macro", "OTHER READ\n")).problems.size(), 1U);
}

TEST_F(SessionTest, IsBrokenByABreachOnlyWhenItIsStrict) {
    for (const bool isStrict : {false, true}) {
        m_options.contract.strict = isStrict;
        Session session(m_options, *m_box);
        session.host().linkAddOn(enter);
        EXPECT_FALSE(session.isContractBroken());
        session.run({"", "BOXES", "SUSPEND"});
        ASSERT_FALSE(session.host().violations().empty());
        EXPECT_EQ(session.isContractBroken(), isStrict);
    }
}

TEST_F(SessionTest, LetsBreachesOfSuppressedRulesPass) {
    m_options.contract.strict = true;
    m_options.contract.suppressed = {"unbalanced-marking"};
    Session session(m_options, *m_box);
    session.host().linkAddOn(enter);
    session.run({"", "BOXES", "SUSPEND"});
    EXPECT_FALSE(session.isContractBroken());
}

// Runs a command that does not return. The time limit ends the process.
void hang(SessionOptions options, ProcessBox& box) {
    options.contract.timeout = std::chrono::duration<double>(0.05);
    const auto conclude = [](const Overrun& overrun) {
        const bool isIt = overrun.work.text == "HANG" && overrun.finding && overrun.limit.count() == 0.05;
        return isIt ? 4 : 5;
    };
    Session session(options, box, conclude);
    session.host().linkAddOn(enter);
    session.run({"a.macro:1", "BOXES", "HANG"});
}

TEST_F(SessionTest, EndsTheProcessOfACommandThatTakesTooLong) {
    EXPECT_EXIT(hang(m_options, *m_box), testing::ExitedWithCode(4), "");
}

}  // namespace
}  // namespace vexa::runner
