#include <gtest/gtest.h>
#include <vexastandin/Testing.h>

namespace {

// Loads the add-on into a stand-in host. Each test fails if the add-on breaks the host's contract. Several failures
// from one cause are explained once.
class Repeat : public ::testing::Test {
protected:
    static void fail(const std::string& finding) { ADD_FAILURE() << finding; }
    static inline vexa::standin::FindingCauses causes;

    vexa::standin::AddOnTester addOn{ADDON_FILE};
    vexa::standin::ExpectNoFindings noFindings{addOn.host(), fail, causes};
};

TEST_F(Repeat, RecordsWhatItUnderstood) {
    const auto repeated = addOn.run("REPEAT  TIMES=02 TEXT='Hi'");
    EXPECT_TRUE(repeated.accepted) << repeated;
    EXPECT_EQ(repeated.recorded, std::vector<std::string>{"REPEAT TEXT='Hi' TIMES=2"});
}

TEST_F(Repeat, RecordsNoOptionsAtTheirDefaults) {
    EXPECT_EQ(addOn.run("REPEAT TIMES=1").recorded, std::vector<std::string>{"REPEAT"});
}

TEST_F(Repeat, RefusesAnUnknownOption) {
    const auto refused = addOn.run("REPEAT LOUD=TRUE");
    EXPECT_FALSE(refused.accepted);
    EXPECT_EQ(refused.error, "Unknown option of REPEAT: LOUD; known are TEXT and TIMES");
}

TEST_F(Repeat, ShowsHowFarItIs) {
    addOn.run("REPEAT TIMES=4");
    std::vector<int> percentages;
    for (const auto& line : addOn.host().statusHistory()) percentages.push_back(line.percent);
    EXPECT_EQ(percentages, (std::vector<int>{0, 25, 50, 75, 100, 100}));
}

TEST_F(Repeat, IsStoppedByTheUser) {
    addOn.host().pressStopAtPercent(50);
    const auto stopped = addOn.run("REPEAT TIMES=4");
    EXPECT_EQ(stopped.error, "REPEAT was stopped by the user");
    EXPECT_TRUE(stopped.recorded.empty());
}

}  // namespace
