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
    const std::string line = resultLine(kMean, {true, ""}, {}, {oneFinding()});
    EXPECT_NE(
        line.find(R"("findings":[{"rule":"unbalanced-lock","severity":"warning","addOn":"STATS","message":"why"}])"),
        std::string::npos)
        << line;
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

}  // namespace
}  // namespace vexa::runner
