#include "coverage/CoverageCollector.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

void run(CoverageCollector& collector, const std::string& text, bool succeeded = true) {
    collector.enter("command", "ONE", text, 1);
    collector.leave(succeeded);
}

TEST(CoverageCollector, NamesCommandsAndTheirOptions) {
    CoverageCollector collector({});
    run(collector, "LOAD FILE = 'x' free words");
    run(collector, "LOAD N=1", false);
    const Coverage coverage = collector.takeNews();
    ASSERT_EQ(coverage.commands.size(), 1U);
    EXPECT_EQ(coverage.commands.at("ONE LOAD").options, (Names{"FILE", "N"}));
    EXPECT_EQ(coverage.commands.at("ONE LOAD").ends, (Names{kAccepted, kFailed}));
}

TEST(CoverageCollector, GivesTextWithoutANameOneName) {
    CoverageCollector collector({});
    for (const std::string& text : {std::string(), std::string("'x'"), std::string(70000, 'A')}) run(collector, text);
    const Coverage coverage = collector.takeNews();
    ASSERT_EQ(coverage.commands.size(), 1U);
    EXPECT_EQ(coverage.commands.begin()->first, "ONE (other text)");
}

TEST(CoverageCollector, NamesOnlyWhatIsKnown) {
    CoverageSetting setting;
    setting.known.emplace();
    setting.known->commands["ONE LOAD"].options = {"FILE"};
    CoverageCollector collector(setting);
    run(collector, "LOAD FILE = 1 FIEL = 2");
    run(collector, "LOAX FILE = 1");
    const Coverage coverage = collector.takeNews();
    EXPECT_EQ(coverage.commands.at("ONE LOAD").options, Names{"FILE"});
    EXPECT_EQ(coverage.commands.at("ONE (other text)").options, Names());
    EXPECT_EQ(coverage.commands.size(), 2U);
}

TEST(CoverageCollector, CountsACallForTheInnermostCommand) {
    CoverageCollector collector({});
    collector.call("VexaUtilLockStart", 1);
    collector.enter("command", "ONE", "A", 1);
    collector.enter("command", "TWO", "B", 1);
    collector.call("VexaUtilStringAlloc", 1);
    collector.answer("VexaUtilStringAlloc", "null");
    collector.leave(true);
    collector.call("VexaUtilStringDealloc", 1);
    const Coverage coverage = collector.takeNews();
    EXPECT_EQ(coverage.commands.at(kOutside).calls.count("VexaUtilLockStart"), 1U);
    EXPECT_EQ(coverage.commands.at("TWO B").calls.at("VexaUtilStringAlloc"), Names{"null"});
    EXPECT_EQ(coverage.commands.at("ONE A").calls.count("VexaUtilStringAlloc"), 0U);
    EXPECT_EQ(coverage.commands.at("ONE A").calls.count("VexaUtilStringDealloc"), 1U);
}

TEST(CoverageCollector, TellsEachFactOnce) {
    CoverageCollector collector({});
    const auto runAll = [&] {
        collector.enter("command", "ONE", "A N=1", 1);
        collector.call("VexaUtilStringAlloc", 1);
        collector.answer("VexaUtilStringAlloc", "string#1");
        collector.leave(true);
    };
    runAll();
    EXPECT_TRUE(collector.hasNews());
    collector.takeNews();
    runAll();
    EXPECT_FALSE(collector.hasNews());
    collector.enter("command", "ONE", "A", 1);
    collector.call("VexaUtilStringAlloc", 1);
    collector.answer("VexaUtilStringAlloc", "null");
    EXPECT_TRUE(collector.hasNews());
    EXPECT_EQ(collector.takeNews().commands.at("ONE A").calls.at("VexaUtilStringAlloc"), Names{"null"});
}

TEST(CoverageCollector, CountsARuleThatHadAChanceToFire) {
    struct Case {
        const char* rule;
        void (*work)(CoverageCollector&);
    };
    const Case cases[] = {
        {"unbalanced-lock", [](CoverageCollector& all) { all.call("VexaUtilLockFinish", 1); }},
        {"missing-errmsg", [](CoverageCollector& all) { run(all, "A", false); }},
        {"wrong-thread",
         [](CoverageCollector& all) {
             all.call("VexaUtilLockStart", 1);
             all.call("VexaUtilLockStart", 2);
         }},
    };
    for (const Case& c : cases) {
        CoverageCollector idle({});
        run(idle, "A");
        EXPECT_EQ(idle.takeNews().rules.count(c.rule), 0U) << c.rule;
        CoverageCollector collector({});
        c.work(collector);
        EXPECT_EQ(collector.takeNews().rules.count(c.rule), 1U) << c.rule;
        CoverageSetting suppressing;
        suppressing.suppressed = {c.rule};
        CoverageCollector without(suppressing);
        c.work(without);
        EXPECT_EQ(without.takeNews().rules.count(c.rule), 0U) << c.rule;
    }
}

TEST(CoverageCollector, CountsReplayOnlyIfRecordingsArePlayedBack) {
    for (const bool isStrict : {true, false}) {
        CoverageSetting setting;
        setting.isStrict = isStrict;
        CoverageCollector collector(setting);
        collector.enter("command", "ONE", "A", 1);
        collector.call("VexaUtilMacroRecordExtCommand", 1);
        collector.answer("VexaUtilMacroRecordExtCommand", "0");
        EXPECT_FALSE(collector.takeNews().rules.count("recording-not-replayable"));
        collector.answer("VexaUtilMacroRecordExtCommand", "1");
        EXPECT_EQ(collector.takeNews().rules.count("recording-not-replayable"), isStrict ? 1U : 0U);
    }
}

}  // namespace
}  // namespace vexa::runner
