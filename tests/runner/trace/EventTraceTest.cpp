#include "trace/EventTrace.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <set>
#include <thread>

#include "TracedHost.h"
#include "standin/EveryFunction.h"
#include "support/TraceEvents.h"
#include "vexa/VexaUtil.h"

namespace vexa::runner {
namespace {

using standin::Call;
using standin::HarmlessCall;
using tests::cutOffTraceEvents;
using tests::eventsWhere;
using tests::Json;
using tests::nestingProblems;
using tests::traceEvents;

const RunFacts kFacts = {"tool 1.2", "m.macro", {{"--record", {"r.macro"}}, {"--batch", {}}},
                         true,       false,     {"leaked-set"}};

class EventTraceTest : public ::testing::Test {
protected:
    Json finished() { return traceEvents(m_traced.finished()); }
    standin::Host& host() { return m_traced.host(); }
    void load() { host().loadAddOn(MISBEHAVING_ADDON); }

    TracedHost<EventTrace> m_traced{kFacts};
};

// The names of what begins and ends on a track, in order: `name` and `/name`.
std::vector<std::string> edgesOf(const Json& events, const std::string& trackName) {
    std::vector<std::string> edges;
    long track = 0;
    for (const Json& event : events) {
        const std::string phase = event.at("ph");
        if (phase == "M" && event.at("args").at("name") == trackName) track = event.at("tid");
        if ((phase != "B" && phase != "E") || event.at("tid") != track) continue;
        edges.push_back((phase == "B" ? "" : "/") + std::string(event.at("name")));
    }
    return edges;
}

using Edges = std::vector<std::string>;

TEST_F(EventTraceTest, IsAnArrayWithAnEventALine) {
    VexaUtilDialogErrMsg("a\nb");
    const std::string text = m_traced.finished();
    EXPECT_EQ(traceEvents(text).size() + 2, static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')));
    EXPECT_EQ(text.substr(0, 3), "[\n{");
    EXPECT_EQ(text.substr(text.size() - 4), "}\n]\n");
}

TEST_F(EventTraceTest, HasTheFactsOfTheRunFirstAndItsOutcomeLast) {
    const Json events = finished();
    EXPECT_EQ(
        events.front().at("args"),
        Json::parse(
            R"({"tool":"tool 1.2","macroFile":"m.macro","options":{"--record":["r.macro"],"--batch":[]},"isStrict":true,"hasTimeLimit":false,"suppressed":["leaked-set"]})"));
    EXPECT_EQ(events.back().at("name"), "outcome");
    EXPECT_EQ(events.back().at("args"), Json::parse(R"({"exitStatus":0,"outcome":"all went well"})"));
}

TEST_F(EventTraceTest, HasEachCallOnceWithItsArgumentsAndResult) {
    for (const HarmlessCall& one : standin::kEveryFunction) one.call();
    const std::vector<Call> calls = host().calls();
    const std::vector<Json> events = eventsWhere(finished(), "cat", "call");
    ASSERT_EQ(events.size(), 2 * calls.size());
    for (std::size_t i = 0; i != calls.size(); ++i) {
        const Json& begin = events[2 * i];
        const Json& end = events[2 * i + 1];
        EXPECT_EQ(begin.at("ph"), "B");
        EXPECT_EQ(begin.at("name"), calls[i].function);
        EXPECT_EQ(begin.at("args").at("number"), calls[i].number);
        EXPECT_EQ(begin.at("args").at("arguments"), calls[i].arguments);
        EXPECT_EQ(end.at("ph"), "E");
        EXPECT_EQ(end.at("args").at("result"), calls[i].result);
    }
}

TEST_F(EventTraceTest, HasTheNumbersOfProcessAndThread) {
    VexaUtilMacroIsBatchModeActive();
    long other = 0;
    std::thread([&] {
        other = gettid();
        VexaUtilThreadMutexLock(nullptr);
    }).join();
    const std::vector<Json> calls = eventsWhere(finished(), "cat", "call");
    ASSERT_EQ(calls.size(), 4U);
    EXPECT_EQ(calls[0].at("pid"), getpid());
    EXPECT_EQ(calls[0].at("tid"), gettid());
    EXPECT_EQ(calls[2].at("tid"), other);
}

TEST_F(EventTraceTest, HasNothingFromAForkedProcess) {
    VexaUtilMacroIsBatchModeActive();
    const pid_t child = fork();
    if (child == 0) {
        VexaUtilMacroIsRecordingActive();
        m_traced.trace().finish(1, "in the forked process");
        _exit(0);
    }
    waitpid(child, nullptr, 0);
    VexaUtilMacroIsBatchModeActive();
    const Json events = finished();
    EXPECT_EQ(eventsWhere(events, "cat", "call").size(), 4U);
    EXPECT_EQ(eventsWhere(events, "name", "outcome").size(), 1U);
}

TEST_F(EventTraceTest, IsTheSameInAMappedFile) {
    TracedHost<EventTrace> mapped(kFacts, Append_e::ByMapping);
    for (int i = 0; i != 4000; ++i) VexaUtilMacroIsBatchModeActive();
    const Json events = traceEvents(mapped.finished());
    EXPECT_EQ(eventsWhere(events, "cat", "call").size(), 8000U);
    EXPECT_EQ(events.back().at("name"), "outcome");
}

TEST_F(EventTraceTest, HasCommandsAsSpansWithTheirOutcome) {
    load();
    host().run("MISBEHAVING", "missing-errmsg-twin", "m.macro:7");
    const std::vector<Json> events = eventsWhere(finished(), "cat", "command");
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0].at("name"), "MISBEHAVING missing-errmsg-twin");
    EXPECT_EQ(events[0].at("args").at("macroLine"), "m.macro:7");
    EXPECT_EQ(events[1].at("args").at("succeeded"), false);
    EXPECT_NE(events[1].at("args").at("error"), "");
}

TEST_F(EventTraceTest, HasLoadingAndUnloadingAsSpans) {
    load();
    const Json events = finished();
    EXPECT_EQ(nestingProblems(events), Edges());
    EXPECT_EQ(eventsWhere(events, "cat", "loading").size(), 2U);
    EXPECT_EQ(eventsWhere(events, "cat", "unloading").size(), 2U);
    EXPECT_EQ(eventsWhere(events, "cat", "loading")[1].at("args").at("addOn"), "MISBEHAVING");
}

TEST_F(EventTraceTest, HasScopesOnTracksOfTheirOwn) {
    VexaUtilAuxDataBeginAssign();
    VexaUtilZoneSolutionTimeModificationBegin();
    VexaUtilAuxDataBeginAssign();
    VexaUtilAuxDataEndAssign();
    VexaUtilDataSetSuspendMarking(1);
    VexaUtilAuxDataEndAssign();  // crosses the two others
    VexaUtilDataSetSuspendMarking(0);
    VexaUtilZoneSolutionTimeModificationEnd();
    const Json events = finished();
    EXPECT_EQ(edgesOf(events, "auxiliary data"),
              (Edges{"auxiliary data", "auxiliary data", "/auxiliary data", "/auxiliary data"}));
    EXPECT_EQ(edgesOf(events, "marking"), (Edges{"marking", "/marking"}));
    EXPECT_EQ(edgesOf(events, "solution time"), (Edges{"solution time", "/solution time"}));
    EXPECT_EQ(nestingProblems(events), Edges());
}

TEST_F(EventTraceTest, HasMutexesLockedAtOnceOnSeveralTracks) {
    ThreadMutex_s* first = VexaUtilThreadMutexAlloc();
    ThreadMutex_s* second = VexaUtilThreadMutexAlloc();
    VexaUtilThreadMutexLock(first);
    VexaUtilThreadMutexLock(second);
    VexaUtilThreadMutexUnlock(first);
    VexaUtilThreadMutexUnlock(second);
    VexaUtilThreadMutexLock(second);
    VexaUtilThreadMutexUnlock(second);
    const Json events = finished();
    EXPECT_EQ(edgesOf(events, "mutex 1"), (Edges{"mutex#1", "/mutex#1", "mutex#2", "/mutex#2"}));
    EXPECT_EQ(edgesOf(events, "mutex 2"), (Edges{"mutex#2", "/mutex#2"}));
}

TEST_F(EventTraceTest, EndsWhatACommandLeftOpenWithTheCommand) {
    load();
    host().run("MISBEHAVING", "unbalanced-lock");
    const Json events = finished();
    EXPECT_EQ(edgesOf(events, "lock"), (Edges{"lock", "/lock"}));
    const std::string& end = eventsWhere(events, "cat", "scope").back().dump();
    EXPECT_NE(end.find(eventsWhere(events, "cat", "command").back().at("ts").dump()), std::string::npos);
}

TEST_F(EventTraceTest, HasNoScopeForAnEndAlone) {
    VexaUtilAuxDataEndAssign();
    VexaUtilThreadMutexUnlock(nullptr);
    EXPECT_EQ(eventsWhere(finished(), "cat", "scope").size(), 0U);
}

TEST_F(EventTraceTest, HasOneStatusLineHoweverOftenItIsStarted) {
    VexaUtilStatusStartPercentDone("a", 0, 1);
    VexaUtilStatusStartPercentDone("b", 0, 1);
    VexaUtilStatusFinishPercentDone();
    EXPECT_EQ(edgesOf(finished(), "status line"), (Edges{"status line", "/status line"}));
}

TEST_F(EventTraceTest, HasThePercentageAsACounter) {
    VexaUtilStatusStartPercentDone("a", 0, 1);
    VexaUtilStatusCheckPercentDone(40);
    VexaUtilStatusFinishPercentDone();
    std::vector<int> percents;
    for (const Json& event : eventsWhere(finished(), "ph", "C")) percents.push_back(event.at("args").at("percent"));
    EXPECT_EQ(percents, (std::vector<int>{0, 40, 0}));
}

TEST_F(EventTraceTest, HasAFindingAsAnInstantWithBothPlacesAndTheHint) {
    load();
    host().run("MISBEHAVING", "unbalanced-lock", "m.macro:3");
    const std::vector<Json> findings = eventsWhere(finished(), "cat", "finding");
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].at("ph"), "i");
    EXPECT_EQ(findings[0].at("name"), "unbalanced-lock");
    const Json& facts = findings[0].at("args");
    const standin::Finding expected = host().violations().at(0);
    EXPECT_EQ(facts.at("message"), expected.message);
    EXPECT_EQ(facts.at("severity"), "error");
    EXPECT_EQ(facts.at("addOn"), "MISBEHAVING");
    EXPECT_EQ(facts.at("opened").at("function"), "VexaUtilLockStart");
    EXPECT_EQ(facts.at("opened").at("macroLine"), "m.macro:3");
    EXPECT_EQ(facts.at("opened").at("call"), expected.opened->call);
    EXPECT_EQ(facts.at("seen").at("command"), "MISBEHAVING unbalanced-lock");
    EXPECT_EQ(facts.at("count"), 1);
    EXPECT_EQ(facts.at("repeats"), 0);
    EXPECT_EQ(facts.at("hint"), standin::findRule("unbalanced-lock")->hint);
}

