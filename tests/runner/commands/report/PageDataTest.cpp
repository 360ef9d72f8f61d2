#include "commands/report/PageData.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "commands/report/ReportPage.h"
#include "runner/trace/VisitedRun.h"

namespace vexa::runner {
namespace {

using Json = nlohmann::ordered_json;
using Kind_e = TracedSpan::Kind_e;

TracedSpan callOf(const std::string& function, const std::string& arguments, const std::string& result) {
    TracedSpan span;
    span.name = function;
    span.arguments = arguments;
    span.result = result;
    span.number = 7;
    span.end = 5;
    return span;
}

Json pageData(const TracedRun& run) {
    PageData data;
    const VisitedRun visited(run, data);
    return data.take();
}

std::string pageOf(const TracedRun& run) { return reportPage(pageData(run)); }

TracedSpan spanOf(TracedSpan::Kind_e kind, std::int64_t start, std::optional<std::int64_t> end, std::size_t depth) {
    TracedSpan span;
    span.kind = kind;
    span.name = kind == TracedSpan::Kind_e::Entry ? "ONE SAY" : "VexaUtilLockStart";
    span.start = start;
    span.end = end;
    span.depth = depth;
    return span;
}

// A run of a command that did not end, with a call that did not return.
TracedRun crashedRun() {
    TracedRun run;
    run.spans = {spanOf(Kind_e::Entry, 10, std::nullopt, 0), spanOf(Kind_e::Call, 20, std::nullopt, 1)};
    run.spans[1].number = 4;
    run.entries = {{0, "command", "ONE", "SAY a", "m.macro:2", false, "", 1}};
    run.end = 50;
    return run;
}

const std::string kRunFacts = R"({"rule":"leaked-set","severity":"error","message":"m","addOn":"ONE","opened":null,)"
                              R"("seen":{"call":1,"function":"f","command":"c","macroLine":"l","thread":1},)"
                              R"("count":1,"repeats":0,"hint":"h"})";

TEST(PageData, HasTheCommandsThatTheHostRecorded) {
    TracedRun run;
    run.spans = {callOf("VexaUtilMacroRecordExtCommand", R"("ONE", "SAY \"a\"")", "1"),
                 callOf("VexaUtilMacroRecordExtCommand", R"("ONE", "not recorded")", "0")};
    EXPECT_EQ(pageData(run).at("recorded"), Json::parse(R"([{"addOn":"ONE","command":"SAY \"a\"","call":7}])"));
}

TEST(PageData, HasDialogs) {
    TracedRun run;
    run.spans = {callOf("VexaUtilDialogErrMsg", R"("a\nb")", ""), callOf("VexaUtilDialogErrMsg", "null", "")};
    EXPECT_EQ(pageData(run).at("dialogs"), Json::parse(R"([{"text":"a\nb","call":7},{"text":"","call":7}])"));
}

TEST(PageData, HasTheTextsThatWerePassed) {
    struct Case {
        const char* why;
        const char* argument;
        const char* text;
    };
    const Case cases[] = {
        {"an empty one", R"("")", ""},
        {"null", "null", ""},
        {"null as a text", R"("null")", "null"},
        {"a quote and a comma", R"("a \", b")", "a \", b"},
        {"every escape", R"("\\\n\r\t\"")", "\\\n\r\t\""},
        {"control characters", "\"\x01 \x1f\"", "\x01 \x1f"},
        {"a character of two bytes", "\"\xC3\xA9\"", "\xC3\xA9"},
        {"a quote left open", R"("ab)", ""},
        {"no text", "arglist#1", ""},
    };
    for (const Case& c : cases) {
        TracedRun run;
        run.spans = {callOf("VexaUtilDialogErrMsg", c.argument, "")};
        EXPECT_EQ(pageData(run).at("dialogs").at(0).at("text"), c.text) << c.why;
    }
}

