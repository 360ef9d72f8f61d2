// What the probe asks, and what the stand-in answers.

#include <set>

#include "ProbedHost.h"
#include "facts/Facts.h"

namespace vexa::probe {
namespace {

using Probe = ProbedHost;

TEST_F(Probe, WritesEveryFactWithItsQuestion) {
    load();
    EXPECT_EQ(write(), "");
    const Json facts = content()["facts"];
    ASSERT_EQ(facts.size(), facts::kFactCount);
    for (const facts::FactInfo& info : facts::kFacts) EXPECT_EQ(facts[info.name]["question"], info.question);
}

TEST_F(Probe, NamesTheSchemaAndItsVersion) {
    load();
    write();
    EXPECT_EQ(content()["schema"], 1);
    EXPECT_EQ(content()["probe"], "1.0.0");
}

TEST_F(Probe, BreaksNoRuleOfTheContract) {
    load();
    EXPECT_EQ(write("SETTING = 'VEXAPROBE SETTING SIZE'"), "");
    host.setRecording(true);
    EXPECT_EQ(write("SETTING = 'VEXAPROBE SETTING SIZE'"), "");
    host.unloadAddOns();
    EXPECT_EQ(answer("record.whileRecording"), true);
    for (const standin::Finding& finding : host.violations()) ADD_FAILURE() << finding.message;
}

TEST_F(Probe, AsksQuestionsWithARiskOnlyIfItMay) {
    load();
    write("SETTING = 'VEXAPROBE SETTING SIZE'");
    for (const facts::FactInfo& info : facts::kFacts) {
        if (info.risk == facts::Risk_e::None) continue;
        EXPECT_EQ(answer(info.name), nullptr) << info.name;
        EXPECT_EQ(reason(info.name), "asked only with RISKY = TRUE") << info.name;
    }
}

TEST_F(Probe, GetsTheAnswersThatTheTableHasForTheStandIn) {
    load();
    host.loadAddOn(VEXA_PROBE_SECOND);
    EXPECT_EQ(writeAll(), "");
    host.setRecording(true);
    EXPECT_EQ(writeAll(), "");
    EXPECT_TRUE(host.run("VEXAPROBE2", "WATCH FILE = '" + file() + "'").accepted);
    EXPECT_EQ(run("FAIL"), "Error: this command fails on purpose");
    host.unloadAddOns();
    const Json facts = content()["facts"];
    for (const facts::FactInfo& info : facts::kFacts) {
        EXPECT_EQ(textOf(facts[info.name]["answer"]), info.standIn) << info.name;
    }
}

TEST_F(Probe, BreaksOnlyTheRulesOfQuestionsThatSayThatTheyBreakOne) {
    load();
    host.setRecording(true);
    writeAll();
    host.unloadAddOns();
    std::set<std::string> broken;
    for (const standin::Finding& finding : host.violations()) broken.insert(finding.rule);
    EXPECT_EQ(broken, (std::set<std::string>{"duplicate-argument", "percent-backwards", "percent-out-of-range",
                                             "recording-not-replayable", "status-not-started"}));
}

TEST_F(Probe, SaysWhyItCannotAskAboutASettingThatItDoesNotKnow) {
    load();
    write();
    EXPECT_EQ(reason("style.setting.read"), "asked only with SETTING = 'KEYWORDS', the path of a double");
}

TEST_F(Probe, NamesTheQuestionThatEndedTheHost) {
    load();
    host.throwFromCall("VexaUtilLockStart");  // of the question whether the lock nests
    EXPECT_EQ(write("RISKY = TRUE"), "VexaUtilLockStart was told to throw");
    EXPECT_EQ(answer("lock.nests"), nullptr);
    EXPECT_EQ(reason("lock.nests"), "the host ended, or did not return, when this was asked");
}

TEST_F(Probe, DoesNotAskAgainWhatEndedTheHost) {
    load();
    host.throwFromCall("VexaUtilLockStart");
    write("RISKY = TRUE");
    EXPECT_EQ(write("RISKY = TRUE"), "");
    EXPECT_EQ(answer("lock.nests"), nullptr);
    EXPECT_EQ(answer("status.check.over100"), true);  // a later question
}

TEST_F(Probe, NotesThatTheHostReturnsNoObject) {
    load();
    host.failCall("VexaUtilSetAlloc");
    EXPECT_EQ(write(), "");
    EXPECT_EQ(answer("set.dealloc.clearsHandle"), nullptr);
    EXPECT_EQ(reason("set.dealloc.clearsHandle"), "the host returned no object");
}

TEST_F(Probe, FreesWhatItTookEvenIfTheHostKeepsHandles) {
    host.answerLike({{"set.dealloc.clearsHandle", "false"},
                     {"list.dealloc.clearsHandle", "false"},
                     {"string.dealloc.clearsHandle", "false"},
                     {"mutex.dealloc.clearsHandle", "false"}});
    load();
    EXPECT_EQ(write(), "");
    host.unloadAddOns();
    for (const standin::Finding& finding : host.violations()) ADD_FAILURE() << finding.message;
}

}  // namespace
}  // namespace vexa::probe