TEST_F(EventTraceTest, ReplacesWhatIsNoUtf8) {
    VexaUtilDialogErrMsg("a\xff\xc3z");
    const std::vector<Json> calls = eventsWhere(finished(), "cat", "call");
    EXPECT_EQ(calls.at(0).at("args").at("arguments"), "\"a\xef\xbf\xbd\xef\xbf\xbdz\"");
}

TEST_F(EventTraceTest, KeepsEveryAsciiCharacter) {
    std::string text;
    for (char c = 1; c < 127; ++c) text += c;
    VexaUtilDialogErrMsg(text.c_str());
    const std::string arguments = host().calls().at(0).arguments;
    EXPECT_EQ(eventsWhere(finished(), "cat", "call").at(0).at("args").at("arguments"), arguments);
}

TEST_F(EventTraceTest, IsThereUpToTheLastEventBeforeItIsFinished) {
    VexaUtilMacroIsBatchModeActive();
    EXPECT_EQ(eventsWhere(cutOffTraceEvents(m_traced.text()), "cat", "call").size(), 2U);
    VexaUtilMacroIsBatchModeActive();
    EXPECT_EQ(eventsWhere(cutOffTraceEvents(m_traced.text()), "cat", "call").size(), 4U);
}

TEST_F(EventTraceTest, LeavesOutWhatComesAfterItsEnd) {
    const std::string text = m_traced.finished();
    VexaUtilMacroIsBatchModeActive();
    EXPECT_EQ(m_traced.text(), text);
}

