#include "AddOnFiles.h"
#include "vexastandin/Observer.h"

#include <gtest/gtest.h>

#include <map>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "CallTrace.h"
#include "EveryFunction.h"
#include "vexa/VexaUtil.h"
#include "vexastandin/Host.h"
#include "vexastandin/HostFunctions.h"

namespace vexa::standin {
namespace {

// Writes one line for each event.
class Writer : public ObserverInterface {
public:
    void entryBegan(const EntryEvent& entry) override { write("> " + textOf(entry)); }
    void entryEnded(const EntryEvent& entry) override {
        write("< " + textOf(entry) + (entry.succeeded ? " well" : " failed: " + entry.error));
    }
    void callBegan(const CallEvent& call) override {
        write("> " + std::to_string(call.number) + ' ' + call.function + '(' + call.arguments + ')');
    }
    void callEnded(const CallEvent& call) override {
        write("< " + std::to_string(call.number) + (call.threw ? " threw" : ' ' + call.result));
    }
    void findingMade(const Finding& finding) override { write("! " + finding.rule); }
    void statusChanged(const StatusLine& line) override { write("= " + std::to_string(line.percent)); }

    Lines lines() {
        const std::lock_guard<std::mutex> lock(m_guard);
        return m_lines;
    }

private:
    static std::string textOf(const EntryEvent& entry) {
        const char* const kinds[] = {"load ", "run ", "unload "};
        return kinds[static_cast<int>(entry.kind)] + entry.addOnId + ' ' + entry.command + '@' + entry.macroLine;
    }
    void write(std::string line) {
        const std::lock_guard<std::mutex> lock(m_guard);
        m_lines.push_back(std::move(line));
    }

    std::mutex m_guard;
    Lines m_lines;
};

// Stores the calls in the order of the events.
class Keeper : public Writer {
public:
    void callBegan(const CallEvent& call) override { m_began.push_back(call); }
    void callEnded(const CallEvent& call) override { m_ended.push_back(call); }

    std::vector<CallEvent> m_began;
    std::vector<CallEvent> m_ended;
};

class Thrower : public Writer {
public:
    void callBegan(const CallEvent&) override { throw std::runtime_error("full"); }
    void callEnded(const CallEvent&) override { throw 42; }
};

TEST(Observer, IsToldWhenNobodyElseLooksAtTheCalls) {
    Writer writer;
    Host host;
    host.setChecking(false);
    host.setKeepsCalls(false);
    host.setObserver(&writer);
    VexaUtilMacroIsBatchModeActive();
    EXPECT_EQ(writer.lines(), (Lines{"> 1 VexaUtilMacroIsBatchModeActive()", "< 1 0"}));
}

TEST(Observer, IsToldOfAllThatHappensInOrder) {
    Writer writer;
    Host host;
    host.setObserver(&writer);
    const std::string file = addOnFile("misbehaving");
    host.loadAddOn(file);
    host.run("MISBEHAVING", "percent-backwards", "wake.macro:7");
    host.run("MISBEHAVING", "missing-errmsg-twin");
    host.unloadAddOns();
    EXPECT_EQ(writer.lines(), Lines({"> load " + file + " @",
                                     "< load MISBEHAVING @ well",
                                     "> run MISBEHAVING percent-backwards@wake.macro:7",
                                     "> 1 VexaUtilStatusStartPercentDone(\"working\", 0, 1)",
                                     "= 0",
                                     "< 1 ",
                                     "> 2 VexaUtilStatusCheckPercentDone(50)",
                                     "= 50",
                                     "< 2 1",
                                     "> 3 VexaUtilStatusCheckPercentDone(49)",
                                     "! percent-backwards",
                                     "= 49",
                                     "< 3 1",
                                     "> 4 VexaUtilStatusFinishPercentDone()",
                                     "= 49",
                                     "< 4 ",
                                     "< run MISBEHAVING percent-backwards@wake.macro:7 well",
                                     "> run MISBEHAVING missing-errmsg-twin@",
                                     "> 5 VexaUtilStringAlloc(13, \"error message\")",
                                     "< 5 string#1",
                                     "< run MISBEHAVING missing-errmsg-twin@ failed: no such zone",
                                     "> unload MISBEHAVING @",
                                     "< unload MISBEHAVING @ well"}));
}

TEST(Observer, IsToldOfFindingsAtTheEndBeforeTheEnd) {
    Writer writer;
    Host host;
    host.loadAddOn(addOnFile("misbehaving"));
    host.setObserver(&writer);
    host.run("MISBEHAVING", "leaked-arglist");
    EXPECT_EQ(writer.lines(), Lines({"> run MISBEHAVING leaked-arglist@", "> 1 VexaUtilArgListAlloc()", "< 1 arglist#1",
                                     "! leaked-arglist", "< run MISBEHAVING leaked-arglist@ well"}));
}

TEST(Observer, IsToldOfAnAddOnThatIsNotLoaded) {
    Writer writer;
    Host host;
    host.setObserver(&writer);
    EXPECT_THROW(host.loadAddOn(addOnFile("missing")), LoadError);
    EXPECT_EQ(writer.lines().back(),
              "< load " + addOnFile("missing") + " @ failed: " + addOnFile("missing") + ": no such file");
}

TEST(Observer, IsToldOfCallsThatThrow) {
    Writer writer;
    Host host;
    host.setObserver(&writer);
    host.throwFromCall("VexaUtilAuxDataEndAssign");
    EXPECT_THROW(VexaUtilAuxDataEndAssign(), std::runtime_error);
    EXPECT_EQ(writer.lines().back(), "< 1 threw");
}

TEST(Observer, IsToldOfEveryBreachAlsoThoseThatAreCountedOnly) {
    Writer writer;
    Host host;
    host.setObserver(&writer);
    for (int i = 0; i != 12; ++i) VexaUtilArgListClear(nullptr);
    const Lines lines = writer.lines();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "! null-handle"), 12);
}

