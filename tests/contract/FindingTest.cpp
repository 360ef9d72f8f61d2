#include "vexastandin/Finding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "support/FailingAllocator.h"
#include "vexa/InvalidArgumentException.h"
#include "vexa/VexaUtil.h"
#include "vexa/toolbox/Set.h"
#include "vexastandin/Host.h"

namespace vexa::standin {
namespace {

using tests::Failing;
using tests::FailingAllocator;
using tests::sweepAllocations;
using Lines = std::vector<std::string>;

TEST(Severity, HasTheNameThatMessagesShow) {
    EXPECT_STREQ(nameOf(Severity_e::Error), "error");
    EXPECT_STREQ(nameOf(Severity_e::Warning), "warning");
}

std::string addOnFile(const std::string& name) { return std::string(VEXA_TEST_ADDONS) + '/' + name + ".so"; }

Lines rulesOf(const std::vector<Finding>& findings) {
    Lines rules;
    for (const Finding& finding : findings) rules.push_back(finding.rule);
    return rules;
}

class Findings : public testing::Test {
protected:
    Findings() { m_host.loadAddOn(addOnFile("misbehaving")); }
    std::vector<Finding> run(const std::string& command, const std::string& macroLine = {}) {
        m_host.run("MISBEHAVING", command, macroLine);
        return m_host.violations();
    }

    Host m_host;
};

std::string refusalOf(const std::string& rule, void (*use)(Host&, const std::string&)) {
    Host host;
    try {
        use(host, rule);
    } catch (const InvalidArgumentException& refusal) {
        return refusal.what();
    }
    return "accepted";
}

// ---- The catalogue

TEST(Rules, HaveShortNamesOfTheirOwn) {
    std::set<std::string> names;
    for (const Rule& rule : rules()) {
        SCOPED_TRACE(rule.name);
        const std::string name = rule.name;
        EXPECT_TRUE(std::all_of(name.begin(), name.end(), [](char c) { return c == '-' || std::islower(c) != 0; }));
        EXPECT_TRUE(names.insert(name).second);
    }
}

TEST(Rules, AreExplainedInSentences) {
    for (const Rule& rule : rules()) {
        for (const std::string_view text : {rule.summary, rule.why, rule.hint}) {
            ASSERT_FALSE(text.empty()) << rule.name;
            EXPECT_NE(std::string_view(".)").find(text.back()), std::string_view::npos) << text;
        }
    }
    EXPECT_FALSE(uncheckedMistakes().empty());
}

TEST(Rules, AreFoundByTheirNames) {
    for (const Rule& rule : rules()) EXPECT_EQ(findRule(rule.name), &rule);
    EXPECT_EQ(findRule("unbalanced"), nullptr);
    EXPECT_EQ(findRule(""), nullptr);
}

// ---- Places

TEST_F(Findings, ShowBothPlaces) {
    m_host.run("MISBEHAVING", "unbalanced-lock-twin");  // six calls
    const std::vector<Finding> findings = run("unbalanced-lock", "wake.macro:7");
    ASSERT_EQ(findings.size(), 1U);
    ASSERT_TRUE(findings[0].opened);
    EXPECT_EQ(findings[0].opened->call, 7U);
    EXPECT_EQ(findings[0].opened->function, "VexaUtilLockStart");
    EXPECT_EQ(findings[0].opened->command, "MISBEHAVING unbalanced-lock");
    EXPECT_EQ(findings[0].opened->macroLine, "wake.macro:7");
    EXPECT_EQ(findings[0].opened->thread, 1U);
    EXPECT_EQ(findings[0].seen.call, 0U);
    EXPECT_EQ(findings[0].seen.function, "");
    EXPECT_EQ(findings[0].seen.command, "MISBEHAVING unbalanced-lock");
    EXPECT_EQ(findings[0].seen.macroLine, "wake.macro:7");
}

TEST_F(Findings, ShowTheCommandThatAllocatedWhatLeaksInTheEnd) {
    run("leaked-mutex", "wake.macro:7");
    m_host.unloadAddOns();
    const std::vector<Finding> findings = m_host.violations();
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].opened->macroLine, "wake.macro:7");
    EXPECT_EQ(findings[0].seen.command, "unloading of MISBEHAVING");
    EXPECT_EQ(findings[0].seen.macroLine, "");
}

