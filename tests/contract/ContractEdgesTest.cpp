// Tests the limits of the rules. Each test gives a linked-in add-on the calls to make.
#include <gtest/gtest.h>

#include <algorithm>
#include <condition_variable>
#include <csignal>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "standin/CallTrace.h"
#include "vexa/AddOn.h"
#include "vexa/VexaUtil.h"
#include "vexastandin/Host.h"
#include "vexastandin/Observer.h"

namespace vexa::standin {
namespace {

constexpr VexaBoolean kTrue = 1;
constexpr VexaBoolean kFalse = 0;

using Work = std::function<VexaBoolean(char** errMsg)>;

Work entryWork;
Work commandWork;
AddOnList_s* identity = nullptr;

const VexaAddOn_s* tellingEntry(AddOnList_s* own) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "TOLD", nullptr,
                                            [](const char*, char** errMsg) { return commandWork(errMsg); }, nullptr};
    identity = own;
    if (entryWork) entryWork(nullptr);
    return &description;
}

class ContractEdges : public testing::Test {
protected:
    ~ContractEdges() override {
        entryWork = nullptr;
        commandWork = nullptr;
    }

    // What is found while a command does this, "rule: message" each.
    Lines findingsOf(Work work) {
        commandWork = std::move(work);
        if (m_host.addOns().empty()) m_host.linkAddOn(tellingEntry);
        m_host.run("TOLD", "command");
        Lines lines;
        for (const Finding& finding : m_host.violations()) lines.push_back(finding.rule + ": " + finding.message);
        return lines;
    }

    Host m_host;
};

TEST_F(ContractEdges, AStringOfOneByteIsToldInTheSingularWhenItIsOverrun) {
    EXPECT_EQ(findingsOf([](char**) {
                  char* string = VexaUtilStringAlloc(1, "text");
                  string[0] = 'a';
                  string[1] = '\0';
                  VexaUtilStringDealloc(&string);
                  return kTrue;
              }),
              Lines{"string-overrun: string#1 has 1 byte, but more bytes were written to it"});
}

TEST_F(ContractEdges, AMessageOfOneByteIsToldInTheSingularWhenItIsUnterminated) {
    EXPECT_EQ(findingsOf([](char** errMsg) {
                  *errMsg = VexaUtilStringAlloc(1, "text");
                  **errMsg = 'a';
                  return kFalse;
              }),
              Lines{"string-unterminated: the error message, string#1 of 1 byte, has no terminating zero"});
}

TEST_F(ContractEdges, EachKindOfArgumentIsToldByItsName) {
    const Lines findings = findingsOf([](char**) {
        ArgList_s* list = VexaUtilArgListAlloc();
        VexaArbParam param = 0;
        double number = 0;
        VexaUtilArgListAppendArbParamPtr(list, "P1", &param);
        VexaUtilArgListAppendDoublePtr(list, "IValue", &number);
        VexaUtilArgListAppendInt(list, "P2", 1);
        VexaUtilArgListAppendString(list, "Offset1", "a");
        VexaUtilArgListDealloc(&list);
        return kTrue;
    });
    const std::string begin = "wrong-argument-kind: \"";
    EXPECT_EQ(
        findings,
        Lines({begin + "P1\" was appended to arglist#1 as the address of an arbitrary value, but it must be a string",
               begin + "IValue\" was appended to arglist#1 as the address of a double, but it must be the address of "
                       "an arbitrary value",
               begin + "P2\" was appended to arglist#1 as an integer, but it must be a string",
               begin + "Offset1\" was appended to arglist#1 as a string, but it must be an integer"}));
}

TEST_F(ContractEdges, AnArgumentWithoutANameIsNoDuplicateOfAnother) {
    findingsOf([](char**) {
        ArgList_s* list = VexaUtilArgListAlloc();
        VexaUtilArgListAppendInt(list, nullptr, 1);
        VexaUtilArgListAppendInt(list, nullptr, 2);
        VexaUtilArgListDealloc(&list);
        return kTrue;
    });
    for (const Finding& finding : m_host.violations()) EXPECT_NE(finding.rule, "duplicate-argument");
}

TEST_F(ContractEdges, AnArgumentWithNeitherNameNorValueIsNoDuplicateOfAnother) {
    findingsOf([](char**) {
        ArgList_s* list = VexaUtilArgListAlloc();
        VexaUtilArgListAppendString(list, nullptr, nullptr);
        VexaUtilArgListAppendString(list, nullptr, nullptr);
        VexaUtilArgListDealloc(&list);
        return kTrue;
    });
    EXPECT_FALSE(m_host.violations().empty());
    for (const Finding& finding : m_host.violations()) EXPECT_NE(finding.rule, "duplicate-argument");
}

void freeTwice(Set_s* set) {
    Set_s* again = set;
    VexaUtilSetDealloc(&set);
    VexaUtilSetDealloc(&again);
}

// Locks and unlocks `mutex` at the end of 2 to the power of `depth` ways through this function.
[[gnu::noinline]] void lockOnEachWay(ThreadMutex_s* mutex, int depth) {
    if (depth == 0) {
        VexaUtilThreadMutexLock(mutex);
        VexaUtilThreadMutexUnlock(mutex);
        return;
    }
    lockOnEachWay(mutex, depth - 1);
    lockOnEachWay(mutex, depth - 1);
    asm volatile("");  // so that the second call is no jump
}

// Where the code is that led to the start of the problem.
std::vector<std::uintptr_t> offsetsOf(const Finding& finding) {
    std::vector<std::uintptr_t> offsets;
    for (const CodePlace& place : *finding.opened.value().stack) offsets.push_back(place.offset);
    return offsets;
}

