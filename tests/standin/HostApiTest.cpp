#include "vexa/VexaUtil.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <limits>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "CallTrace.h"
#include "EveryFunction.h"
#include "vexa/toolbox/Set.h"
#include "vexastandin/Host.h"

namespace vexa::standin {
namespace {

constexpr int64_t kMaximum = std::numeric_limits<int64_t>::max();

int foreignObject = 0;

// A handle that is none of the host's. Reading through it would be seen by the address sanitizer.
template <class Handle>
Handle* foreignHandle() {
    return static_cast<Handle*>(static_cast<void*>(&foreignObject));
}

// Waits until \p function was called \p times, whether or not these calls have returned.
void waitForCalls(const Host& host, const std::string& function, std::ptrdiff_t times) {
    for (;;) {
        const Lines called = host.calledFunctions();
        if (std::count(called.begin(), called.end(), function) >= times) return;
        std::this_thread::yield();
    }
}

// ---- The functions as a whole

// The functions that the header declares: each a line, or more, that begins with VEXA_HOST_API.
std::set<std::string> declaredFunctions() {
    std::set<std::string> functions;
    std::ifstream header(VEXA_HOST_API_HEADER);
    for (std::string line; std::getline(header, line);) {
        if (line.rfind("VEXA_HOST_API ", 0) != 0) continue;
        const std::size_t begin = line.find("VexaUtil");
        functions.insert(line.substr(begin, line.find('(') - begin));
    }
    return functions;
}

TEST(HostApi, IsCoveredByTheseTests) {
    std::set<std::string> covered;
    for (const HarmlessCall& function : kEveryFunction) covered.insert(function.function);
    EXPECT_EQ(covered, declaredFunctions());
}

TEST(HostApi, DoesNothingWithoutAHost) {
    for (const HarmlessCall& function : kEveryFunction) {
        SCOPED_TRACE(function.function);
        EXPECT_NO_THROW(function.call());
    }
    const Host host;
    EXPECT_EQ(traceOf(host), Lines());
}

TEST(HostApi, AnswersNoWithoutAHost) {
    EXPECT_EQ(VexaUtilMacroIsBatchModeActive(), 0);
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(50), 0);
    EXPECT_EQ(VexaUtilMacroIsRecordingActive(), 0);
    EXPECT_EQ(VexaUtilStateIsProcessingJournal(), 0);
    EXPECT_EQ(VexaUtilStateIsProcessingLayout(), 0);
    EXPECT_EQ(VexaUtilMacroRecordExtCommand("PROBE", "GO"), 0);
    EXPECT_EQ(VexaUtilDataSetAddJournalCommand("PROBE", "GO", nullptr), 0);
    EXPECT_EQ(VexaUtilStyleGetLowLevelX(nullptr), GetValueReturnCode_UnknownPath);
}

TEST(HostApi, AllocatesNothingWithoutAHost) {
    EXPECT_EQ(VexaUtilThreadMutexAlloc(), nullptr);
    EXPECT_EQ(VexaUtilStringAlloc(5, "text"), nullptr);
    EXPECT_EQ(VexaUtilArgListAlloc(), nullptr);
    EXPECT_EQ(VexaUtilSetAlloc(), nullptr);
}

TEST(HostApi, LeavesHandlesOfNoOneAloneWithoutAHost) {
    double number = 0;
    VexaArbParam param = 0;
    auto* argList = foreignHandle<ArgList_s>();
    EXPECT_EQ(VexaUtilArgListAppendString(argList, "P1", "X"), 0);
    EXPECT_EQ(VexaUtilArgListAppendInt(argList, "Offset1", 1), 0);
    EXPECT_EQ(VexaUtilArgListAppendDoublePtr(argList, "DValue", &number), 0);
    EXPECT_EQ(VexaUtilArgListAppendArbParamPtr(argList, "IValue", &param), 0);
    VexaUtilArgListDealloc(&argList);
    EXPECT_EQ(argList, foreignHandle<ArgList_s>());

    auto* set = foreignHandle<Set_s>();
    int64_t first = -1;
    int64_t last = -2;
    EXPECT_EQ(VexaUtilSetInsert(set, 1, 2), 0);
    EXPECT_EQ(VexaUtilSetNextRange(set, 0, &first, &last), 0);
    EXPECT_EQ(first, -1);
    EXPECT_EQ(last, -2);
}

TEST(HostApi, TakesNullForEveryHandle) {
    const Host host;
    for (const HarmlessCall& function : kEveryFunction) {
        SCOPED_TRACE(function.function);
        EXPECT_NO_THROW(function.call());
    }
    ThreadMutex_s* mutex = nullptr;
    ArgList_s* argList = nullptr;
    Set_s* set = nullptr;
    char* string = nullptr;
    VexaUtilThreadMutexDealloc(&mutex);
    VexaUtilArgListDealloc(&argList);
    VexaUtilSetDealloc(&set);
    VexaUtilStringDealloc(&string);
    EXPECT_EQ(host.calls().size(), std::size(kEveryFunction) + 4);
}

TEST(HostApi, RefusesForeignHandles) {
    const Host host;
    double number = 0;
    auto* mutex = foreignHandle<ThreadMutex_s>();
    auto* argList = foreignHandle<ArgList_s>();
    auto* set = foreignHandle<Set_s>();
    auto* string = foreignHandle<char>();
    VexaUtilThreadMutexLock(mutex);
    VexaUtilThreadMutexUnlock(mutex);
    VexaUtilArgListClear(argList);
    EXPECT_EQ(VexaUtilArgListAppendString(argList, "P1", "X"), 0);
    EXPECT_EQ(VexaUtilArgListAppendInt(argList, "Offset1", 1), 0);
    EXPECT_EQ(VexaUtilArgListAppendDoublePtr(argList, "DValue", &number), 0);
    EXPECT_EQ(VexaUtilStyleGetLowLevelX(argList), GetValueReturnCode_UnknownPath);
    EXPECT_EQ(VexaUtilSetInsert(set, 1, 2), 0);
    VexaUtilThreadMutexDealloc(&mutex);
    VexaUtilArgListDealloc(&argList);
    VexaUtilSetDealloc(&set);
    VexaUtilStringDealloc(&string);
    EXPECT_EQ(mutex, foreignHandle<ThreadMutex_s>());
    EXPECT_EQ(argList, foreignHandle<ArgList_s>());
    EXPECT_EQ(set, foreignHandle<Set_s>());
    EXPECT_EQ(string, foreignHandle<char>());
}

TEST(HostApi, RefusesFreedHandles) {
    const Host host;
    ThreadMutex_s* mutex = VexaUtilThreadMutexAlloc();
    ArgList_s* argList = VexaUtilArgListAlloc();
    Set_s* set = VexaUtilSetAlloc();
    char* string = VexaUtilStringAlloc(3, "text");
    ThreadMutex_s* freedMutex = mutex;
    ArgList_s* freedArgList = argList;
    Set_s* freedSet = set;
    char* freedString = string;
    VexaUtilThreadMutexDealloc(&mutex);
    VexaUtilArgListDealloc(&argList);
    VexaUtilSetDealloc(&set);
    VexaUtilStringDealloc(&string);
    VexaUtilThreadMutexLock(freedMutex);
    VexaUtilThreadMutexDealloc(&freedMutex);
    EXPECT_EQ(VexaUtilArgListAppendInt(freedArgList, "Offset1", 1), 0);
    VexaUtilArgListDealloc(&freedArgList);
    EXPECT_EQ(VexaUtilSetInsert(freedSet, 1, 2), 0);
    VexaUtilSetDealloc(&freedSet);
    VexaUtilStringDealloc(&freedString);
    EXPECT_NE(freedMutex, nullptr);
    EXPECT_NE(freedArgList, nullptr);
    EXPECT_NE(freedSet, nullptr);
    EXPECT_NE(freedString, nullptr);
}

TEST(HostApi, ClearsTheHandlesItFrees) {
    const Host host;
    ThreadMutex_s* mutex = VexaUtilThreadMutexAlloc();
    ArgList_s* argList = VexaUtilArgListAlloc();
    Set_s* set = VexaUtilSetAlloc();
    char* string = VexaUtilStringAlloc(1, "text");
    VexaUtilThreadMutexDealloc(&mutex);
    VexaUtilArgListDealloc(&argList);
    VexaUtilSetDealloc(&set);
    VexaUtilStringDealloc(&string);
    EXPECT_EQ(mutex, nullptr);
    EXPECT_EQ(argList, nullptr);
    EXPECT_EQ(set, nullptr);
    EXPECT_EQ(string, nullptr);
}

// ---- The lock

TEST(HostLock, KeepsOtherThreadsOutUntilItIsGivenBack) {
    const Host host;
    std::atomic<bool> isIn{false};
    VexaUtilLockStart(nullptr);
    std::thread other([&] {
        VexaUtilLockStart(nullptr);
        isIn = true;
        VexaUtilLockFinish(nullptr);
    });
    waitForCalls(host, "VexaUtilLockStart", 2);
    EXPECT_FALSE(isIn);
    VexaUtilLockFinish(nullptr);
    other.join();
    EXPECT_TRUE(isIn);
}

TEST(HostLock, IsTakenAndGivenBackByTurns) {
    constexpr int kTurns = 1000;
    const Host host;
    int turns = 0;  // guarded by the lock alone
    const auto takeTurns = [&turns] {
        for (int i = 0; i != kTurns; ++i) {
            VexaUtilLockStart(nullptr);
            ++turns;
            VexaUtilLockFinish(nullptr);
        }
    };
    std::thread other(takeTurns);
    takeTurns();
    other.join();
    EXPECT_EQ(turns, 2 * kTurns);
}

TEST(HostLock, NestsWithinAThread) {
    const Host host;
    std::atomic<bool> isIn{false};
    VexaUtilLockStart(nullptr);
    VexaUtilLockStart(nullptr);
    VexaUtilLockFinish(nullptr);
    std::thread other([&] {
        VexaUtilLockStart(nullptr);
        isIn = true;
    });
    waitForCalls(host, "VexaUtilLockStart", 3);
    EXPECT_FALSE(isIn);
    VexaUtilLockFinish(nullptr);
    other.join();
    EXPECT_TRUE(isIn);
}

TEST(HostLock, IsNotGivenBackByAThreadThatDoesNotHoldIt) {
    const Host host;
    std::atomic<bool> isIn{false};
    VexaUtilLockStart(nullptr);
    std::thread([] { VexaUtilLockFinish(nullptr); }).join();
    std::thread other([&] {
        VexaUtilLockStart(nullptr);
        isIn = true;
    });
    waitForCalls(host, "VexaUtilLockStart", 2);
    EXPECT_FALSE(isIn);
    VexaUtilLockFinish(nullptr);
    other.join();
}

TEST(HostLock, IsNotGivenBackUnderAnIdentityItWasNotTakenUnder) {
    const Host host;
    std::atomic<bool> isIn{false};
    auto* const identity = foreignHandle<AddOnList_s>();
    VexaUtilLockStart(identity);
    VexaUtilLockFinish(nullptr);
    std::thread other([&] {
        VexaUtilLockStart(nullptr);
        isIn = true;
    });
    waitForCalls(host, "VexaUtilLockStart", 2);
    EXPECT_FALSE(isIn);
    VexaUtilLockFinish(identity);
    other.join();
}

TEST(HostLock, MayBeGivenBackInAnyOrderOfIdentities) {
    const Host host;
    auto* const identity = foreignHandle<AddOnList_s>();
    VexaUtilLockStart(identity);
    VexaUtilLockStart(nullptr);
    VexaUtilLockFinish(identity);
    VexaUtilLockFinish(nullptr);
    std::thread other([] { VexaUtilLockStart(nullptr); });
    other.join();  // it would wait forever
    EXPECT_EQ(host.calledFunctions().back(), "VexaUtilLockStart");
}

// ---- Mutexes

TEST(ThreadMutex, KeepsOtherThreadsOutUntilItIsUnlocked) {
    const Host host;
    ThreadMutex_s* mutex = VexaUtilThreadMutexAlloc();
    std::atomic<bool> isIn{false};
    VexaUtilThreadMutexLock(mutex);
    std::thread other([&] {
        VexaUtilThreadMutexLock(mutex);
        isIn = true;
        VexaUtilThreadMutexUnlock(mutex);
    });
    waitForCalls(host, "VexaUtilThreadMutexLock", 2);
    EXPECT_FALSE(isIn);
    VexaUtilThreadMutexUnlock(mutex);
    other.join();
    EXPECT_TRUE(isIn);
}

TEST(ThreadMutex, IsLockedByTurns) {
    constexpr int kTurns = 1000;
    const Host host;
    ThreadMutex_s* mutex = VexaUtilThreadMutexAlloc();
    int turns = 0;  // guarded by the mutex alone
    const auto takeTurns = [&] {
        for (int i = 0; i != kTurns; ++i) {
            VexaUtilThreadMutexLock(mutex);
            ++turns;
            VexaUtilThreadMutexUnlock(mutex);
        }
    };
    std::thread other(takeTurns);
    takeTurns();
    other.join();
    EXPECT_EQ(turns, 2 * kTurns);
}

TEST(ThreadMutex, LockedTwiceByItsOwnerIsLockedOnce) {
    const Host host;
    ThreadMutex_s* mutex = VexaUtilThreadMutexAlloc();
    VexaUtilThreadMutexLock(mutex);
    VexaUtilThreadMutexLock(mutex);
    VexaUtilThreadMutexUnlock(mutex);
    std::thread([&] { VexaUtilThreadMutexLock(mutex); }).join();  // it would wait forever
    EXPECT_EQ(host.calls().size(), 5U);
}

TEST(ThreadMutex, IsNotUnlockedByAnotherThread) {
    const Host host;
    ThreadMutex_s* mutex = VexaUtilThreadMutexAlloc();
    VexaUtilThreadMutexLock(mutex);
    std::thread([&] { VexaUtilThreadMutexUnlock(mutex); }).join();
    VexaUtilThreadMutexDealloc(&mutex);
    EXPECT_NE(mutex, nullptr);  // refused, so still locked
    VexaUtilThreadMutexUnlock(mutex);
    VexaUtilThreadMutexDealloc(&mutex);
    EXPECT_EQ(mutex, nullptr);
}

TEST(ThreadMutex, UnlockedWhenItIsNotLockedStaysSo) {
    const Host host;
    ThreadMutex_s* mutex = VexaUtilThreadMutexAlloc();
    VexaUtilThreadMutexUnlock(mutex);
    VexaUtilThreadMutexLock(mutex);
    VexaUtilThreadMutexDealloc(&mutex);
    EXPECT_NE(mutex, nullptr);  // refused, so the locking held
}

TEST(ThreadMutex, IsNotFreedWhileItIsLocked) {
    const Host host;
    ThreadMutex_s* mutex = VexaUtilThreadMutexAlloc();
    VexaUtilThreadMutexLock(mutex);
    ThreadMutex_s* const handle = mutex;
    VexaUtilThreadMutexDealloc(&mutex);
    EXPECT_EQ(mutex, handle);
    VexaUtilThreadMutexUnlock(mutex);
    VexaUtilThreadMutexDealloc(&mutex);
    EXPECT_EQ(mutex, nullptr);
}

TEST(ThreadMutex, FreedUnderThoseWhoWaitLetsThemGo) {
    for (int round = 0; round != 200; ++round) {
        Host host;
        ThreadMutex_s* mutex = VexaUtilThreadMutexAlloc();
        ThreadMutex_s* const handle = mutex;
        VexaUtilThreadMutexLock(mutex);
        std::vector<std::thread> waiting;
        for (int i = 0; i != 3; ++i) {
            waiting.emplace_back([handle] {
                VexaUtilThreadMutexLock(handle);
                VexaUtilThreadMutexUnlock(handle);
            });
        }
        waitForCalls(host, "VexaUtilThreadMutexLock", 4);
        host.setKeepsCalls(false);  // to lose no time between the two
        VexaUtilThreadMutexUnlock(mutex);
        VexaUtilThreadMutexDealloc(&mutex);                 // refused when one of them came in first
        for (std::thread& thread : waiting) thread.join();  // or they would wait forever
        VexaUtilThreadMutexDealloc(&mutex);
        EXPECT_EQ(mutex, nullptr);
    }
}

// ---- Recording and journaling

TEST(Recording, KeepsWhatItIsTold) {
    Host host;
    host.setRecording(true);
    EXPECT_EQ(VexaUtilMacroRecordExtCommand("PROBE", "LOAD FILE = 'a.txt'"), 1);
    EXPECT_EQ(VexaUtilMacroRecordExtCommand("OTHER", "STOP "), 1);
    const std::vector<RecordedCommand> recorded = host.recordedCommands();
    ASSERT_EQ(recorded.size(), 2U);
    EXPECT_EQ(recorded[0].addOnId, "PROBE");
    EXPECT_EQ(recorded[0].command, "LOAD FILE = 'a.txt'");
    EXPECT_EQ(recorded[1].addOnId, "OTHER");
    EXPECT_EQ(recorded[1].command, "STOP ");
}

TEST(Recording, TellsWhichCallItWas) {
    Host host;
    host.setRecording(true);
    VexaUtilMacroIsBatchModeActive();
    VexaUtilMacroRecordExtCommand("PROBE", "GO");
    const Place recordedAt = host.recordedCommands().at(0).recordedAt;
    EXPECT_EQ(recordedAt.call, 2U);
    EXPECT_EQ(recordedAt.function, "VexaUtilMacroRecordExtCommand");
}

TEST(Recording, IsForgottenWhenItIsToBe) {
    Host host;
    host.setRecording(true);
    VexaUtilMacroRecordExtCommand("PROBE", "GO");
    host.clearRecordedCommands();
    VexaUtilMacroRecordExtCommand("PROBE", "ON");
    ASSERT_EQ(host.recordedCommands().size(), 1U);
    EXPECT_EQ(host.recordedCommands()[0].command, "ON");
}

TEST(Recording, KeepsNothingWhileItIsOff) {
    Host host;
    EXPECT_EQ(VexaUtilMacroRecordExtCommand("PROBE", "GO"), 0);
    EXPECT_TRUE(host.recordedCommands().empty());
}

TEST(Journal, KeepsWhatItIsTold) {
    const Host host;
    EXPECT_EQ(VexaUtilDataSetAddJournalCommand("PROBE", "GO", nullptr), 1);
    EXPECT_EQ(VexaUtilDataSetAddJournalCommand("OTHER", "STOP", ""), 1);
    const std::vector<JournalEntry> entries = host.journalEntries();
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[0].addOnId, "PROBE");
    EXPECT_EQ(entries[0].command, "GO");
    EXPECT_EQ(entries[0].journalData, std::nullopt);
    EXPECT_EQ(entries[1].addOnId, "OTHER");
    EXPECT_EQ(entries[1].command, "STOP");
    EXPECT_EQ(entries[1].journalData, "");
}