TEST_F(Findings, ShowBothThreads) {
    const std::vector<Finding> findings = run("wrong-thread");
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].opened->thread, 1U);
    EXPECT_EQ(findings[0].seen.thread, 2U);
}

TEST_F(Findings, AreReadable) {
    const std::vector<Finding> findings = run("unbalanced-auxdata", "wake.macro:7");
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(
        textOf(findings[0]),
        "wake.macro:7: MISBEHAVING: error: VexaUtilAuxDataBeginAssign has no matching VexaUtilAuxDataEndAssign in the "
        "command [unbalanced-auxdata]\n"
        "    first: call 1, VexaUtilAuxDataBeginAssign, in \"MISBEHAVING unbalanced-auxdata\", wake.macro:7, thread "
        "1\n"
        "    seen:  the end of \"MISBEHAVING unbalanced-auxdata\", wake.macro:7, thread 1\n"
        "    hint:  Use an AuxDataSuspendBroadcast while you assign. It makes the end call on every return and on "
        "every exception.\n");
}

TEST_F(Findings, AreReadableWithoutAnAddOn) {
    Finding finding;
    finding.rule = "missing-errmsg";
    finding.severity = Severity_e::Warning;
    finding.message = "nothing was said";
    finding.repeats = 3;
    EXPECT_EQ(textOf(finding), std::string("warning: nothing was said [missing-errmsg]\n    hint:  ") +
                                   findRule("missing-errmsg")->hint + "\n    and 3 more of the same rule\n");
}

TEST_F(Findings, AreReadableWithoutACommandOrAThread) {
    Finding finding;
    finding.rule = "null-handle";
    finding.message = "nothing was given";
    finding.seen.call = 5;
    finding.seen.function = "VexaUtilArgListClear";
    EXPECT_NE(textOf(finding).find("\n    seen:  call 5, VexaUtilArgListClear\n"), std::string::npos)
        << textOf(finding);
}

TEST(FindingCauses, AreTheSameForOneRuleAndAddOnAndTheSameFunctions) {
    Finding first;
    first.rule = "unbalanced-lock";
    first.addOnId = "ONE";
    first.opened = Place{3, "VexaUtilLockStart", "ONE GO", "m.macro:1", 1};
    Finding again = first;
    again.message = "3 times";
    again.opened = Place{7, "VexaUtilLockStart", "ONE COME", "m.macro:2", 2};
    Finding otherRule = first;
    otherRule.rule = "unbalanced-status";
    Finding otherAddOn = first;
    otherAddOn.addOnId = "TWO";
    Finding otherBeginning = first;
    otherBeginning.opened->function = "VexaUtilStringAlloc";
    Finding otherEnd = first;
    otherEnd.seen.function = "VexaUtilLockFinish";
    Finding noBeginning = first;
    noBeginning.opened.reset();

    FindingCauses causes;
    EXPECT_TRUE(causes.add(first));
    EXPECT_FALSE(causes.add(again));
    for (const Finding& other : {otherRule, otherAddOn, otherBeginning, otherEnd, noBeginning}) {
        EXPECT_TRUE(causes.add(other)) << textOf(other);
        EXPECT_FALSE(causes.add(other)) << textOf(other);
    }
}

TEST_F(Findings, AreToldBrieflyInALine) {
    const std::vector<Finding> findings = run("unbalanced-auxdata", "wake.macro:7");
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(briefTextOf(findings[0]),
              "wake.macro:7: MISBEHAVING: error: VexaUtilAuxDataBeginAssign has no matching VexaUtilAuxDataEndAssign "
              "in the command [unbalanced-auxdata], as before\n");
}

