#include "vexastandin/Host.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "CallTrace.h"
#include "EveryFunction.h"
#include "vexa/InvalidArgumentException.h"
#include "vexastandin/CallProgress.h"
#include "vexastandin/HostFunctions.h"

namespace vexa::standin {
namespace {

// ---- The process's host

TEST(Host, IsTheProcessesHostWhileItLives) {
    EXPECT_EQ(Host::current(), nullptr);
    {
        const Host host;
        EXPECT_EQ(Host::current(), &host);
    }
    EXPECT_EQ(Host::current(), nullptr);
}

TEST(Host, BringsBackTheOneBefore) {
    Host outer;
    outer.setBatchMode(true);
    {
        const Host inner;
        EXPECT_EQ(Host::current(), &inner);
        EXPECT_EQ(VexaUtilMacroIsBatchModeActive(), 0);
    }
    EXPECT_EQ(Host::current(), &outer);
    EXPECT_EQ(VexaUtilMacroIsBatchModeActive(), 1);
}

TEST(Host, SeesNoCallsOfAnInnerOne) {
    const Host outer;
    const Host inner;
    VexaUtilAuxDataBeginAssign();
    EXPECT_EQ(traceOf(outer), Lines());
    EXPECT_EQ(traceOf(inner), Lines({"VexaUtilAuxDataBeginAssign()"}));
}

TEST(Host, MayDieBeforeAnInnerOne) {
    auto outermost = std::make_unique<Host>();
    auto middle = std::make_unique<Host>();
    auto inner = std::make_unique<Host>();
    middle.reset();
    EXPECT_EQ(Host::current(), inner.get());
    inner.reset();
    EXPECT_EQ(Host::current(), outermost.get());
}

TEST(Host, MayDieBeforeTwoInnerOnes) {
    const Host outermost;
    auto second = std::make_unique<Host>();
    auto third = std::make_unique<Host>();
    auto inner = std::make_unique<Host>();
    second.reset();
    inner.reset();
    EXPECT_EQ(Host::current(), third.get());
    third.reset();
    EXPECT_EQ(Host::current(), &outermost);
}

TEST(Host, TakesHandlesOfAnOuterOneForForeign) {
    const Host outer;
    Set_s* set = VexaUtilSetAlloc();
    Set_s* const handle = set;
    {
        const Host inner;
        EXPECT_EQ(VexaUtilSetInsert(set, 1, 2), 0);
        VexaUtilSetDealloc(&set);
        EXPECT_EQ(set, handle);
    }
    EXPECT_EQ(VexaUtilSetInsert(set, 1, 2), 1);
}

TEST(Host, ServesOtherThreads) {
    Host host;
    host.setRecording(true);
    VexaBoolean answer = 0;
    std::thread([&] { answer = VexaUtilMacroIsRecordingActive(); }).join();
    EXPECT_EQ(answer, 1);
}

// ---- What the host answers

TEST(Host, StartsWithNothingActive) {
    const Host host;
    EXPECT_EQ(VexaUtilMacroIsBatchModeActive(), 0);
    EXPECT_EQ(VexaUtilMacroIsRecordingActive(), 0);
    EXPECT_EQ(VexaUtilStateIsProcessingJournal(), 0);
    EXPECT_EQ(VexaUtilStateIsProcessingLayout(), 0);
}

TEST(Host, AnswersWhatItWasTold) {
    struct Case {
        const char* why;
        void (Host::*tell)(bool);
        VexaBoolean (*ask)();
    };
    const Case cases[] = {
        {"batch mode", &Host::setBatchMode, VexaUtilMacroIsBatchModeActive},
        {"recording", &Host::setRecording, VexaUtilMacroIsRecordingActive},
        {"journal", &Host::setProcessingJournal, VexaUtilStateIsProcessingJournal},
        {"layout", &Host::setProcessingLayout, VexaUtilStateIsProcessingLayout},
    };
    Host host;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        (host.*c.tell)(true);
        for (const Case& other : cases) EXPECT_EQ(other.ask(), &other == &c) << other.why;
        (host.*c.tell)(false);
        EXPECT_EQ(c.ask(), 0);
    }
}

// ---- Faults

TEST(FailCall, LetsTheNextCallFailAndNoOther) {
    Host host;
    host.failCall("VexaUtilStatusCheckPercentDone");
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(1), 0);
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(1), 1);
}