// ---- Strings

TEST(HostStrings, HoldAsManyBytesAsAskedFor) {
    const Host host;
    for (const int size : {1, 2, 15, 16, 17, 4096}) {
        SCOPED_TRACE(size);
        char* string = VexaUtilStringAlloc(size, "text");
        ASSERT_NE(string, nullptr);
        std::memset(string, 'x', static_cast<std::size_t>(size));
        VexaUtilStringDealloc(&string);
    }
}

TEST(HostStrings, AreNotMadeWithoutRoomForTheirZero) {
    const Host host;
    EXPECT_EQ(VexaUtilStringAlloc(0, "text"), nullptr);
    EXPECT_EQ(VexaUtilStringAlloc(-1, "text"), nullptr);
    EXPECT_EQ(VexaUtilStringAlloc(std::numeric_limits<int>::min(), "text"), nullptr);
}

TEST(HostStrings, NeedNoPurpose) {
    const Host host;
    EXPECT_NE(VexaUtilStringAlloc(1, nullptr), nullptr);
}

// ---- Argument lists

TEST(ArgList, TakesNamedValues) {
    const Host host;
    double number = 0;
    VexaArbParam param = 0;
    ArgList_s* const argList = VexaUtilArgListAlloc();
    EXPECT_EQ(VexaUtilArgListAppendString(argList, "P1", ""), 1);
    EXPECT_EQ(VexaUtilArgListAppendInt(argList, "Offset1", 0), 1);
    EXPECT_EQ(VexaUtilArgListAppendDoublePtr(argList, "DValue", &number), 1);
    EXPECT_EQ(VexaUtilArgListAppendArbParamPtr(argList, "IValue", &param), 1);
}