// ---- Attribution

TEST(Attribution, IsToTheAddOnThatMadeTheCall) {
    Host host;
    host.loadAddOn(addOnFile("misbehaving"));
    host.loadAddOn(addOnFile("probe"));
    host.onDialog([&](const std::string&) { host.run("MISBEHAVING", "unbalanced-lock"); });
    host.run("PROBE", "SHOW");  // within which the other one runs
    host.onDialog(nullptr);
    const std::vector<Finding> findings = host.violations();
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].addOnId, "MISBEHAVING");
}

TEST(Attribution, KnowsTheAddOnThatIsBeingLoaded) {
    Host host;
    host.loadAddOn(addOnFile("plain"));  // whose entry leaves the lock open
    const std::vector<Finding> findings = host.violations();
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].rule, "unbalanced-lock");
    EXPECT_EQ(findings[0].addOnId, "PLAIN");
    EXPECT_EQ(findings[0].seen.command, "loading of PLAIN");
}

TEST(Attribution, IsToNobodyOutsideOfAddOns) {
    Host host;
    VexaUtilArgListClear(nullptr);
    const std::vector<Finding> findings = host.violations();
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].addOnId, "");
    EXPECT_EQ(findings[0].seen.command, "");
}

TEST(Attribution, OfStrayThreadsIsToTheAddOnEnteredLast) {
    Host host;
    std::thread([] { VexaUtilMacroIsBatchModeActive(); }).join();
    EXPECT_EQ(rulesOf(host.violations()), Lines()) << "no add-on was entered";
    host.loadAddOn(addOnFile("probe"));
    VexaUtilMacroIsBatchModeActive();
    EXPECT_EQ(rulesOf(host.violations()), Lines()) << "the thread that entered";
    std::thread([] { VexaUtilMacroIsBatchModeActive(); }).join();
    const std::vector<Finding> findings = host.violations();
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].rule, "wrong-thread");
    EXPECT_EQ(findings[0].addOnId, "PROBE");
}

// ---- What lives how long

TEST_F(Findings, DoNotHoldForWhatLivesUntilTheAddOnEnds) {
    EXPECT_TRUE(run("leaked-mutex-twin").empty());
    EXPECT_TRUE(run("leaked-set-twin").empty());
    m_host.unloadAddOns();
    EXPECT_TRUE(m_host.violations().empty());
}

TEST(FindingsOfOneCommand, AreNotRepeatedForTheNext) {
    for (const char* command : {"unbalanced-lock", "unbalanced-status", "leaked-string", "mutex-left-locked",
                                "leaked-mutex", "mutex-freed-locked"}) {
        SCOPED_TRACE(command);
        Host host;
        host.loadAddOn(addOnFile("misbehaving"));
        for (const char* next : {command, "unbalanced-lock-twin", "unbalanced-status-twin", "mutex-not-held-twin"}) {
            host.run("MISBEHAVING", next);
        }
        host.unloadAddOns();
        EXPECT_EQ(host.violations().size(), 1U);
    }
}

TEST(HostsOwnSet, IsNoLeakAndMayBeRead) {
    Host host;
    host.setStyle({"ZONES"}, toolbox::Set());
    host.loadAddOn(addOnFile("misbehaving"));
    host.unloadAddOns();
    VexaArbParam value = 0;
    ArgList_s* list = VexaUtilArgListAlloc();
    VexaUtilArgListAppendString(list, "P1", "ZONES");
    VexaUtilArgListAppendArbParamPtr(list, "IValue", &value);
    VexaUtilStyleGetLowLevelX(list);
    VexaUtilArgListDealloc(&list);
    auto* set = reinterpret_cast<Set_s*>(value);
    EXPECT_TRUE(toolbox::Set(set).isEmpty());
    EXPECT_TRUE(host.violations().empty());

    VexaUtilSetInsert(set, 1, 2);
    VexaUtilSetDealloc(&set);
    EXPECT_EQ(rulesOf(host.violations()), Lines({"foreign-handle", "foreign-handle"}));
    EXPECT_NE(set, nullptr);
    EXPECT_TRUE(toolbox::Set(set).isEmpty());

    host.setStyle({"ZONES"}, 5);
    EXPECT_TRUE(toolbox::Set(set).isEmpty());
    EXPECT_EQ(host.violations().back().rule, "use-after-free");
}

