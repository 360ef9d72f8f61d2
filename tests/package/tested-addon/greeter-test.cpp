#include <gtest/gtest.h>
#include <vexastandin/Testing.h>

TEST(Greeter, RecordsWhatItUnderstood) {
    vexa::standin::AddOnTester greeter("./libgreeter.so");
    const auto fail = [](const std::string& finding) { ADD_FAILURE() << finding; };
    const vexa::standin::ExpectNoFindings expectation(greeter.host(), fail);
    const vexa::standin::TestedCommand greeted = greeter.run("GREET times = 2");
    EXPECT_TRUE(greeted.accepted) << greeted;
    EXPECT_EQ(greeted.recorded, std::vector<std::string>{"GREET TIMES = 2 "});
}
