// Tests that the contract checks the calls of any host. This program has no stand-in host and no class libraries. A
// host of a few lines passes the calls of an add-on to the contract.

#include <gtest/gtest.h>

#include <cstddef>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "contract/Checks.h"
#include "contract/Contract.h"
#include "contract/HostFunctionTable.h"
#include "contract/HostStrings.h"
#include "contract/ThreadNumbers.h"
#include "vexa/VexaUtil.h"
#include "vexastandin/Finding.h"

// The objects of this host. The contract compares their addresses only.
struct AddOnList_s {};
struct ThreadMutex_s {};
struct ArgList_s {};

namespace vexa::standin {
namespace {

using Lines = std::vector<std::string>;
using F = HostFunction;

const void* noException() { return nullptr; }

class OtherHost : private HostStringsInterface {
public:
    OtherHost() {
        m_contract.introduce(&identity);
        m_contract.enter({Entry_e::Command, "OTHER", "GO", "run.macro:3"});
    }

    AddOnList_s identity;
    ThreadMutex_s mutex;
    ArgList_s argList;
    char string[4] = "abc";
    HostStringState stringState{4, true, true};

    /// A call of a function without a result.
    template <HostFunction function, class... Arguments>
    void call(const Arguments&... arguments) {
        const std::size_t number = ++m_calls;
        checkCall<function>(m_contract, number, arguments...);
        checkReturn<function>(m_contract, number, arguments...);
    }

    /// A call that returns \p result.
    template <HostFunction function, class Result, class... Arguments>
    void callReturning(Result result, const Arguments&... arguments) {
        const std::size_t number = ++m_calls;
        checkCall<function>(m_contract, number, arguments...);
        checkReturn<function>(m_contract, number, Returned<Result>{result, 1}, arguments...);
    }

    /// The command returns.
    void finish(bool accepted = true, const char* errMsg = nullptr) {
        m_contract.judgeErrorMessage(accepted, errMsg);
        m_contract.leave();
    }

    /// What \ref finish does when an exception left the command.
    void finishByException(const std::string& what) {
        m_contract.judgeEscape(what, nullptr);
        m_contract.leave();
    }

    Contract& contract() { return m_contract; }

    /// The findings so far, "rule: message" each.
    Lines findings() const {
        Lines lines;
        for (const Finding& finding : m_contract.findings()) lines.push_back(finding.rule + ": " + finding.message);
        return lines;
    }
    Finding first() const { return m_contract.findings().at(0); }
    /// The rules that \p Show was called with.
    Lines shown;

private:
    // A host that does not know what is in memory.
    struct NoCodeObjects : CodeObjectsInterface {
        std::shared_ptr<const CodeObject> objectAt(std::uintptr_t) override { return nullptr; }
        void forget() override {}
    };

    HostStringState stateOf(const char*) const override { return stringState; }