// ---- Many

TEST_F(Findings, BeyondTenOfARuleAreCountedOnly) {
    for (int i = 0; i != 13; ++i) run("null-handle");
    const std::vector<Finding> findings = run("null-address");
    ASSERT_EQ(findings.size(), 11U);
    EXPECT_EQ(findings[8].repeats, 0U);
    EXPECT_EQ(findings[9].repeats, 3U);
    EXPECT_EQ(findings[10].rule, "null-address");
    EXPECT_EQ(findings[10].repeats, 0U);
}

TEST_F(Findings, CountWhatTheyTellOf) { EXPECT_EQ(run("leaked-arglist-twelve")[0].count, 12U); }

// ---- Suppression, and reports from outside

TEST_F(Findings, OfASuppressedRuleAreNone) {
    m_host.suppress("null-handle");
    m_host.suppress("wrong-thread");
    EXPECT_EQ(m_host.unusedSuppressions(), Lines({"null-handle", "wrong-thread"}));
    run("null-handle");
    EXPECT_EQ(rulesOf(run("null-address")), Lines({"null-address"}));
    EXPECT_EQ(m_host.unusedSuppressions(), Lines({"wrong-thread"}));
}

TEST(Suppression, IsOfAKnownRule) {
    const auto suppress = [](Host& host, const std::string& rule) { host.suppress(rule); };
    EXPECT_EQ(refusalOf("unbalanced-lock", suppress), "accepted");
    EXPECT_EQ(refusalOf("unbalanced", suppress), "There is no rule \"unbalanced\"");
}

TEST(Report, IsAFindingOfAKnownRule) {
    const auto report = [](Host& host, const std::string& rule) {
        Finding finding;
        finding.rule = rule;
        host.report(finding);
        EXPECT_EQ(rulesOf(host.violations()), Lines({rule}));
        EXPECT_EQ(host.violations()[0].severity, findRule(rule)->severity);
    };
    EXPECT_EQ(refusalOf("command-timeout", report), "accepted");
    EXPECT_EQ(refusalOf("missing-errmsg", report), "accepted");
    EXPECT_EQ(refusalOf("hanging", report), "There is no rule \"hanging\"");
}

TEST(Report, IsSuppressedLikeAnyFinding) {
    Host host;
    host.suppress("command-timeout");
    Finding finding;
    finding.rule = "command-timeout";
    host.report(finding);
    EXPECT_TRUE(host.violations().empty());
    EXPECT_TRUE(host.unusedSuppressions().empty());
}

TEST(Checking, MakesNoFindingsWhenItIsOff) {
    Host host;
    host.setChecking(false);
    host.loadAddOn(addOnFile("misbehaving"));
    for (const char* command : {"unbalanced-lock", "double-free", "leaked-mutex", "wrong-thread", "escaped-exception",
                                "foreign-errmsg", "use-after-free-errmsg", "string-overrun"}) {
        host.run("MISBEHAVING", command);
    }
    host.unloadAddOns();
    EXPECT_TRUE(host.violations().empty());
}

// ---- The last call

TEST(LastCall, IsOfTheCommandThatRuns) {
    Host host;
    EXPECT_EQ(host.lastCall().call, 0U);
    EXPECT_EQ(host.lastCall().function, "");
    host.loadAddOn(addOnFile("probe"));
    Place seen;
    host.onDialog([&](const std::string&) { std::thread([&] { seen = host.lastCall(); }).join(); });
    host.run("PROBE", "SHOW", "wake.macro:7");
    host.onDialog(nullptr);
    EXPECT_EQ(seen.call, 1U);
    EXPECT_EQ(seen.function, "VexaUtilDialogErrMsg");
    EXPECT_EQ(seen.command, "PROBE SHOW");
    EXPECT_EQ(seen.macroLine, "wake.macro:7");
    EXPECT_EQ(host.lastCall().command, "PROBE SHOW") << "the one that ran last";
}