TEST(PageData, HasEveryHostFunctionWithItsCalls) {
    TracedRun run;
    run.spans = {callOf("VexaUtilLockStart", "", ""), callOf("VexaUtilLockStart", "", "")};
    const Json functions = pageData(run).at("functions");
    EXPECT_EQ(functions.at(0), Json::parse(R"({"name":"VexaUtilLockStart","calls":2,"time":10})"));
    EXPECT_EQ(functions.at(1), Json::parse(R"({"name":"VexaUtilLockFinish","calls":0,"time":0})"));
}

TEST(PageData, HasEachTextOnce) {
    TracedRun run;
    run.spans = {callOf("VexaUtilLockStart", "ONE", ""), callOf("VexaUtilLockFinish", "ONE", "")};
    EXPECT_EQ(pageData(run).at("spans").at("texts"),
              Json::parse(R"(["VexaUtilLockStart","VexaUtilLockFinish","","ONE"])"));
}

TEST(PageData, HasNoOutcomeForATraceThatIsCutOff) { EXPECT_TRUE(pageData(TracedRun()).at("outcome").is_null()); }

TEST(PageData, CountsTheCommandOfACrashAsFailed) {
    const Json data = pageData(crashedRun());
    EXPECT_EQ(data.at("counts").at("commands"), 1);
    EXPECT_EQ(data.at("counts").at("failedCommands"), 1);
}

TEST(PageData, HasACrashAsTheFirstFinding) {
    TracedRun run = crashedRun();
    run.findings = {{0, 15, "leaked-set", kRunFacts}};
    const Json data = pageData(run);
    ASSERT_EQ(data.at("findings").size(), 2U);
    const Json& crash = data.at("findings").at(0);
    EXPECT_EQ(crash.at("rule"), "crash");
    EXPECT_EQ(crash.at("message"), "The process of the add-ons ended in ONE SAY a, during VexaUtilLockStart");
    EXPECT_EQ(crash.at("seen").at("call"), 4);
    EXPECT_EQ(crash.at("seen").at("macroLine"), "m.macro:2");
    EXPECT_EQ(data.at("counts").at("errors"), 2);
    EXPECT_EQ(data.at("counts").at("byRule").at("crash"), 1);
}

TEST(PageData, ShowsWhatTheTraceHasOfACrash) {
    TracedRun run = crashedRun();
    run.outcome = {139, "ended"};
    run.crashes = {{"it ended",
                    R"({"message":"it ended","signal":11,"fault":"address 0x10","problem":"","stack":["#0"],)"
                    R"("source":{"function":"f","file":"f.cpp","line":3,"text":"at f.cpp:3, in f"}})"}};
    const Json finding = pageData(run).at("findings").at(0);
    EXPECT_EQ(finding.at("rule"), "crash");
    EXPECT_EQ(finding.at("message"), "it ended");
    EXPECT_EQ(finding.at("fault"), "address 0x10");
    EXPECT_EQ(finding.at("stack"), Json({"#0"}));
    EXPECT_FALSE(finding.contains("problem"));
    EXPECT_EQ(finding.at("seen").at("source").at("line"), 3);
    EXPECT_EQ(finding.at("seen").at("macroLine"), "m.macro:2");
}

TEST(PageData, HasNoCrashInARunThatEnded) {
    TracedRun run = crashedRun();
    run.outcome = {4, "a command did not return"};
    EXPECT_TRUE(pageData(run).at("findings").empty());
    run.outcome = {5, "an add-on ended its process"};
    EXPECT_EQ(pageData(run).at("findings").size(), 1U);
}

TEST(PageData, KeepsFieldsOfFindingsThatItDoesNotKnow) {
    TracedRun run;
    run.outcome = {0, "all went well"};
    Json facts = Json::parse(kRunFacts);
    facts["seen"]["source"] = {{"function", "mean"}, {"file", "stats.cpp"}, {"line", 12}};
    run.findings = {{0, 15, "leaked-set", facts.dump()}};
    EXPECT_EQ(pageData(run).at("findings").at(0).at("seen").at("source").at("line"), 12);
}