TEST(FailCall, HoldsWhenNobodyLooksAtTheCalls) {
    Host host;
    host.setChecking(false);
    host.setKeepsCalls(false);
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(1), 1);
    host.failCall("VexaUtilStatusCheckPercentDone");
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(1), 0);
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(1), 1);
}

TEST(FailCall, IsForgottenOnRequest) {
    Host host;
    host.failCall("VexaUtilStringAlloc");
    host.throwFromCall("VexaUtilStringAlloc", 2);
    host.forgetFaults();
    char* first = VexaUtilStringAlloc(2, "");
    char* second = VexaUtilStringAlloc(2, "");
    EXPECT_NE(first, nullptr);
    EXPECT_NE(second, nullptr);
    VexaUtilStringDealloc(&first);
    VexaUtilStringDealloc(&second);
}

TEST(FailCall, CountsCallsOfTheFunctionFromNowOn) {
    Host host;
    VexaUtilStatusCheckPercentDone(1);
    host.failCall("VexaUtilStatusCheckPercentDone", 2);
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(1), 1);
    VexaUtilMacroIsBatchModeActive();
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(1), 0);
}

TEST(FailCall, HoldsForSeveralCalls) {
    Host host;
    host.failCall("VexaUtilStatusCheckPercentDone", 1);
    host.failCall("VexaUtilStatusCheckPercentDone", 3, 5);
    host.failCall("VexaUtilStatusCheckPercentDone", 3, 6);  // the one asked for first holds
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(1), 0);
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(1), 1);
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(1), 5);
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(1), 1);
}

TEST(FailCall, ReturnsTheResultAskedFor) {
    Host host;
    host.failCall("VexaUtilMacroRecordExtCommand", 1, 2);
    host.failCall("VexaUtilStyleGetLowLevelX", 1, GetValueReturnCode_OtherType);
    EXPECT_EQ(VexaUtilMacroRecordExtCommand("PROBE", "GO"), 2);
    EXPECT_EQ(VexaUtilStyleGetLowLevelX(nullptr), GetValueReturnCode_OtherType);
}

TEST(FailCall, GivesNullForPointers) {
    Host host;
    for (const char* function :
         {"VexaUtilThreadMutexAlloc", "VexaUtilStringAlloc", "VexaUtilArgListAlloc", "VexaUtilSetAlloc"}) {
        host.failCall(function, 1, 1);
    }
    EXPECT_EQ(VexaUtilThreadMutexAlloc(), nullptr);
    EXPECT_EQ(VexaUtilStringAlloc(5, "text"), nullptr);
    EXPECT_EQ(VexaUtilArgListAlloc(), nullptr);
    EXPECT_EQ(VexaUtilSetAlloc(), nullptr);
}

TEST(FailCall, LetsTheCallDoNothing) {
    Host host;
    host.failCall("VexaUtilDialogErrMsg");
    host.failCall("VexaUtilDataSetAddJournalCommand", 1, 1);
    VexaUtilDialogErrMsg("lost");
    EXPECT_EQ(VexaUtilDataSetAddJournalCommand("PROBE", "GO", nullptr), 1);
    EXPECT_EQ(host.dialogs(), Lines());
    EXPECT_TRUE(host.journalEntries().empty());
}

TEST(FailCall, IsSeenInTheCalls) {
    Host host;
    host.failCall("VexaUtilStringAlloc");
    VexaUtilStringAlloc(5, "text");
    EXPECT_EQ(traceOf(host), Lines({"VexaUtilStringAlloc(5, \"text\") = null"}));
}

TEST(FailCall, IsOverWithTheHost) {
    { Host().failCall("VexaUtilStatusCheckPercentDone"); }
    const Host host;
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(1), 1);
}

TEST(ThrowFromCall, ThrowsOnceFromEveryFunction) {
    Host host;
    for (const HarmlessCall& function : kEveryFunction) {
        SCOPED_TRACE(function.function);
        host.throwFromCall(function.function);
        EXPECT_THROW(function.call(), std::runtime_error);
        EXPECT_NO_THROW(function.call());
    }
}

TEST(ThrowFromCall, NamesTheFunction) {
    Host host;
    host.throwFromCall("VexaUtilSetAlloc", 2);
    VexaUtilSetAlloc();
    try {
        VexaUtilSetAlloc();
        FAIL() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "VexaUtilSetAlloc was told to throw");
    }
}

TEST(ThrowFromCall, IsSeenInTheCalls) {
    Host host;
    host.throwFromCall("VexaUtilSetAlloc");
    EXPECT_THROW(VexaUtilSetAlloc(), std::runtime_error);
    EXPECT_EQ(traceOf(host), Lines({"VexaUtilSetAlloc()"}));
}