// ---- Faults are the host's, not the add-on's

void takeAndGiveBackEverything() {
    VexaUtilLockStart(nullptr);
    VexaUtilLockFinish(nullptr);
    VexaUtilAuxDataBeginAssign();
    VexaUtilAuxDataEndAssign();
    VexaUtilDataSetSuspendMarking(1);
    VexaUtilDataSetSuspendMarking(0);
    VexaUtilStatusStartPercentDone("working", 1, 1);
    VexaUtilStatusCheckPercentDone(50);
    VexaUtilStatusFinishPercentDone();
    if (ThreadMutex_s* mutex = VexaUtilThreadMutexAlloc()) {
        VexaUtilThreadMutexLock(mutex);
        VexaUtilThreadMutexUnlock(mutex);
        VexaUtilThreadMutexDealloc(&mutex);
    }
    if (char* string = VexaUtilStringAlloc(5, "text")) VexaUtilStringDealloc(&string);
    if (ArgList_s* list = VexaUtilArgListAlloc()) VexaUtilArgListDealloc(&list);
    if (Set_s* set = VexaUtilSetAlloc()) VexaUtilSetDealloc(&set);
}

TEST(InjectedFault, IsNoBreachOfTheAddOn) {
    Lines functions;
    {
        Host host;
        takeAndGiveBackEverything();
        functions = host.calledFunctions();
    }
    for (const std::string& function : functions) {
        SCOPED_TRACE(function);
        Host host;
        host.suppress("null-handle");  // the identity
        host.failCall(function);
        takeAndGiveBackEverything();
        takeAndGiveBackEverything();
        for (const Finding& finding : host.violations()) ADD_FAILURE() << textOf(finding);
    }
}

TEST(InjectedFault, ThatTakesTheErrorMessageIsReasonEnoughForNone) {
    Host host;
    host.loadAddOn(addOnFile("misbehaving"));
    host.failCall("VexaUtilStringAlloc");
    EXPECT_FALSE(host.run("MISBEHAVING", "missing-errmsg-twin").accepted);
    EXPECT_TRUE(host.violations().empty());
}

TEST(InjectedFault, ThatThrowsHasBegunNothing) {
    for (const char* function : {"VexaUtilAuxDataBeginAssign", "VexaUtilDataSetSuspendMarking"}) {
        Host host;
        host.loadAddOn(addOnFile("misbehaving"));
        host.throwFromCall(function);
        const bool isMarking = std::string(function) == "VexaUtilDataSetSuspendMarking";
        host.run("MISBEHAVING", isMarking ? "unbalanced-marking" : "unbalanced-auxdata");
        EXPECT_EQ(rulesOf(host.violations()), Lines({"escaped-exception"})) << function;
    }
}

// ---- Without memory

TEST(WithoutMemoryForItsBooks, NothingIsHeldAgainstAnAddOn) {
    const auto hasFailed = [](long allowed, Failing failing) {
        Host host;
        host.setKeepsCalls(false);
        ArgList_s* list = VexaUtilArgListAlloc();
        bool appended = false;
        {
            const FailingAllocator allocator(allowed, failing);
            appended = VexaUtilArgListAppendInt(list, "Offset1", 1) == 1;
        }
        if (!appended) VexaUtilArgListAppendInt(list, "Offset1", 1);
        VexaUtilArgListDealloc(&list);
        for (const Finding& finding : host.violations()) ADD_FAILURE() << textOf(finding);
        return FailingAllocator::hasFailed();
    };
    EXPECT_GT(sweepAllocations(Failing::Once, hasFailed), 0);
}

}  // namespace
}  // namespace vexa::standin