TEST_F(EventTraceTest, LeavesOutTheEndOfWhatItDidNotSeeBegin) {
    standin::CallEvent call;
    call.function = "VexaUtilLockFinish";
    m_traced.trace().callEnded(call);
    EXPECT_EQ(eventsWhere(finished(), "ph", "E").size(), 0U);
}

TEST_F(EventTraceTest, EndsWhatIsStillOpen) {
    standin::CallEvent call;
    call.function = "VexaUtilThreadMutexLock";
    m_traced.trace().callBegan(call);
    const std::vector<Json> ends = eventsWhere(finished(), "ph", "E");
    ASSERT_EQ(ends.size(), 1U);
    EXPECT_EQ(ends[0].at("name"), "VexaUtilThreadMutexLock");
    EXPECT_EQ(ends[0].at("cat"), "cut off");
}

TEST_F(EventTraceTest, TellsOfACallThatThrew) {
    host().throwFromCall("VexaUtilAuxDataBeginAssign");
    EXPECT_THROW(VexaUtilAuxDataBeginAssign(), std::runtime_error);
    const Json events = finished();
    EXPECT_EQ(eventsWhere(events, "cat", "call").at(1).at("args").at("threw"), true);
    EXPECT_EQ(eventsWhere(events, "cat", "scope").size(), 0U);
}