TEST(Faults, AreRefusedForWhatTheHostHasNot) {
    const auto refusalOf = [](auto plan) -> std::string {
        Host host;
        try {
            plan(host);
        } catch (const InvalidArgumentException& refusal) {
            return refusal.what();
        }
        return "accepted";
    };
    const std::string noFunction = "The host has no function \"VexaUtilFly\"";
    const std::string noCall = "Calls are counted from 1, but the call to fail is number 0";
    EXPECT_EQ(refusalOf([](Host& host) { host.failCall("VexaUtilFly"); }), noFunction);
    EXPECT_EQ(refusalOf([](Host& host) { host.throwFromCall("VexaUtilFly"); }), noFunction);
    EXPECT_EQ(refusalOf([](Host& host) { host.failCall("VexaUtilSetAlloc", 0); }), noCall);
    EXPECT_EQ(refusalOf([](Host& host) { host.throwFromCall("VexaUtilSetAlloc", 0); }), noCall);
}

// ---- Calls

TEST(Calls, AreSeenInOrderWithArgumentsAndResults) {
    const Host host;
    VexaUtilStatusStartPercentDone("Loading", 1, 0);
    VexaUtilStatusCheckPercentDone(-7);
    VexaUtilStatusFinishPercentDone();
    EXPECT_EQ(traceOf(host), Lines({"VexaUtilStatusStartPercentDone(\"Loading\", 1, 0)",
                                    "VexaUtilStatusCheckPercentDone(-7) = 1", "VexaUtilStatusFinishPercentDone()"}));
}

TEST(Calls, ShowStringsAsInC) {
    const Host host;
    VexaUtilStatusSetPercentDoneText("say \"hi\"\tto C:\\ and\r\nmore");
    VexaUtilStatusSetPercentDoneText("");
    VexaUtilStatusSetPercentDoneText(nullptr);
    EXPECT_EQ(traceOf(host),
              Lines({R"(VexaUtilStatusSetPercentDoneText("say \"hi\"\tto C:\\ and\r\nmore"))",
                     "VexaUtilStatusSetPercentDoneText(\"\")", "VexaUtilStatusSetPercentDoneText(null)"}));
}

TEST(Calls, ShowHandlesByKindAndNumber) {
    const Host host;
    ThreadMutex_s* mutex = VexaUtilThreadMutexAlloc();
    VexaUtilThreadMutexDealloc(&mutex);
    mutex = VexaUtilThreadMutexAlloc();
    VexaUtilThreadMutexLock(mutex);
    ArgList_s* const argList = VexaUtilArgListAlloc();
    VexaUtilArgListAppendInt(argList, "Offset1", 3);
    Set_s* const set = VexaUtilSetAlloc();
    VexaUtilSetInsert(set, 1, 9);
    char* string = VexaUtilStringAlloc(14, "error string");
    VexaUtilStringDealloc(&string);
    VexaUtilStringDealloc(&string);
    EXPECT_EQ(traceOf(host),
              Lines({"VexaUtilThreadMutexAlloc() = mutex#1", "VexaUtilThreadMutexDealloc(mutex#1)",
                     "VexaUtilThreadMutexAlloc() = mutex#2", "VexaUtilThreadMutexLock(mutex#2)",
                     "VexaUtilArgListAlloc() = arglist#1", "VexaUtilArgListAppendInt(arglist#1, \"Offset1\", 3) = 1",
                     "VexaUtilSetAlloc() = set#1", "VexaUtilSetInsert(set#1, 1, 9) = 1",
                     "VexaUtilStringAlloc(14, \"error string\") = string#1", "VexaUtilStringDealloc(string#1)",
                     "VexaUtilStringDealloc(null)"}));
}

TEST(Calls, ShowWhatIsNoneOfTheHostsAsUnknown) {
    const Host host;
    int something = 0;
    void* const foreign = &something;
    VexaUtilLockStart(static_cast<AddOnList_s*>(foreign));
    VexaUtilThreadMutexLock(static_cast<ThreadMutex_s*>(foreign));
    EXPECT_EQ(traceOf(host), Lines({"VexaUtilLockStart(unknown)", "VexaUtilThreadMutexLock(unknown)"}));
}

