#include "commands/report/PageData.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "commands/report/ReportPage.h"

namespace vexa::runner {
namespace {

using Json = nlohmann::ordered_json;

TracedSpan callOf(const std::string& function, const std::string& arguments, const std::string& result) {
    TracedSpan span;
    span.name = function;
    span.arguments = arguments;
    span.result = result;
    span.number = 7;
    span.end = 5;
    return span;
}

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
              Json::parse(R"(["VexaUtilLockStart","VexaUtilLockFinish","ONE",""])"));
}

TEST(PageData, HasNoOutcomeForATraceThatIsCutOff) { EXPECT_TRUE(pageData(TracedRun()).at("outcome").is_null()); }

TEST(ReportPage, KeepsItsDataWithinTheirElement) {
    TracedRun run;
    run.macroFile = "</script><script>alert(1)</script><!--";
    const std::string page = reportPage(run);
    EXPECT_EQ(page.find("<script>alert"), std::string::npos);
    EXPECT_EQ(page.find("<!--"), std::string::npos);
    EXPECT_NE(page.find("\\u003c/script>\\u003cscript>alert(1)"), std::string::npos);
}

TEST(ReportPage, NeedsNoOtherFile) {
    const std::string page = reportPage(TracedRun());
    for (const char* reference : {"http:", "https:", "src=", "url(", "@import", "<link"}) {
        EXPECT_EQ(page.find(reference), std::string::npos) << reference;
    }
}

TEST(ReportPage, ReplacesWhatIsNoUtf8) {
    TracedRun run;
    run.macroFile = "a\xff";
    EXPECT_NE(reportPage(run).find("\"macroFile\":\"a\xef\xbf\xbd\""), std::string::npos);
}

}  // namespace
}  // namespace vexa::runner
