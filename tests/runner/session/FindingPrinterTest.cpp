#include "session/FindingPrinter.h"

#include <gtest/gtest.h>

#include <string>

namespace vexa::runner {
namespace {

void breakRule(standin::Host& host, const std::string& message) {
    standin::Finding finding;
    finding.rule = "command-timeout";
    finding.addOnId = "STATS";
    finding.message = message;
    finding.seen.macroLine = "a.macro:3";
    host.report(finding);
}

TEST(NewFindings, AreThoseAfterTheKnownOnes) {
    standin::Host host;
    std::size_t known = 0;
    breakRule(host, "one");
    EXPECT_EQ(newFindings(host, known).size(), 1U);
    EXPECT_TRUE(newFindings(host, known).empty());
    breakRule(host, "two");
    const auto findings = newFindings(host, known);
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].message, "two");
}

TEST(FindingPrinter, PrintsEachFindingOnceWithItsPlace) {
    standin::Host host;
    FindingPrinter printer;
    breakRule(host, "one");
    testing::internal::CaptureStderr();
    printer.printNew(host);
    EXPECT_EQ(testing::internal::GetCapturedStderr().rfind("a.macro:3: STATS: error: one [command-timeout]", 0), 0U);
    testing::internal::CaptureStderr();
    printer.printNew(host);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(RestOfFindings, CountsThoseThatWereNotKept) {
    standin::Host host;
    for (int i = 0; i != 12; ++i) breakRule(host, "again");
    testing::internal::CaptureStderr();
    printRestOfFindings(host);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "STATS: and 2 more [command-timeout]\n");
}

TEST(RestOfFindings, HasTheSuppressionsThatWereNotNeeded) {
    standin::Host host;
    host.suppress("unbalanced-lock");
    testing::internal::CaptureStderr();
    printRestOfFindings(host);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "vexa-standin: warning: unbalanced-lock is suppressed, but was not broken\n");
}

}  // namespace
}  // namespace vexa::runner