TEST(Calls, ShowNoAddresses) {
    const Host host;
    double value = 0;
    int64_t first = 0;
    VexaUtilArgListAppendDoublePtr(nullptr, "DValue", &value);
    VexaUtilSetNextRange(nullptr, 5, &first, nullptr);
    EXPECT_EQ(traceOf(host), Lines({"VexaUtilArgListAppendDoublePtr(null, \"DValue\", address) = 0",
                                    "VexaUtilSetNextRange(null, 5, address, null) = 0"}));
}

TEST(Calls, ShowReturnCodesByName) {
    Host host;
    for (std::size_t code = 0; code != 4; ++code) {
        host.failCall("VexaUtilStyleGetLowLevelX", code + 1, static_cast<int>(code));
    }
    for (int i = 0; i != 4; ++i) VexaUtilStyleGetLowLevelX(nullptr);
    EXPECT_EQ(traceOf(host), Lines({"VexaUtilStyleGetLowLevelX(null) = GetValueReturnCode_Ok",
                                    "VexaUtilStyleGetLowLevelX(null) = GetValueReturnCode_OtherType",
                                    "VexaUtilStyleGetLowLevelX(null) = GetValueReturnCode_UnknownPath",
                                    "VexaUtilStyleGetLowLevelX(null) = GetValueReturnCode_NotAvailable"}));
}

TEST(Calls, TellWhoCalled) {
    const Host host;
    std::thread other(VexaUtilAuxDataBeginAssign);
    const std::thread::id otherId = other.get_id();
    other.join();
    VexaUtilAuxDataEndAssign();
    const std::vector<Call> calls = host.calls();
    ASSERT_EQ(calls.size(), 2U);
    EXPECT_EQ(calls[0].thread, otherId);
    EXPECT_EQ(calls[1].thread, std::this_thread::get_id());
}

TEST(Calls, AreKnownByTheNamesOfTheirFunctions) {
    const Host host;
    Lines expected;
    for (const HarmlessCall& function : kEveryFunction) {
        function.call();
        expected.emplace_back(function.function);
    }
    EXPECT_EQ(host.calledFunctions(), expected);
}

TEST(Calls, StandInTheOrderOfTheirBeginnings) {
    Host host;
    host.onDialog([](const std::string&) { VexaUtilMacroIsBatchModeActive(); });
    VexaUtilDialogErrMsg("outer");
    EXPECT_EQ(traceOf(host), Lines({"VexaUtilDialogErrMsg(\"outer\")", "VexaUtilMacroIsBatchModeActive() = 0"}));
}

TEST(Calls, CanBeForgotten) {
    Host host;
    VexaUtilAuxDataBeginAssign();
    host.clearCalls();
    EXPECT_EQ(traceOf(host), Lines());
    VexaUtilStatusCheckPercentDone(1);
    EXPECT_EQ(traceOf(host), Lines({"VexaUtilStatusCheckPercentDone(1) = 1"}));
}

TEST(Calls, CanBeForgottenWhileOthersCall) {
    constexpr int64_t kMembers = 20000;
    constexpr int64_t kCalls = 200;
    Host host;
    host.setKeepsCalls(false);
    Set_s* const set = VexaUtilSetAlloc();
    for (int64_t i = kCalls; i != kMembers; ++i) VexaUtilSetInsert(set, 2 * i, 2 * i);
    host.setKeepsCalls(true);
    std::atomic<bool> isDone{false};
    std::thread other([&] {  // calls that take a while, for all members have to move up
        for (int64_t i = kCalls; i != 0; --i) VexaUtilSetInsert(set, 2 * (i - 1), 2 * (i - 1));
        isDone = true;
    });
    std::size_t misplaced = 0;
    while (!isDone) {
        host.clearCalls();
        VexaUtilAuxDataBeginAssign();
        std::this_thread::yield();
        // The result of a call that was forgotten on the way must not go to this one, which has none.
        for (const Call& call : host.calls()) {
            if (call.function == "VexaUtilAuxDataBeginAssign" && !call.result.empty()) ++misplaced;
        }
    }
    other.join();
    EXPECT_EQ(misplaced, 0U);
}

TEST(Calls, AreKeptOnlyWhileToldSo) {
    Host host;
    host.setKeepsCalls(false);
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(1), 1);
    EXPECT_EQ(traceOf(host), Lines());
    host.setKeepsCalls(true);
    VexaUtilAuxDataEndAssign();
    EXPECT_EQ(traceOf(host), Lines({"VexaUtilAuxDataEndAssign()"}));
}