TEST(ArgList, RefusesNullNamesAndValues) {
    const Host host;
    double number = 0;
    VexaArbParam param = 0;
    ArgList_s* const argList = VexaUtilArgListAlloc();
    EXPECT_EQ(VexaUtilArgListAppendString(argList, nullptr, "X"), 0);
    EXPECT_EQ(VexaUtilArgListAppendString(argList, "P1", nullptr), 0);
    EXPECT_EQ(VexaUtilArgListAppendInt(argList, nullptr, 1), 0);
    EXPECT_EQ(VexaUtilArgListAppendDoublePtr(argList, nullptr, &number), 0);
    EXPECT_EQ(VexaUtilArgListAppendDoublePtr(argList, "DValue", nullptr), 0);
    EXPECT_EQ(VexaUtilArgListAppendArbParamPtr(argList, nullptr, &param), 0);
    EXPECT_EQ(VexaUtilArgListAppendArbParamPtr(argList, "IValue", nullptr), 0);
}

TEST(ArgList, TakesValuesAgainOnceCleared) {
    const Host host;
    ArgList_s* const argList = VexaUtilArgListAlloc();
    VexaUtilArgListAppendInt(argList, "Offset1", 1);
    VexaUtilArgListClear(argList);
    EXPECT_EQ(VexaUtilArgListAppendInt(argList, "Offset1", 1), 1);
}

