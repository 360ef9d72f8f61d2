#include "contract/FindingLog.h"

#include <gtest/gtest.h>

#include <string>

namespace vexa::standin {
namespace {

Finding findingOf(const char* rule) {
    Finding finding;
    finding.rule = rule;
    finding.addOnId = "STATS";
    finding.message = "something is wrong";
    finding.seen.call = 1;
    finding.seen.function = "VexaUtilSetAlloc";
    return finding;
}

TEST(FindingLog, CompletesAFindingBeforeItIsKept) {
    FindingLog log;
    log.setComplete([](Finding& finding) { finding.seen.source.text = "in stats.cpp:3\nint x;"; });
    log.add(findingOf("leaked-set"));
    ASSERT_EQ(log.kept().size(), 1U);
    EXPECT_NE(textOf(log.kept().front()).find("call 1, VexaUtilSetAlloc\n           in stats.cpp:3\n"),
              std::string::npos)
        << textOf(log.kept().front());
}

TEST(FindingLog, CompletesNoFindingOfASuppressedRule) {
    FindingLog log;
    int completed = 0;
    log.setComplete([&](Finding&) { ++completed; });
    log.suppress(*findRule("leaked-set"));
    log.add(findingOf("leaked-set"));
    EXPECT_EQ(completed, 0);
    EXPECT_TRUE(log.takeNew().empty());
}

}  // namespace
}  // namespace vexa::standin