TEST(Calls, CanBeReadWhileOthersCall) {
    constexpr std::size_t kCalls = 500;
    const Host host;
    std::thread other([] {
        for (std::size_t i = 0; i != kCalls; ++i) VexaUtilStatusCheckPercentDone(static_cast<int>(i));
    });
    while (host.calls().size() != kCalls) std::this_thread::yield();
    other.join();
    EXPECT_EQ(traceOf(host).back(), "VexaUtilStatusCheckPercentDone(499) = 1");
}

// ---- Dialogs

TEST(Dialogs, AreKeptAndShownOnTheCallingThread) {
    Host host;
    Lines shown;
    std::thread::id shownOn;
    host.onDialog([&](const std::string& text) {
        shown.push_back(text);
        shownOn = std::this_thread::get_id();
    });
    VexaUtilDialogErrMsg("one");
    EXPECT_EQ(shownOn, std::this_thread::get_id());
    std::thread other([] { VexaUtilDialogErrMsg("two\n"); });
    const std::thread::id otherId = other.get_id();
    other.join();
    EXPECT_EQ(shownOn, otherId);
    EXPECT_EQ(shown, Lines({"one", "two\n"}));
    EXPECT_EQ(host.dialogs(), shown);
}

TEST(Dialogs, AreKeptWhenNobodyShowsThem) {
    Host host;
    host.onDialog([](const std::string&) { FAIL() << "no longer asked to show"; });
    host.onDialog(nullptr);
    VexaUtilDialogErrMsg("one");
    EXPECT_EQ(host.dialogs(), Lines({"one"}));
}

TEST(Dialogs, ThatAreKeptIncludeTheOneBeingShown) {
    Host host;
    Lines seen;
    host.onDialog([&](const std::string&) { seen = host.dialogs(); });
    VexaUtilDialogErrMsg("one");
    EXPECT_EQ(seen, Lines({"one"}));
}

TEST(Dialogs, MayReplaceWhatShowsThem) {
    Host host;
    host.onDialog([&](const std::string&) { host.onDialog(nullptr); });
    VexaUtilDialogErrMsg("one");
    VexaUtilDialogErrMsg("two");
    EXPECT_EQ(host.dialogs(), Lines({"one", "two"}));
}

TEST(Dialogs, LetExceptionsOfWhatShowsThemPass) {
    Host host;
    host.onDialog([](const std::string& text) { throw std::runtime_error(text); });
    EXPECT_THROW(VexaUtilDialogErrMsg("one"), std::runtime_error);
}

// ---- What is kept as it comes

TEST(Host, HandsOnEachRecordedCommandAsItComes) {
    Host host;
    host.setRecording(true);
    Lines kept;
    host.onRecorded([&](const RecordedCommand& recorded) {
        kept.push_back(recorded.addOnId + ' ' + recorded.command + ' ' + recorded.recordedAt.function);
    });
    VexaUtilMacroRecordExtCommand("STATS", "MEAN");
    EXPECT_EQ(kept, Lines({"STATS MEAN VexaUtilMacroRecordExtCommand"}));
    VexaUtilMacroRecordExtCommand("STATS", "");
    host.setRecording(false);
    VexaUtilMacroRecordExtCommand("STATS", "MEAN");
    EXPECT_EQ(kept.size(), 1U) << "a refused command is not handed on";
}

TEST(Host, HandsOnEachJournalEntryAsItComes) {
    Host host;
    Lines kept;
    host.onJournaled([&](const JournalEntry& entry) { kept.push_back(entry.command + *entry.journalData); });
    VexaUtilDataSetAddJournalCommand("STATS", "LOAD", " rows=3");
    VexaUtilDataSetAddJournalCommand("STATS", nullptr, " rows=3");
    EXPECT_EQ(kept, Lines({"LOAD rows=3"}));
}

TEST(Host, CountsItsCallsWhereItIsAskedTo) {
    CallProgress progress;
    Host host;
    VexaUtilAuxDataBeginAssign();
    host.setCallProgress(&progress);
    EXPECT_EQ(progress.calls, 1U) << "the count goes on";
    VexaUtilAuxDataEndAssign();
    EXPECT_EQ(progress.calls, 2U);
    EXPECT_STREQ(hostFunctions()[progress.lastFunction].name, "VexaUtilAuxDataEndAssign");
    EXPECT_EQ(host.lastCall().call, 2U);
    host.setCallProgress(nullptr);
    EXPECT_EQ(VexaUtilMacroIsBatchModeActive(), 0);
    EXPECT_EQ(progress.calls, 2U);
    EXPECT_EQ(host.lastCall().call, 3U);
}

}  // namespace
}  // namespace vexa::standin
