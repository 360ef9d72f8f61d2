#include "trace/TraceReader.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "runner/trace/TracedHost.h"
#include "trace/EventTrace.h"
#include "vexa/VexaUtil.h"

namespace vexa::runner {
namespace {

using Kind_e = TracedSpan::Kind_e;

const RunFacts kFacts = {"tool 1.2", "m.macro", {{"--record", {"r.macro"}}}, true, false, {"leaked-set"}};

std::string refusalOf(const std::string& text) {
    const tests::TemporaryFolder folder;
    const std::string file = folder.write("t", text);
    try {
        TraceInput(file).run();
    } catch (const TraceError& error) {
        return std::string(error.what()).substr(file.size());
    }
    return "accepted";
}

// The trace of a run with a command, two calls in it, and a finding.
std::string someTrace() {
    TracedHost<EventTrace> traced(kFacts);
    traced.host().loadAddOn(MISBEHAVING_ADDON);
    traced.host().run("MISBEHAVING", "unbalanced-status", "m.macro:3");
    return traced.finished();
}

class TraceReaderTest : public ::testing::Test {
protected:
    TracedRun readBack() { return TraceInput(m_folder.write("t", m_text)).run(); }

    tests::TemporaryFolder m_folder;
    std::string m_text = someTrace();
};

TEST_F(TraceReaderTest, ReadsTheFactsAndTheOutcome) {
    const TracedRun run = readBack();
    EXPECT_EQ(run.tool, "tool 1.2");
    EXPECT_EQ(run.macroFile, "m.macro");
    EXPECT_EQ(run.options, R"({"--record":["r.macro"]})");
    EXPECT_TRUE(run.isStrict);
    EXPECT_FALSE(run.hasTimeLimit);
    EXPECT_EQ(run.suppressed, std::vector<std::string>{"leaked-set"});
    ASSERT_TRUE(run.outcome);
    EXPECT_EQ(run.outcome->exitStatus, 0);
    EXPECT_EQ(run.outcome->text, "all went well");
}

TEST_F(TraceReaderTest, ReadsEntriesWithTheirCallsAndOutcome) {
    const TracedRun run = readBack();
    ASSERT_EQ(run.entries.size(), 3U);
    EXPECT_EQ(run.entries[0].kind, "loading");
    EXPECT_EQ(run.entries[0].addOnId, "MISBEHAVING");
    EXPECT_EQ(run.entries[1].command, "unbalanced-status");
    EXPECT_EQ(run.entries[1].macroLine, "m.macro:3");
    EXPECT_EQ(run.entries[1].calls, 1U);
    EXPECT_TRUE(run.entries[1].succeeded);
    EXPECT_EQ(run.spans[run.entries[1].span].name, "MISBEHAVING unbalanced-status");
    EXPECT_EQ(run.entries[2].kind, "unloading");
}

TEST_F(TraceReaderTest, ReadsCallsWithinEntriesAndScopesBesideThem) {
    const TracedRun run = readBack();
    const auto spanOf = [&](Kind_e kind) {
        return *std::find_if(run.spans.begin(), run.spans.end(),
                             [=](const TracedSpan& one) { return one.kind == kind; });
    };
    const TracedSpan call = spanOf(Kind_e::Call);
    EXPECT_EQ(call.name, "VexaUtilStatusStartPercentDone");
    EXPECT_EQ(call.arguments, "\"working\", 0, 1");
    EXPECT_EQ(call.number, 1U);
    EXPECT_EQ(call.depth, 1U);
    EXPECT_GE(call.start, 0);
    EXPECT_GE(*call.end, call.start);
    EXPECT_LE(*call.end, run.end);
    const TracedSpan scope = spanOf(Kind_e::Scope);
    EXPECT_EQ(run.tracks[scope.track].name, "status line");
    EXPECT_TRUE(run.tracks[scope.track].isScope);
    EXPECT_EQ(scope.depth, 0U);
}

TEST_F(TraceReaderTest, ReadsFindingsAndPercentages) {
    const TracedRun run = readBack();
    ASSERT_EQ(run.findings.size(), 1U);
    EXPECT_EQ(run.findings[0].rule, "unbalanced-status");
    EXPECT_EQ(run.percents.size(), 2U);
}

TEST_F(TraceReaderTest, ReadsATraceThatIsCutOffAnywhereBehindItsHeader) {
    const std::string whole = m_text;
    const std::size_t headerEnd = whole.find('\n', 2);
    const std::size_t outcome = whole.rfind(",\n{");
    std::size_t spans = 0;
    constexpr std::size_t kStep = 7;  // comes by every place of a line soon enough
    for (std::size_t size = headerEnd - 1; size < outcome + 3; size += kStep) {
        m_text = whole.substr(0, size);
        const TracedRun run = readBack();
        EXPECT_FALSE(run.outcome);
        EXPECT_GE(run.spans.size(), spans) << "up to byte " << size;
        spans = run.spans.size();
    }
    EXPECT_EQ(spans, 5U);
}

TEST_F(TraceReaderTest, IgnoresWhatAKilledWriterLeftAfterTheText) {
    using namespace std::string_literals;
    m_text.resize(m_text.rfind(",\n{"));
    for (const std::string& rest : {"\0"s, "\0\n{\"na"s, std::string(100000, '\0')}) {
        EXPECT_EQ(TraceInput(m_folder.write("t", m_text + rest)).text(), m_text);
    }
}

TEST_F(TraceReaderTest, LeavesOpenWhatWasRunningWhenTheTraceWasCutOff) {
    m_text.resize(m_text.find("VexaUtilStatusStartPercentDone\",\"cat\":\"call\",\"ph\":\"E\""));
    const TracedRun run = readBack();
    EXPECT_FALSE(run.spans[run.entries[1].span].end);
    EXPECT_EQ(run.entries.size(), 2U);
}

// The shortest beginning of a trace.
std::string headerWith(const std::string& options) {
    return R"([
{"name":"run","cat":"run","ph":"i","pid":1,"tid":1,"ts":1.5,"s":"p","args":{"tool":"t","macroFile":"m","options":)" +
           options + R"(,"isStrict":false,"hasTimeLimit":false,"suppressed":[]}})";
}

TEST(TraceReader, RefusesWhatIsNoTrace) {
    const std::string header = headerWith("{}");
    const std::string no = ": this is not a trace of 'vexa-standin run --trace'";
    struct Case {
        const char* why;
        std::string text;
        std::string refusal;
    };
    const Case cases[] = {
        {"the shortest trace", header + "\n]\n", "accepted"},
        {"an empty file", "", no},
        {"another text", "ONE SAY a\n", no},
        {"an empty array", "[\n]\n", no},
        {"a header cut off", header.substr(0, 40), ":2: not an event of a trace"},
        {"the trace of another tool", "[\n{\"name\":\"x\",\"cat\":\"y\",\"ph\":\"X\"}\n]\n", ":2" + no},
        {"numbers", "[\n1\n]\n", ":2" + no},
        {"a broken line in the middle", header + ",\n{\"name\":\n{}\n]\n", ":3: not an event of a trace"},
        {"a part that is missing", header + ",\n{\"ph\":\"B\",\"ts\":2}\n]\n",
         ":3: an event with a missing part, or with a part of the wrong type"},
        {"an unknown event", header + ",\n{\"ph\":\"Q\",\"ts\":2}\n]\n", ":3: an event of unknown type \"Q\""},
        {"an end alone", header + ",\n{\"ph\":\"E\",\"ts\":2,\"tid\":1,\"cat\":\"call\"}\n]\n",
         ":3: an end without a start"},
    };
    for (const Case& c : cases) EXPECT_EQ(refusalOf(c.text), c.refusal) << c.why;
}

std::string refusalOfEvent(const std::string& event) { return refusalOf(headerWith("{}") + ",\n" + event + "\n]\n"); }

TEST(TraceReader, RefusesTimesThatNoRunCanHave) {
    for (const char* time : {"1e300", "-1e300", "9223372036854775807", "1e13"}) {
        EXPECT_EQ(refusalOfEvent(R"({"ph":"C","tid":1,"ts":)" + std::string(time) + R"(,"args":{"percent":1}})"),
                  ":3: an impossible time")
            << time;
    }
}

TEST(TraceReader, RefusesNumbersThatAreNoIntegers) {
    const std::string refusal = ":3: an event with a missing part, or with a part of the wrong type";
    for (const char* number : {"1e300", "1.5", "true", "null", "-1"}) {
        EXPECT_EQ(refusalOfEvent(R"({"name":"f","cat":"call","ph":"B","tid":1,"ts":2,"args":{"number":)" +
                                 std::string(number) + R"(,"arguments":""}})"),
                  refusal)
            << number;
    }
    EXPECT_EQ(
        refusalOfEvent(R"({"name":"f","cat":"call","ph":"B","tid":1e300,"ts":2,"args":{"number":1,"arguments":""}})"),
        refusal);
    EXPECT_EQ(refusalOfEvent(R"({"ph":"C","tid":1,"ts":2,"args":{"percent":1e300}})"), refusal);
    EXPECT_EQ(refusalOfEvent(R"({"cat":"run","ph":"i","tid":1,"ts":2,"args":{"exitStatus":1e300,"outcome":""}})"),
              refusal);
}

TEST(TraceReader, RefusesAFindingWithoutARule) {
    for (const char* facts : {"{}", "[]", "7", R"({"rule":7})", "null"}) {
        EXPECT_EQ(refusalOfEvent(R"({"cat":"finding","ph":"i","tid":1,"ts":2,"args":)" + std::string(facts) + '}'),
                  ":3: an event with a missing part, or with a part of the wrong type")
            << facts;
    }
}

TEST(TraceReader, QuotesAnUnknownEventShortlyAndInOneLine) {
    EXPECT_EQ(refusalOfEvent(R"({"ph":"a\nb","ts":2})"), R"(:3: an event of unknown type "a\nb")");
    EXPECT_LT(refusalOfEvent(R"({"ph":")" + std::string(1000, 'Q') + R"(","ts":2})").size(), 300U);
}

TEST(TraceReader, RefusesWhatIsNestedDeeply) {
    constexpr std::size_t kDepth = 200000;
    EXPECT_EQ(refusalOf(headerWith(std::string(kDepth, '[') + std::string(kDepth, ']')) + "\n]\n"),
              ":2: an event that is nested too deeply");
}

TEST(TraceReader, RefusesAnEventWithManyParts) {
    std::string options;
    for (std::size_t i = 0; i < 300000; ++i) options += (options.empty() ? "{\"" : ",\"") + std::to_string(i) + "\":[]";
    EXPECT_EQ(refusalOf(headerWith(options + '}') + "\n]\n"), ":2: an event with too many parts");
}

TEST(TraceReader, RefusesOptionsThatAreNone) {
    for (const char* options : {"7", "[]", R"({"--batch":7})", R"({"--batch":[7]})"}) {
        EXPECT_EQ(refusalOf(headerWith(options) + "\n]\n"), ":2: this is not a trace of 'vexa-standin run --trace'")
            << options;
    }
}

TEST(TraceReader, RefusesAFileThatCannotBeRead) {
    try {
        TraceInput("/nowhere/t");
        FAIL();
    } catch (const TraceError& error) {
        EXPECT_STREQ(error.what(), "/nowhere/t: cannot be read: No such file or directory");
    }
}

// A trace of a run that crashed, with `facts` as the arguments of its crash.
std::string crashedTrace(const std::string& facts) {
    const std::string text = someTrace();
    return text.substr(0, text.rfind(",\n")) +
           R"(,
{"name":"crash","cat":"crash","ph":"i","pid":1,"tid":1,"ts":2.5,"s":"p","args":)" +
           facts + "}";
}

const std::string kCrash = R"({"message":"it ended","signal":11,"fault":"","problem":"","stack":["#0  f"],)"
                           R"("source":{"function":"f","file":"f.cpp","line":3,"text":"at f.cpp:3, in f"}})";

TEST_F(TraceReaderTest, ReadsHowTheProcessEnded) {
    m_text = crashedTrace(kCrash);
    const TracedRun run = readBack();
    ASSERT_EQ(run.crashes.size(), 1U);
    EXPECT_EQ(run.crashes[0].message, "it ended");
    EXPECT_EQ(run.crashes[0].facts, kCrash);
    EXPECT_FALSE(run.outcome);
}

TEST_F(TraceReaderTest, RefusesAnEndThatThePageCannotShow) {
    EXPECT_EQ(refusalOf(crashedTrace(kCrash)), "accepted");
    for (const char* const part : {"message", "signal", "fault", "problem", "stack", "file", "line"}) {
        std::string facts = kCrash;
        facts.replace(facts.find(part), 1, "x");
        EXPECT_NE(refusalOf(crashedTrace(facts)), "accepted") << part;
    }
    std::string facts = kCrash;
    facts.replace(facts.find("\"#0  f\""), 7, "7");
    EXPECT_NE(refusalOf(crashedTrace(facts)), "accepted");
}

}  // namespace
}  // namespace vexa::runner