TEST(StyleQuery, KnowsNoPath) {
    const Host host;
    double number = 0.5;
    ArgList_s* const argList = VexaUtilArgListAlloc();
    EXPECT_EQ(VexaUtilStyleGetLowLevelX(argList), GetValueReturnCode_UnknownPath);
    VexaUtilArgListAppendString(argList, "P1", "FIELDMAP");
    VexaUtilArgListAppendDoublePtr(argList, "DValue", &number);
    EXPECT_EQ(VexaUtilStyleGetLowLevelX(argList), GetValueReturnCode_UnknownPath);
    EXPECT_EQ(number, 0.5);
}

// ---- Sets

std::string nextRange(const Set_s* set, int64_t from) {
    int64_t first = -1;
    int64_t last = -1;
    if (VexaUtilSetNextRange(set, from, &first, &last) == 0) {
        return first == -1 && last == -1 ? "none" : "none, yet it stored something";
    }
    return std::to_string(first) + '-' + std::to_string(last);
}

TEST(HostSet, IsEmptyAtFirst) {
    const Host host;
    EXPECT_EQ(nextRange(VexaUtilSetAlloc(), 0), "none");
}

TEST(HostSet, FindsTheLowestRunThatEndsThereOrAbove) {
    const Host host;
    Set_s* const set = VexaUtilSetAlloc();
    EXPECT_EQ(VexaUtilSetInsert(set, 10, 19), 1);
    EXPECT_EQ(VexaUtilSetInsert(set, 30, 30), 1);
    EXPECT_EQ(VexaUtilSetInsert(set, 20, 24), 1);  // joins the first
    struct Case {
        const char* why;
        int64_t from;
        const char* range;
    };
    const Case cases[] = {
        {"below zero", -5, "10-24"},  {"below all", 0, "10-24"},  {"on a first", 10, "10-24"},
        {"inside", 15, "10-24"},      {"on a last", 24, "10-24"}, {"past a last", 25, "30-30"},
        {"on a single", 30, "30-30"}, {"past all", 31, "none"},   {"at the end", kMaximum, "none"},
    };
    for (const Case& c : cases) EXPECT_EQ(nextRange(set, c.from), c.range) << c.why;
}