TEST(PageData, HasAllSpansOfAShortRunAndNoIntervals) {
    const Json data = pageData(crashedRun());
    EXPECT_EQ(data.at("spans").at("start").size(), 2U);
    EXPECT_TRUE(data.at("bins").at("rows").empty());
}

// A run of one command with this many calls, each of a nanosecond.
TracedRun longRun(std::size_t calls) {
    TracedRun run;
    run.spans = {spanOf(Kind_e::Entry, 0, static_cast<std::int64_t>(2 * calls), 0)};
    run.entries = {{0, "command", "ONE", "SAY a", "m.macro:2", true, "", calls}};
    for (std::size_t i = 0; i < calls; ++i) {
        const auto start = static_cast<std::int64_t>(2 * i);
        run.spans.push_back(spanOf(Kind_e::Call, start, start + 1, 1));
        run.spans.back().number = i + 1;
    }
    run.end = static_cast<std::int64_t>(2 * calls);
    run.outcome = {0, "all went well"};
    return run;
}

TEST(PageData, SumsUpTheSpansOfALongRun) {
    constexpr std::size_t kCalls = 50000;
    TracedRun run = longRun(kCalls);
    run.spans[40001].end = run.spans[40001].start + 2;  // the slowest call
    const Json data = pageData(run);
    EXPECT_EQ(data.at("counts").at("calls"), kCalls);
    EXPECT_LT(data.at("spans").at("start").size(), 20000U);
    const Json& numbers = data.at("spans").at("number");
    EXPECT_NE(std::find(numbers.begin(), numbers.end(), 40001), numbers.end());
    ASSERT_EQ(data.at("bins").at("rows").size(), 1U) << "the row of the command is exact";
    const Json& row = data.at("bins").at("rows").at(0);
    std::size_t count = 0;
    std::size_t busy = 0;
    for (const std::size_t one : row.at("count")) count += one;
    for (const std::size_t one : row.at("busy")) busy += one;
    EXPECT_EQ(count, kCalls);
    EXPECT_EQ(busy, kCalls + 1);
}

TEST(PageData, FitsIntoAPageHoweverLongItsTexts) {
    TracedRun run = longRun(100);
    const std::string text(3000000, '<');
    run.tool = run.macroFile = run.entries[0].command = run.entries[0].error = run.spans[1].arguments = text;
    Json facts = Json::parse(kRunFacts);
    facts["message"] = text;
    for (int i = 0; i < 5; ++i) run.findings.push_back({0, 15, "leaked-set", facts.dump()});
    EXPECT_LT(pageOf(run).size(), 300000U);
}

TEST(PageData, HasASummaryToCompareWith) {
    PageData data;
    const TracedRun run = longRun(10);
    const VisitedRun visited(run, data);
    const Json summary = data.summary();
    EXPECT_EQ(summary.at("totals"), Json::parse(R"([{"name":"ONE SAY","runs":1,"failed":0,"calls":10,"time":20}])"));
    EXPECT_EQ(summary.at("counts").at("calls"), 10);
}

TEST(ReportPage, KeepsItsDataWithinTheirElement) {
    TracedRun run;
    run.macroFile = "</script><script>alert(1)</script><!--";
    const std::string page = pageOf(run);
    EXPECT_EQ(page.find("<script>alert"), std::string::npos);
    EXPECT_EQ(page.find("<!--"), std::string::npos);
    EXPECT_NE(page.find("\\u003c/script>\\u003cscript>alert(1)"), std::string::npos);
}

TEST(ReportPage, NeedsNoOtherFile) {
    const std::string page = pageOf(TracedRun());
    for (const char* reference : {"http:", "https:", "src=", "url(", "@import", "<link"}) {
        EXPECT_EQ(page.find(reference), std::string::npos) << reference;
    }
}

TEST(ReportPage, ReplacesWhatIsNoUtf8) {
    TracedRun run;
    run.macroFile = "a\xff";
    EXPECT_NE(pageOf(run).find("\"macroFile\":\"a\xef\xbf\xbd\""), std::string::npos);
}

}  // namespace
}  // namespace vexa::runner
