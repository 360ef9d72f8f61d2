#include "trace/SpanLine.h"

#include <gtest/gtest.h>

#include <sstream>
#include <vector>

#include "runner/trace/TracedHost.h"
#include "trace/EventTrace.h"
#include "trace/TraceReader.h"
#include "vexa/VexaUtil.h"

namespace vexa::runner {
namespace {

using Kind_e = TracedSpan::Kind_e;

constexpr const char* kCallStart =
    R"({"name":"VexaUtilLockStart","cat":"call","ph":"B","pid":7,"tid":8,"ts":9.125,"args":{"number":3,"arguments":"A"}})";
constexpr const char* kCallEnd =
    R"({"name":"VexaUtilLockStart","cat":"call","ph":"E","pid":7,"tid":8,"ts":9.250,"args":{"result":"1"}})";
constexpr const char* kScopeStart =
    R"({"name":"lock","cat":"scope","ph":"B","pid":7,"tid":8,"ts":9.125,"args":{"arguments":"A"}})";
constexpr const char* kScopeEnd = R"({"name":"lock","cat":"scope","ph":"E","pid":7,"tid":8,"ts":9.250})";

std::string with(std::string line, const std::string& part, const std::string& other) {
    return line.replace(line.find(part), part.size(), other);
}

TEST(SpanLine, OfACallThatStartsIsScanned) {
    SpanEdge edge;
    ASSERT_TRUE(scanSpanEdge(with(kCallStart, R"("A")", R"("\"a\\b\", 1")"), edge));
    EXPECT_EQ(edge.kind, Kind_e::Call);
    EXPECT_TRUE(edge.begins);
    EXPECT_EQ(edge.name, "VexaUtilLockStart");
    EXPECT_EQ(edge.thread, 8);
    EXPECT_EQ(edge.time, 9.125);
    EXPECT_EQ(edge.number, 3U);
    EXPECT_EQ(edge.text, R"("a\b", 1)");
}

TEST(SpanLine, OfACallThatEndsIsScanned) {
    SpanEdge edge;
    ASSERT_TRUE(scanSpanEdge(kCallEnd, edge));
    EXPECT_EQ(edge.kind, Kind_e::Call);
    EXPECT_FALSE(edge.begins);
    EXPECT_EQ(edge.time, 9.25);
    EXPECT_EQ(edge.text, "1");
    ASSERT_TRUE(scanSpanEdge(with(kCallEnd, R"("1")", R"("1","threw":true)"), edge));
    EXPECT_EQ(edge.text, "threw");
}

TEST(SpanLine, OfAScopeIsScanned) {
    SpanEdge edge;
    ASSERT_TRUE(scanSpanEdge(kScopeStart, edge));
    EXPECT_EQ(edge.kind, Kind_e::Scope);
    EXPECT_TRUE(edge.begins);
    EXPECT_EQ(edge.name, "lock");
    EXPECT_EQ(edge.text, "A");
    ASSERT_TRUE(scanSpanEdge(kScopeEnd, edge));
    EXPECT_EQ(edge.kind, Kind_e::Scope);
    EXPECT_FALSE(edge.begins);
}

// Otherwise reading a trace is slow again, and no other test would show it.
TEST(SpanLine, IsScannedInEachLineOfACallOrScopeThatEventTraceWrites) {
    TracedHost<EventTrace> traced(RunFacts{});
    Set_s* set = VexaUtilSetAlloc();
    VexaUtilStatusStartPercentDone("a \"quoted\" \\ text", 0, 1);
    VexaUtilStatusFinishPercentDone();
    VexaUtilSetDealloc(&set);
    traced.host().throwFromCall("VexaUtilMacroIsBatchModeActive");
    EXPECT_ANY_THROW(VexaUtilMacroIsBatchModeActive());
    std::istringstream text(traced.finished());
    SpanEdge edge;
    std::size_t scanned = 0;
    for (std::string line; std::getline(text, line);) {
        if (line.find(R"("cat":"call")") == std::string::npos && line.find(R"("cat":"scope")") == std::string::npos)
            continue;
        if (line.back() == ',') line.pop_back();
        EXPECT_TRUE(scanSpanEdge(line, edge)) << line;
        ++scanned;
    }
    EXPECT_EQ(scanned, 12U);
}

// All are JSON or no JSON at all: the JSON library decides.
TEST(SpanLine, IsLeftToTheJsonLibraryInAnyOtherForm) {
    const std::string begin = kCallStart;
    const std::string lines[] = {
        "",
        "{",
        "[",
        begin + ' ',
        begin + '}',
        begin.substr(0, begin.size() - 1),
        ' ' + begin,
        with(begin, "\"ph\":\"B\"", "\"ph\": \"B\""),
        with(begin, "\"ph\":\"B\"", "\"ph\":\"X\""),
        with(begin, "\"cat\":\"call\",\"ph\":\"B\"", "\"ph\":\"B\",\"cat\":\"call\""),
        with(begin, "call", "command"),
        with(begin, "call", "cut off"),
        with(begin, "\"A\"", "\"\\u0041\""),
        with(begin, "\"A\"", "\"\\n\""),
        with(begin, "\"A\"", "\"\\\""),
        with(begin, "\"A\"", "\"\n\""),
        with(begin, "\"A\"", "\"\xc3\xa4\""),
        with(begin, "\"A\"", "7"),
        with(begin, "8", "08"),
        with(begin, "8", "-8"),
        with(begin, "8", "8.0"),
        with(begin, "8", "9223372036854775807"),
        with(begin, "9.125", "9"),
        with(begin, "9.125", "9."),
        with(begin, "9.125", ".5"),
        with(begin, "9.125", "09.125"),
        with(begin, "9.125", "9.125e3"),
        with(begin, "9.125", std::string(400, '9') + ".0"),
        with(begin, "3", "1e300"),
        with(begin, "3,", "3,\"number\":4,"),
        with(kCallEnd, "\"1\"", "\"1\",\"threw\":false"),
        with(kScopeEnd, "}", ",\"args\":{}}"),
    };
    SpanEdge edge;
    for (const std::string& line : lines) EXPECT_FALSE(scanSpanEdge(line, edge)) << line;
}

// ---- Both ways give the same

// Writes down all that a visitor gets.
class Notes : public TraceVisitorInterface {
public:
    void runBegan(const TracedFacts& facts) override { m_text << "run " << facts.tool << '\n'; }
    void trackChanged(std::size_t track, const TracedTrack& facts) override {
        m_text << "track " << track << ' ' << facts.name << ' ' << facts.isScope << '\n';
    }
    void spanBegan(std::size_t index, const TracedSpan& span, const TracedEntry* entry) override {
        note("begin", index, span, entry);
    }
    void spanEnded(std::size_t index, const TracedSpan& span, const TracedEntry* entry) override {
        note("end", index, span, entry);
    }
    void findingMade(const TracedFinding& finding) override { m_text << "finding " << finding.facts << '\n'; }
    void crashed(const TracedCrash& crash) override { m_text << "crash " << crash.facts << '\n'; }
    void percentChanged(std::int64_t time, std::int64_t percent) override { m_text << time << ' ' << percent << '\n'; }
    void runEnded(std::int64_t end, const std::optional<TracedOutcome>& outcome) override {
        m_text << "end " << end << ' ' << (outcome ? outcome->text : "none") << '\n';
    }
    std::string text() const { return m_text.str(); }

private:
    void note(const char* what, std::size_t index, const TracedSpan& span, const TracedEntry* entry) {
        m_text << what << ' ' << index << ' ' << static_cast<int>(span.kind) << ' ' << span.track << ' ' << span.depth
               << ' ' << span.name << ' ' << span.start << ' ' << span.end.value_or(-1) << ' ' << span.number << ' '
               << span.arguments << ' ' << span.result << ' ' << (entry == nullptr ? 0 : entry->calls) << '\n';
    }

    std::ostringstream m_text;
};

// Returns what a reader makes of a trace with these events.
std::string notesOf(const std::vector<std::string>& events) {
    std::string text = R"([
{"name":"run","cat":"run","ph":"i","pid":1,"tid":1,"ts":1.5,"s":"p","args":{"tool":"t","macroFile":"m","options":{},)"
                       R"("isStrict":false,"hasTimeLimit":false,"suppressed":[]}})";
    for (const std::string& event : events) text += ",\n" + event;
    const tests::TemporaryFolder folder;
    const std::string file = folder.write("t", text + "\n]\n");
    Notes notes;
    try {
        TraceInput(file).visit(notes);
    } catch (const TraceError& error) {
        return std::string(error.what()).substr(file.size());
    }
    return notes.text();
}

// The same event for the JSON library only.
std::string inOtherWords(const std::string& event) { return with(event, "{", "{ "); }

TEST(SpanLine, IsReadAsTheJsonLibraryReadsIt) {
    const std::string entryStart =
        R"({"name":"A x","cat":"command","ph":"B","pid":7,"tid":8,"ts":2.0,"args":{"addOn":"A","command":"x","macroLine":""}})";
    const std::vector<std::string> traces[] = {
        {kCallStart, kCallEnd},
        {entryStart, kCallStart, kCallEnd, kScopeStart, kScopeEnd},
        {kCallStart, kScopeStart, kCallEnd, kScopeEnd},
        {kCallStart, kCallStart, kCallEnd},
        {kScopeStart, kCallEnd},
        {kCallStart, kScopeEnd},
        {entryStart, kCallEnd},
        {entryStart, kScopeEnd},
        {kCallEnd},
        {kScopeEnd},
        {kCallStart, with(kCallEnd, "8", "9")},
        {with(kCallStart, "9.125", "0.001"), with(kCallEnd, "9.250", "0.000")},
        {with(kCallStart, "9.125", "46800123456.789"), with(kCallEnd, "9.250", "46800123457.001")},
        {with(kCallStart, "9.125", "9007199254740993.123")},
        {with(kCallStart, "9.125", "123456789012345678901.5")},
        {with(kCallStart, "\"A\"", R"("a\"\\\" \\\\")"), with(kCallEnd, "\"1\"", R"("\"\\")")},
        {with(kCallStart, "\"A\"", "\"\""), with(kCallEnd, "\"1\"", R"("1","threw":true)")},
        {with(kCallStart, "3", "999999999999999999"), with(kCallStart, "8", "999999999999999999")},
        {with(kCallStart, "3", "0"), with(kCallStart, "8", "0")},
    };
    for (std::vector<std::string> events : traces) {
        SpanEdge edge;
        for (const std::string& event : events) EXPECT_TRUE(event == entryStart || scanSpanEdge(event, edge)) << event;
        const std::string notes = notesOf(events);
        for (std::string& event : events) event = inOtherWords(event);
        EXPECT_EQ(notes, notesOf(events));
    }
}

}  // namespace
}  // namespace vexa::runner