TEST_F(ContractEdges, AStackIsTheSameAfterThousandsOfOthers) {
    findingsOf([](char**) {
        ThreadMutex_s* mutex = VexaUtilThreadMutexAlloc();
        const volatile int times = 2;  // the compiler must keep the loop, so that both calls are at the same place
        for (int i = 0; i != times; ++i) {
            freeTwice(VexaUtilSetAlloc());
            lockOnEachWay(mutex, i == 0 ? 13 : 0);
        }
        VexaUtilThreadMutexDealloc(&mutex);
        return kTrue;
    });
    const std::vector<Finding> findings = m_host.violations();
    ASSERT_EQ(findings.size(), 2U);
    EXPECT_GT(offsetsOf(findings[0]).size(), 1U);
    EXPECT_EQ(offsetsOf(findings[0]), offsetsOf(findings[1]));
}

// The add-on's function that the signal interrupts has called nothing.
TEST_F(ContractEdges, ACallInASignalHandlerHasTheStackOfWhatTheSignalInterrupted) {
    static Set_s* lost = nullptr;
    findingsOf([](char**) {
        const auto before = std::signal(SIGUSR1, [](int) { lost = VexaUtilSetAlloc(); });
        std::raise(SIGUSR1);
        std::signal(SIGUSR1, before);
        freeTwice(lost);
        return kTrue;
    });
    const std::vector<Finding> findings = m_host.violations();
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].rule, "double-free");
    const CodeStack& stack = *findings[0].opened.value().stack;
    const auto isInLibrary = [&](const CodePlace& place) { return place.object.find("libc.so") != std::string::npos; };
    const auto interrupted = std::find_if(stack.begin(), stack.end(), isInLibrary);
    ASSERT_NE(interrupted, stack.end());
    EXPECT_NE(std::find_if_not(interrupted, stack.end(), isInLibrary), stack.end());
}

TEST_F(ContractEdges, AMutexThatAnotherThreadHoldsIsNotLeftLockedByTheCommand) {
    ThreadMutex_s* mutex = VexaUtilThreadMutexAlloc();
    std::mutex guard;
    std::condition_variable changed;
    bool isHeld = false;
    bool isOver = false;
    std::thread holder;
    const Lines findings = findingsOf([&](char**) {
        std::unique_lock<std::mutex> lock(guard);
        holder = std::thread([&] {
            VexaUtilThreadMutexLock(mutex);
            std::unique_lock<std::mutex> held(guard);
            isHeld = true;
            changed.notify_all();
            changed.wait(held, [&] { return isOver; });
            VexaUtilThreadMutexUnlock(mutex);
        });
        changed.wait(lock, [&] { return isHeld; });
        return kTrue;
    });
    {
        const std::lock_guard<std::mutex> lock(guard);
        isOver = true;
    }
    changed.notify_all();
    holder.join();
    VexaUtilThreadMutexDealloc(&mutex);
    EXPECT_EQ(findings, Lines());
    EXPECT_TRUE(m_host.violations().empty());
}

TEST_F(ContractEdges, WhatTheProgramHoldsIsNotLeftLockedByTheCommand) {
    m_host.linkAddOn(tellingEntry);
    ThreadMutex_s* mutex = VexaUtilThreadMutexAlloc();
    VexaUtilThreadMutexLock(mutex);
    VexaUtilLockStart(identity);
    EXPECT_EQ(findingsOf([](char**) { return kTrue; }), Lines());
    VexaUtilLockFinish(identity);
    VexaUtilThreadMutexUnlock(mutex);
    VexaUtilThreadMutexDealloc(&mutex);
    EXPECT_TRUE(m_host.violations().empty()) << "both were still held";
}

TEST_F(ContractEdges, AMistakeWhileAnAddOnIsLoadedIsNamedAfterItOnceItsNameIsKnown) {
    Finding before;
    before.rule = "null-handle";
    m_host.report(before);
    entryWork = [](char**) {
        VexaUtilArgListClear(nullptr);
        return kTrue;
    };
    findingsOf([](char**) { return kTrue; });
    const std::vector<Finding> findings = m_host.violations();
    ASSERT_EQ(findings.size(), 2U);
    EXPECT_EQ(findings[0].addOnId, "") << "of nobody's, and before";
    EXPECT_EQ(findings[1].addOnId, "TOLD");
}

TEST_F(ContractEdges, ARuleMayBeSuppressedTwice) {
    m_host.suppress("null-handle");
    m_host.suppress("null-handle");
    EXPECT_EQ(m_host.unusedSuppressions(), Lines{"null-handle"});
    m_host.suppress("wrong-thread");
    EXPECT_EQ(m_host.unusedSuppressions(), (Lines{"null-handle", "wrong-thread"}));
}

// Forgets the calls while each is made.
class Forgetter : public ObserverInterface {
public:
    explicit Forgetter(Host& host) : m_host(host) {}
    void entryBegan(const EntryEvent&) override {}
    void entryEnded(const EntryEvent&) override {}
    void callBegan(const CallEvent&) override { m_host.clearCalls(); }
    void callEnded(const CallEvent&) override {}
    void findingMade(const Finding&) override {}
    void statusChanged(const StatusLine&) override {}

private:
    Host& m_host;
};

TEST_F(ContractEdges, ACallThatIsForgottenBeforeItsEndStaysForgotten) {
    Forgetter forgetter(m_host);
    m_host.setObserver(&forgetter);
    VexaUtilMacroIsBatchModeActive();
    EXPECT_EQ(traceOf(m_host), Lines());
    m_host.setObserver(nullptr);
    VexaUtilMacroIsBatchModeActive();
    EXPECT_EQ(traceOf(m_host), Lines{"VexaUtilMacroIsBatchModeActive() = 0"});
}

}  // namespace
}  // namespace vexa::standin