    ThreadNumbers m_threads;
    NoCodeObjects m_objects;
    Contract m_contract{m_threads, *this, m_objects, noException,
                        [this](const Finding& finding) { shown.push_back(finding.rule); }};
    std::size_t m_calls = 0;
};

TEST(OtherHost, GivesNoFindingForCallsThatKeepTheContract) {
    OtherHost host;
    host.call<F::VexaUtilLockStart>(&host.identity);
    host.call<F::VexaUtilLockFinish>(&host.identity);
    host.callReturning<F::VexaUtilThreadMutexAlloc>(&host.mutex);
    host.call<F::VexaUtilThreadMutexLock>(&host.mutex);
    host.call<F::VexaUtilThreadMutexUnlock>(&host.mutex);
    host.callReturning<F::VexaUtilStringAlloc>(host.string, 4, "text");
    host.finish(false, host.string);
    EXPECT_EQ(host.findings(), Lines{});
}

TEST(OtherHost, GivesAFindingForALockThatIsNotGivenBack) {
    OtherHost host;
    host.call<F::VexaUtilLockStart>(&host.identity);
    host.finish();
    EXPECT_EQ(host.findings(),
              Lines{"unbalanced-lock: VexaUtilLockStart has no matching VexaUtilLockFinish in the command"});
}

TEST(OtherHost, GivesAFindingForAPercentageOutOfRange) {
    OtherHost host;
    host.call<F::VexaUtilStatusStartPercentDone>(static_cast<const char*>(nullptr), 0, 1);
    host.callReturning<F::VexaUtilStatusCheckPercentDone>(1, 101);
    host.call<F::VexaUtilStatusFinishPercentDone>();
    EXPECT_EQ(host.findings(), Lines{"percent-out-of-range: the status line was given 101 percent"});
}

TEST(OtherHost, GivesAFindingForAHandleUsedAfterItWasFreed) {
    OtherHost host;
    host.callReturning<F::VexaUtilArgListAlloc>(&host.argList);
    ArgList_s* handle = &host.argList;
    host.call<F::VexaUtilArgListDealloc>(&handle);
    host.call<F::VexaUtilArgListClear>(&host.argList);
    EXPECT_EQ(host.findings(),
              Lines{"use-after-free: VexaUtilArgListClear was given arglist#1, which was already freed by call 2 of "
                    "VexaUtilArgListDealloc"});
}

TEST(OtherHost, GivesAFindingForAMutexUnlockedThatIsNotLocked) {
    OtherHost host;
    host.callReturning<F::VexaUtilThreadMutexAlloc>(&host.mutex);
    host.call<F::VexaUtilThreadMutexUnlock>(&host.mutex);
    EXPECT_EQ(host.findings(), Lines{"mutex-not-held: mutex#1 was unlocked, but it was not locked"});
}

TEST(OtherHost, GivesAFindingForAStringThatItSeesOverrun) {
    OtherHost host;
    host.callReturning<F::VexaUtilStringAlloc>(host.string, 4, "text");
    host.stringState = {4, false, false};
    host.finish(false, host.string);
    EXPECT_EQ(host.findings(), Lines{"string-overrun: string#1 has 4 bytes, but more bytes were written to it"});
}

TEST(OtherHost, GivesAFindingForAnErrorMessageThatItSeesUnterminated) {
    OtherHost host;
    host.callReturning<F::VexaUtilStringAlloc>(host.string, 4, "text");
    host.stringState = {4, true, false};
    host.finish(false, host.string);
    EXPECT_EQ(host.findings(),
              Lines{"string-unterminated: the error message, string#1 of 4 bytes, has no terminating zero"});
}

TEST(OtherHost, GivesAFindingForAStyleQueryWithoutAPath) {
    OtherHost host;
    double value = 0;
    host.callReturning<F::VexaUtilArgListAlloc>(&host.argList);
    host.callReturning<F::VexaUtilArgListAppendDoublePtr>(1, &host.argList, "DValue", &value);
    host.callReturning<F::VexaUtilStyleGetLowLevelX>(GetValueReturnCode_UnknownPath, &host.argList);
    ASSERT_EQ(host.findings().size(), 1U);
    EXPECT_EQ(host.first().rule, "missing-argument");
}

TEST(OtherHost, GivesAFindingForACallOnAnotherThread) {
    OtherHost host;
    std::thread([&] { host.callReturning<F::VexaUtilMacroIsBatchModeActive>(0); }).join();
    ASSERT_EQ(host.findings().size(), 1U);
    EXPECT_EQ(host.first().rule, "wrong-thread");
}

TEST(OtherHost, GivesAFindingForAnExceptionThatEscapes) {
    OtherHost host;
    host.finishByException("an exception escaped");
    EXPECT_EQ(host.findings(), Lines{"escaped-exception: an exception escaped"});
}

TEST(OtherHost, IsToldOfEachFindingAndWhereItIs) {
    OtherHost host;
    host.call<F::VexaUtilAuxDataEndAssign>();
    EXPECT_EQ(host.shown, Lines{"unbalanced-auxdata"});
    EXPECT_EQ(host.first().addOnId, "OTHER");
    EXPECT_EQ(host.first().seen.call, 1U);
    EXPECT_EQ(host.first().seen.function, "VexaUtilAuxDataEndAssign");
    EXPECT_EQ(host.first().seen.command, "OTHER GO");
    EXPECT_EQ(host.first().seen.macroLine, "run.macro:3");
}

TEST(OtherHost, MayEnterAddOnsOnTwoThreadsAtOnce) {
    OtherHost host;
    std::promise<void> entered;
    std::promise<void> called;
    host.call<F::VexaUtilAuxDataBeginAssign>();
    std::thread second([&] {
        host.contract().enter({Entry_e::Command, "SECOND", "GO", "command 2"});
        host.call<F::VexaUtilAuxDataEndAssign>();  // of its own command, which has begun nothing
        entered.set_value();
        called.get_future().wait();
        host.contract().leave();
    });
    entered.get_future().wait();
    host.call<F::VexaUtilAuxDataEndAssign>();
    called.set_value();
    second.join();
    host.finish();
    ASSERT_EQ(host.findings().size(), 1U);
    EXPECT_EQ(host.first().addOnId, "SECOND");
    EXPECT_EQ(host.first().seen.macroLine, "command 2");
}

TEST(OtherHost, MayLearnLaterThatACommandWasAbandoned) {
    OtherHost host;
    host.call<F::VexaUtilLockStart>(&host.identity);
    std::thread([&] { host.contract().abandon(1, "left by a jump"); }).join();
    EXPECT_EQ(host.findings(),
              (Lines{"escaped-exception: left by a jump",
                     "unbalanced-lock: VexaUtilLockStart has no matching VexaUtilLockFinish in the command"}));
    EXPECT_EQ(host.first().seen.command, "OTHER GO");
}

TEST(OtherHost, GivesNoFindingForAnAbandonedCommandWhileChecksAreOff) {
    OtherHost host;
    host.contract().setOn(false);
    host.contract().abandon(1, "left by a jump");
    EXPECT_EQ(host.findings(), Lines{});
}

TEST(OtherHost, MayUnloadAnAddOnAfterItsShutdown) {
    OtherHost host;
    host.callReturning<F::VexaUtilThreadMutexAlloc>(&host.mutex);
    host.finish();
    host.contract().enter({Entry_e::Unloading, "OTHER", "", ""});
    host.contract().leave(false);
    EXPECT_EQ(host.findings(), Lines{});
    host.contract().enter({Entry_e::Unloading, "OTHER", "", ""});
    host.contract().leave();
    EXPECT_EQ(host.findings(), Lines{"leaked-mutex: the unloading did not free a mutex: mutex#1 (call 1)"});
}

TEST(OtherHost, LendsTheSetsThatItsStyleQueriesReturn) {
    OtherHost host;
    char set = 0;
    auto* const handle = reinterpret_cast<Set_s*>(&set);
    auto value = reinterpret_cast<VexaArbParam>(handle);
    host.callReturning<F::VexaUtilArgListAlloc>(&host.argList);
    host.callReturning<F::VexaUtilArgListAppendString>(1, &host.argList, "P1", "ZONES");
    host.callReturning<F::VexaUtilArgListAppendArbParamPtr>(1, &host.argList, "IValue", &value);
    host.callReturning<F::VexaUtilStyleGetLowLevelX>(GetValueReturnCode_Ok, &host.argList);
    EXPECT_EQ(host.contract().nameOf(handle), "unknown");
    host.contract().lendResultOf(&host.argList);
    EXPECT_EQ(host.contract().nameOf(handle), "style-set#1");
    int64_t first = 0;
    host.callReturning<F::VexaUtilSetNextRange>(0, static_cast<const Set_s*>(handle), int64_t{0}, &first, &first);
    EXPECT_EQ(host.findings(), Lines{});
    host.callReturning<F::VexaUtilSetInsert>(0, handle, int64_t{0}, int64_t{1});
    EXPECT_EQ(
        host.findings(),
        Lines{"foreign-handle: VexaUtilSetInsert was given a set of the host, which the add-on must not change or "
              "free"});
}

TEST(OtherHost, TakesNoNumberForASet) {
    OtherHost host;
    VexaArbParam value = 12;
    host.callReturning<F::VexaUtilArgListAlloc>(&host.argList);
    host.callReturning<F::VexaUtilArgListAppendArbParamPtr>(1, &host.argList, "IValue", &value);
    host.contract().lendResultOf(&host.argList);
    EXPECT_EQ(host.contract().nameOf(reinterpret_cast<const Set_s*>(12)), "unknown");
}

TEST(OtherHost, LendsASetOnceThoughTwoQueriesReturnIt) {
    OtherHost host;
    char set = 0;
    auto* const handle = reinterpret_cast<Set_s*>(&set);
    auto value = reinterpret_cast<VexaArbParam>(handle);
    host.callReturning<F::VexaUtilArgListAlloc>(&host.argList);
    host.callReturning<F::VexaUtilArgListAppendArbParamPtr>(1, &host.argList, "IValue", &value);
    host.contract().lendResultOf(&host.argList);
    host.contract().lendResultOf(&host.argList);
    EXPECT_EQ(host.contract().nameOf(handle), "style-set#1");
}

TEST(OtherHost, LendsNothingToAQueryWithoutAPlaceForIt) {
    OtherHost host;
    host.callReturning<F::VexaUtilArgListAlloc>(&host.argList);
    host.contract().lendResultOf(&host.argList);
    host.finish();
    EXPECT_EQ(host.findings(), Lines{"leaked-arglist: the command did not free an argument list: arglist#1 (call 1)"});
}

TEST(OtherHost, MayRefuseANameThatTheListHas) {
    OtherHost host;
    host.callReturning<F::VexaUtilArgListAlloc>(&host.argList);
    host.callReturning<F::VexaUtilArgListAppendInt>(1, &host.argList, "Offset1", 1L);
    host.callReturning<F::VexaUtilArgListAppendInt>(0, &host.argList, "Offset1", 2L);
    EXPECT_EQ(host.findings(), Lines{"duplicate-argument: \"Offset1\" was appended twice to arglist#1"});
}

TEST(OtherHost, MayRefuseANameThatTheListHasNot) {
    OtherHost host;
    host.callReturning<F::VexaUtilArgListAlloc>(&host.argList);
    host.callReturning<F::VexaUtilArgListAppendInt>(0, &host.argList, "Offset1", 1L);
    host.callReturning<F::VexaUtilArgListAppendInt>(1, &host.argList, "Offset1", 1L);
    EXPECT_EQ(host.findings(), Lines{});
}

}  // namespace
}  // namespace vexa::standin