TEST(Observer, SeesEveryFunctionWithTheArgumentsOfTheLog) {
    Keeper keeper;
    Host host;
    host.setObserver(&keeper);
    for (const HarmlessCall& function : kEveryFunction) function.call();
    const std::vector<Call> calls = host.calls();
    ASSERT_EQ(keeper.m_ended.size(), calls.size());
    for (std::size_t i = 0; i != calls.size(); ++i) {
        SCOPED_TRACE(calls[i].function);
        EXPECT_EQ(keeper.m_began[i].number, i + 1);
        EXPECT_EQ(keeper.m_ended[i].number, calls[i].number);
        EXPECT_EQ(keeper.m_ended[i].function, calls[i].function);
        EXPECT_EQ(keeper.m_ended[i].arguments, calls[i].arguments);
        EXPECT_EQ(keeper.m_ended[i].result, calls[i].result);
        EXPECT_LE(keeper.m_began[i].time, keeper.m_ended[i].time);
    }
}

TEST(Observer, NeedsNoLog) {
    Writer writer;
    Host host;
    host.setKeepsCalls(false);
    host.setObserver(&writer);
    VexaUtilStatusCheckPercentDone(5);
    EXPECT_EQ(writer.lines().back(), "< 1 1");
    EXPECT_TRUE(host.calls().empty());
}

TEST(Observer, IsToldOnTheThreadThatCalls) {
    Keeper keeper;
    Host host;
    host.setObserver(&keeper);
    VexaUtilAuxDataBeginAssign();
    std::thread::id other;
    std::thread([&] {
        other = std::this_thread::get_id();
        VexaUtilAuxDataEndAssign();
    }).join();
    ASSERT_EQ(keeper.m_ended.size(), 2U);
    EXPECT_EQ(keeper.m_ended[0].threadNumber, 1U);
    EXPECT_EQ(keeper.m_ended[1].threadNumber, 2U);
    EXPECT_EQ(keeper.m_ended[1].thread, other);
}

TEST(Observer, MakesNoCallFailByItsExceptions) {
    Thrower thrower;
    Host host;
    host.setObserver(&thrower);
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(5), 1);
}

TEST(Observer, IsToldNothingOnceItIsReplaced) {
    Writer writer;
    Host host;
    host.setObserver(&writer);
    host.setObserver(nullptr);
    VexaUtilAuxDataBeginAssign();
    EXPECT_EQ(writer.lines(), Lines());
}

TEST(Observer, ServesSeveralThreadsAtOnce) {
    constexpr int kCalls = 500;
    Writer writer;
    Host host;
    host.setObserver(&writer);
    const auto callOften = [] {
        for (int i = 0; i != kCalls; ++i) {
            ThreadMutex_s* mutex = VexaUtilThreadMutexAlloc();
            VexaUtilThreadMutexLock(mutex);
            VexaUtilThreadMutexUnlock(mutex);
            VexaUtilThreadMutexDealloc(&mutex);
        }
    };
    std::thread other(callOften);
    callOften();
    other.join();
    EXPECT_EQ(writer.lines().size(), 2U * 2 * 4 * kCalls);
    EXPECT_TRUE(host.violations().empty());
}

// ---- The functions

TEST(HostFunctions, AreThoseThatCanBeCalled) {
    std::set<std::string> callable;
    std::set<std::string> known;
    for (const HarmlessCall& function : kEveryFunction) callable.insert(function.function);
    for (const HostFunctionInfo& function : hostFunctions()) known.insert(function.name);
    EXPECT_EQ(known, callable);
}

TEST(HostFunctions, EndTheScopesThatTheyBegin) {
    std::multiset<std::string> begun;
    std::multiset<std::string> ended;
    for (const HostFunctionInfo& function : hostFunctions()) {
        const bool isBoth = function.role == ScopeRole_e::BeginsOrEnds;
        if (isBoth || function.role == ScopeRole_e::Begins) begun.insert(function.scope);
        if (isBoth || function.role == ScopeRole_e::Ends) ended.insert(function.scope);
        EXPECT_EQ(function.role == ScopeRole_e::None, std::string(function.scope).empty()) << function.name;
    }
    EXPECT_EQ(begun, ended);
    EXPECT_EQ(begun.size(), 6U);
}

TEST(HostFunctions, AreKnownByWhatTheyReturn) {
    std::map<std::string, ResultKind_e> results;
    for (const HostFunctionInfo& function : hostFunctions()) results[function.name] = function.result;
    EXPECT_EQ(results["VexaUtilLockStart"], ResultKind_e::None);
    EXPECT_EQ(results["VexaUtilStringAlloc"], ResultKind_e::Handle);
    EXPECT_EQ(results["VexaUtilSetInsert"], ResultKind_e::Boolean);
    EXPECT_EQ(results["VexaUtilStyleGetLowLevelX"], ResultKind_e::ReturnCode);
}

TEST(HostFunctions, AreForAnyThreadIfTheyAreTheMutexs) {
    for (const HostFunctionInfo& function : hostFunctions()) {
        const bool isMutexs = std::string(function.name).find("ThreadMutex") != std::string::npos;
        EXPECT_EQ(function.isForAnyThread, isMutexs) << function.name;
    }
}

}  // namespace
}  // namespace vexa::standin
