#include "formats/ResultsFile.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

namespace vexa::runner {
namespace {

using std::chrono::milliseconds;

const MacroCommand kMean = {"a.macro:3", "STATS", "MEAN"};

standin::Finding oneFinding() {
    standin::Finding finding;
    finding.rule = "unbalanced-lock";
    finding.severity = standin::Severity_e::Warning;
    finding.addOnId = "STATS";
    finding.message = "why";
    return finding;
}

TEST(ResultLine, HasTheCommandItsResultAndItsTime) {
    EXPECT_EQ(resultLine(kMean, {true, ""}, milliseconds(1500), {}),
              R"({"place":"a.macro:3","addOn":"STATS","command":"MEAN","accepted":true,"error":"","seconds":1.5,)"
              R"("findings":[]})"
              "\n");
}

TEST(ResultLine, HasTheErrorWithoutTheLineEndsAtItsEnd) {
    const std::string line = resultLine(kMean, {false, "no such zone\n"}, {}, {});
    EXPECT_NE(line.find(R"("accepted":false,"error":"no such zone",)"), std::string::npos) << line;
}

TEST(ResultLine, HasTheFindings) {
    const std::string line = resultLine(kMean, {true, ""}, {}, {{{oneFinding(), ""}}});
    EXPECT_NE(
        line.find(R"("findings":[{"rule":"unbalanced-lock","severity":"warning","addOn":"STATS","message":"why"}])"),
        std::string::npos)
        << line;
}

TEST(ResultLine, HasTheCommandsOfTheDebugger) {
    ResultDetails details;
    details.findings = {{oneFinding(), "debug --rule unbalanced-lock"}};
    details.debug = "debug --failure";
    const std::string line = resultLine(kMean, {false, "no"}, {}, details);
    EXPECT_NE(line.find(R"("message":"why","debug":"debug --rule unbalanced-lock"}])"), std::string::npos) << line;
    EXPECT_NE(line.find(R"(],"debug":"debug --failure"})"), std::string::npos) << line;
}

TEST(EndLine, HasTheStatusOfTheRun) {
    EXPECT_EQ(endLine("a.macro", ExitStatus_e::CommandFailed, {}),
              R"({"macroFile":"a.macro","exitStatus":1,"findings":[]})"
              "\n");
}

TEST(EndLine, SaysWhyTheRunEndedEarly) {
    EXPECT_EQ(endLine("a.macro", ExitStatus_e::ProcessEnded, {}, "SIGSEGV"),
              R"({"macroFile":"a.macro","exitStatus":5,"findings":[],"error":"SIGSEGV"})"
              "\n");
}

TEST(NameInResults, IsTheNameThatTheEndLineHas) {
    for (const char* name : {"a.macro", "f\303\274r \"b\".macro", "not \377 UTF-8.macro"}) {
        const auto line = parseResultLine(endLine(name, ExitStatus_e::AllWell, {}));
        ASSERT_TRUE(line) << name;
        EXPECT_EQ(line->name, nameInResults(name));
    }
    EXPECT_EQ(nameInResults("f\303\274r.macro"), "f\303\274r.macro");
}

TEST(ParseResultLine, ReadsTheLineOfACommand) {
    const auto line = parseResultLine(resultLine(kMean, {false, "no"}, milliseconds(1500), {{{oneFinding(), ""}}}));
    ASSERT_TRUE(line);
    EXPECT_EQ(line->name, "a.macro:3");
    EXPECT_FALSE(line->exitStatus);
    EXPECT_FALSE(line->isAccepted);
    EXPECT_EQ(line->error, "no");
    EXPECT_EQ(line->seconds, 1.5);
    EXPECT_TRUE(parseResultLine(resultLine(kMean, {true, ""}, {}, {}))->isAccepted);
}

TEST(ParseResultLine, ReadsAnEndLine) {
    const auto line = parseResultLine(endLine("a.macro", ExitStatus_e::ProcessEnded, {}, "SIGSEGV"));
    ASSERT_TRUE(line);
    EXPECT_EQ(line->name, "a.macro");
    EXPECT_EQ(line->exitStatus, 5);
    EXPECT_EQ(line->error, "SIGSEGV");
}

TEST(ParseResultLine, IgnoresMembersThatItDoesNotKnow) {
    EXPECT_TRUE(parseResultLine(R"({"new":[{}],"macroFile":"a.macro","exitStatus":0})"));
}

TEST(ParseResultLine, RefusesOtherLines) {
    for (const char* line : {"", "x", "[]", "7", "{}", R"({"place":7})", R"({"place":""})", R"({"macroFile":"a"})",
                             R"({"macroFile":"a","exitStatus":"0"})", R"({"macroFile":"a","exitStatus":-1})",
                             R"({"macroFile":"a","exitStatus":256})", R"({"exitStatus":0})", R"({"place":"a:1"}x)",
                             "{\"place\":\"\377:1\"}"}) {
        EXPECT_FALSE(parseResultLine(line)) << line;
    }
    EXPECT_FALSE(parseResultLine(std::string(100000, '['))) << "deeply nested";
}

TEST(StartOfResultLine, IsEachStartOfALine) {
    const std::string command = resultLine(kMean, {true, ""}, {}, {});
    const std::string end = endLine("a.macro", ExitStatus_e::AllWell, {});
    for (const std::string& line : {command, end}) {
        for (std::size_t size = 1; size != line.size(); ++size) {
            EXPECT_TRUE(isStartOfResultLine(line.substr(0, size))) << line.substr(0, size);
        }
    }
    for (const char* text : {"x", "{}", "{\"plaza", "[", "{\"macroFile\":7"})
        EXPECT_FALSE(isStartOfResultLine(text)) << text;
}

}  // namespace
}  // namespace vexa::runner
