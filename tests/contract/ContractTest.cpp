// Tests every rule with a command that breaks the rule and a similar command, its twin, that keeps it.

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "vexastandin/Finding.h"
#include "vexastandin/Host.h"

namespace vexa::standin {
namespace {

struct Misbehaviour {
    const char* command;  // of the add-on MISBEHAVING; its twin's command ends in "-twin"
    const char* rule;
    const char* message;
};

std::ostream& operator<<(std::ostream& out, const Misbehaviour& misbehaviour) { return out << misbehaviour.command; }

const Misbehaviour kMisbehaviours[] = {
    {"unbalanced-lock", "unbalanced-lock", "VexaUtilLockStart has no matching VexaUtilLockFinish in the command"},
    {"unbalanced-lock-needless-end", "unbalanced-lock", "VexaUtilLockFinish has no matching VexaUtilLockStart"},
    {"lock-identity", "lock-identity", "VexaUtilLockFinish got another identity than VexaUtilLockStart"},
    {"unbalanced-auxdata", "unbalanced-auxdata",
     "VexaUtilAuxDataBeginAssign has no matching VexaUtilAuxDataEndAssign in the command"},
    {"unbalanced-auxdata-needless-end", "unbalanced-auxdata",
     "VexaUtilAuxDataEndAssign has no matching VexaUtilAuxDataBeginAssign"},
    {"unbalanced-marking", "unbalanced-marking",
     "VexaUtilDataSetSuspendMarking(1) has no matching VexaUtilDataSetSuspendMarking(0) in the command"},
    {"unbalanced-marking-needless-end", "unbalanced-marking",
     "VexaUtilDataSetSuspendMarking(0) has no matching VexaUtilDataSetSuspendMarking(1)"},
    {"unbalanced-solution-time", "unbalanced-solution-time",
     "VexaUtilZoneSolutionTimeModificationBegin has no matching VexaUtilZoneSolutionTimeModificationEnd in the "
     "command"},
    {"unbalanced-solution-time-needless-end", "unbalanced-solution-time",
     "VexaUtilZoneSolutionTimeModificationEnd has no matching VexaUtilZoneSolutionTimeModificationBegin"},
    {"unbalanced-status", "unbalanced-status",
     "VexaUtilStatusStartPercentDone has no matching VexaUtilStatusFinishPercentDone in the command"},
    {"unbalanced-status-needless-end", "unbalanced-status",
     "VexaUtilStatusFinishPercentDone has no matching VexaUtilStatusStartPercentDone"},
    {"status-started-twice", "status-started-twice",
     "VexaUtilStatusStartPercentDone was called while the status line was shown"},
    {"status-started-twice-and-finished-twice", "status-started-twice",
     "VexaUtilStatusStartPercentDone was called while the status line was shown"},
    {"status-not-started", "status-not-started",
     "VexaUtilStatusCheckPercentDone was called before the status line was started"},
    {"status-not-started-text", "status-not-started",
     "VexaUtilStatusSetPercentDoneText was called before the status line was started"},
    {"status-not-started-but-finished", "status-not-started",
     "VexaUtilStatusCheckPercentDone was called after the status line was finished"},
    {"percent-out-of-range", "percent-out-of-range", "the status line was given 101 percent"},
    {"percent-out-of-range-negative", "percent-out-of-range", "the status line was given -1 percent"},
    {"percent-backwards", "percent-backwards", "the status line went back from 50 to 49 percent"},
    {"use-after-free", "use-after-free",
     "VexaUtilArgListClear was given arglist#1, which was already freed by call 2 of VexaUtilArgListDealloc"},
    {"use-after-free-errmsg", "use-after-free", "the error message is a host string that was freed"},
    {"double-free", "double-free",
     "VexaUtilSetDealloc was given set#1, which was already freed by call 2 of VexaUtilSetDealloc"},
    {"double-free-string", "double-free",
     "VexaUtilStringDealloc was given string#1, which was already freed by call 2 of VexaUtilStringDealloc"},
    {"foreign-handle", "foreign-handle",
     "VexaUtilThreadMutexLock was given a handle that is not one of the host's mutexes"},
    {"foreign-handle-identity", "foreign-handle", "VexaUtilLockStart was given an identity that belongs to no add-on"},
    {"foreign-handle-free", "foreign-handle",
     "VexaUtilSetDealloc was given a handle that is not one of the host's sets"},
    {"null-handle", "null-handle", "VexaUtilArgListClear was given a null handle for an argument list"},
    {"null-handle-freed-before", "null-handle", "VexaUtilSetDealloc was given a null handle for a set"},
    {"null-address", "null-address", "VexaUtilDialogErrMsg was given a null address"},
    {"null-address-of-handle", "null-address", "VexaUtilThreadMutexDealloc was given a null address"},
    {"null-address-of-value", "null-address", "VexaUtilArgListAppendDoublePtr was given a null address"},
    {"leaked-arglist", "leaked-arglist", "the command did not free an argument list: arglist#1 (call 1)"},
    {"leaked-arglist-twelve", "leaked-arglist",
     "the command did not free 12 argument lists: arglist#1 (call 1), arglist#2 (call 2), arglist#3 (call 3), "
     "arglist#4 (call 4), arglist#5 (call 5) and 7 more"},
    {"leaked-string", "leaked-string", "the command did not free a host string: string#1 (call 1)"},
    {"leaked-mutex", "leaked-mutex", "the unloading did not free a mutex: mutex#1 (call 1)"},
    {"leaked-set", "leaked-set", "the unloading did not free a set: set#1 (call 1)"},
    {"mutex-not-held", "mutex-not-held", "mutex#1 was unlocked, but it was not locked"},
    {"mutex-not-held-by-this-thread", "mutex-not-held", "mutex#1 was unlocked by thread 2, but thread 1 holds it"},
    {"mutex-locked-twice", "mutex-locked-twice",
     "thread 1 locked mutex#1, which it already holds; a real host would wait forever"},
    {"mutex-freed-locked", "mutex-freed-locked", "mutex#1 was freed while it was locked"},
    {"mutex-left-locked", "mutex-left-locked", "the command did not unlock mutex#1"},
    {"string-overrun", "string-overrun", "string#1 has 4 bytes, but more bytes were written to it"},
    {"string-overrun-freed", "string-overrun", "string#1 has 4 bytes, but more bytes were written to it"},
    {"string-unterminated", "string-unterminated", "the error message, string#1 of 4 bytes, has no terminating zero"},
    {"foreign-errmsg", "foreign-errmsg", "the error message is not a host string"},
    {"errmsg-on-success", "errmsg-on-success", "the command succeeded, but set an error message"},
    {"missing-errmsg", "missing-errmsg", "the command failed, but set no error message"},
    {"missing-argument", "missing-argument", R"(the style query with arglist#1 lacks "DValue" or "IValue")"},
    {"missing-argument-path", "missing-argument", R"(the style query with arglist#1 lacks "P1")"},
    {"missing-argument-gap", "missing-argument", R"(the style query with arglist#1 lacks "P2")"},
    {"missing-argument-after-clear", "missing-argument", R"(the style query with arglist#1 lacks "P1")"},
    {"duplicate-argument", "duplicate-argument", R"("P1" was appended twice to arglist#1)"},
    {"duplicate-argument-value", "duplicate-argument",
     R"(the style query with arglist#1 has both "DValue" and "IValue")"},
    {"wrong-argument-kind", "wrong-argument-kind",
     R"("Offset1" was appended to arglist#1 as a string, but it must be an integer)"},
    {"wrong-argument-kind-path", "wrong-argument-kind",
     R"("P1" was appended to arglist#1 as an integer, but it must be a string)"},
    {"wrong-thread", "wrong-thread",
     "VexaUtilMacroIsBatchModeActive was called on thread 2, but the host entered the add-on on thread 1"},
    {"escaped-exception", "escaped-exception", "an exception escaped from the add-on: no such zone"},
    {"escaped-exception-shutdown", "escaped-exception", "an exception escaped from its shutdown: busy"},
    {"recording-not-replayable-blank", "recording-not-replayable",
     "VexaUtilMacroRecordExtCommand was given a command that does not fit on one line of a macro file: its text is "
     "blank"},
    {"recording-not-replayable-journal", "recording-not-replayable",
     "VexaUtilDataSetAddJournalCommand was given a command that does not fit on one line of a macro file: its text has "
     "a line "
     "break in it"},
};

std::vector<Finding> findingsOf(const std::string& command) {
    Host host;
    host.loadAddOn(VEXA_TEST_ADDONS "/misbehaving.so");
    host.run("MISBEHAVING", command, "wake.macro:3");
    host.unloadAddOns();
    return host.violations();
}

class EveryMisbehaviour : public testing::TestWithParam<Misbehaviour> {};

TEST_P(EveryMisbehaviour, BreaksItsRuleOnceAndNoOther) {
    const std::vector<Finding> findings = findingsOf(GetParam().command);
    ASSERT_EQ(findings.size(), 1U);
    const Finding& finding = findings[0];
    EXPECT_EQ(finding.rule, GetParam().rule);
    EXPECT_EQ(finding.message, GetParam().message);
    ASSERT_NE(findRule(finding.rule), nullptr);
    EXPECT_EQ(finding.severity, findRule(finding.rule)->severity);
    EXPECT_EQ(finding.addOnId, "MISBEHAVING");
    EXPECT_EQ(finding.repeats, 0U);
    EXPECT_NE(finding.seen.command, "");
}

INSTANTIATE_TEST_SUITE_P(Contract, EveryMisbehaviour, testing::ValuesIn(kMisbehaviours), [](const auto& test) {
    std::string name = test.param.command;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

// What a host cannot see by itself: its runner reports it.
bool isForTheRunner(const std::string& rule) { return rule == "command-timeout"; }

TEST(Contract, HasAMisbehaviourForEveryRule) {
    std::set<std::string> broken;
    for (const Misbehaviour& misbehaviour : kMisbehaviours) broken.insert(misbehaviour.rule);
    for (const Rule& rule : rules())
        EXPECT_EQ(broken.count(rule.name), isForTheRunner(rule.name) ? 0U : 1U) << rule.name;
}

TEST(Contract, IsKeptByTheNearTwinOfEveryMisbehaviour) {
    for (const Rule& rule : rules()) {
        SCOPED_TRACE(rule.name);
        Host host;
        host.loadAddOn(VEXA_TEST_ADDONS "/misbehaving.so");
        const CommandResult result = host.run("MISBEHAVING", std::string(rule.name) + "-twin");
        EXPECT_NE(result.error, "unknown command");
        host.unloadAddOns();
        for (const Finding& finding : host.violations()) ADD_FAILURE() << textOf(finding);
    }
}

}  // namespace
}  // namespace vexa::standin