RC_GTEST_PROP(EventTraceProperty, NestsWhateverIsCalled, ()) {
    constexpr int kMostCalls = 30;  // each is three lines of a file
    const auto choices = *rc::gen::resize(kMostCalls, rc::gen::arbitrary<std::vector<unsigned char>>());
    TracedHost<EventTrace> traced(kFacts);
    std::vector<ThreadMutex_s*> mutexes = {VexaUtilThreadMutexAlloc(), VexaUtilThreadMutexAlloc()};
    for (const unsigned char choice : choices) {
        if (choice < 2) {
            VexaUtilThreadMutexLock(mutexes[choice]);
        } else if (choice < 4) {
            VexaUtilThreadMutexUnlock(mutexes[choice - 2U]);
        } else {
            standin::kEveryFunction[choice % std::size(standin::kEveryFunction)].call();
        }
    }
    const std::size_t made = traced.host().calls().size();
    const Json events = traceEvents(traced.finished());
    RC_ASSERT(nestingProblems(events) == Edges());
    RC_ASSERT(eventsWhere(events, "cat", "call").size() == 2 * made);
}

TEST_F(EventTraceTest, NestsWithManyThreads) {
    ThreadMutex_s* mutex = VexaUtilThreadMutexAlloc();
    std::vector<std::thread> threads;
    for (int i = 0; i != 4; ++i) {
        threads.emplace_back([mutex] {
            for (int round = 0; round != 50; ++round) {
                VexaUtilThreadMutexLock(mutex);
                VexaUtilThreadMutexUnlock(mutex);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    const std::size_t made = host().calls().size();
    const Json events = finished();
    EXPECT_EQ(nestingProblems(events), Edges());
    EXPECT_EQ(eventsWhere(events, "cat", "call").size(), 2 * made);
    EXPECT_EQ(edgesOf(events, "mutex 1").size(), 400U);
    EXPECT_EQ(edgesOf(events, "mutex 2"), Edges());
}

}  // namespace
}  // namespace vexa::runner