TEST(HostSet, HoldsTheLargestMember) {
    const Host host;
    Set_s* const set = VexaUtilSetAlloc();
    EXPECT_EQ(VexaUtilSetInsert(set, 0, kMaximum), 1);
    EXPECT_EQ(nextRange(set, kMaximum), "0-" + std::to_string(kMaximum));
}

TEST(HostSet, RefusesWhatIsNoRange) {
    const Host host;
    Set_s* const set = VexaUtilSetAlloc();
    EXPECT_EQ(VexaUtilSetInsert(set, -1, 5), 0);
    EXPECT_EQ(VexaUtilSetInsert(set, 5, 4), 0);
    EXPECT_EQ(nextRange(set, 0), "none");
}

TEST(HostSet, StoresNothingWhenAResultHasNoPlace) {
    const Host host;
    Set_s* const set = VexaUtilSetAlloc();
    VexaUtilSetInsert(set, 1, 2);
    int64_t place = -1;
    EXPECT_EQ(VexaUtilSetNextRange(set, 0, &place, nullptr), 0);
    EXPECT_EQ(VexaUtilSetNextRange(set, 0, nullptr, &place), 0);
    EXPECT_EQ(place, -1);
}

RC_GTEST_PROP(HostSet, IsCopiedMemberByMember, ()) {
    const Host host;
    Set_s* const handle = VexaUtilSetAlloc();
    toolbox::Set expected;
    const auto firsts = *rc::gen::container<std::vector<int64_t>>(rc::gen::inRange<int64_t>(0, 200));
    for (const int64_t first : firsts) {
        const int64_t last = first + *rc::gen::inRange<int64_t>(0, 10);
        RC_ASSERT(VexaUtilSetInsert(handle, first, last) == 1);
        expected.insert(first, last);
    }
    RC_ASSERT(toolbox::Set(handle) == expected);
}

}  // namespace
}  // namespace vexa::standin
