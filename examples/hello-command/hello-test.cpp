#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "vexastandin/Testing.h"

namespace {

using vexa::standin::AddOnTester;
using vexa::standin::ExpectNoFindings;
using vexa::standin::TestedCommand;

// The add-on in a host of its own; a breach of the host's contract fails the test.
class Hello : public ::testing::Test {
protected:
    AddOnTester m_addOn{HELLO_ADDON};

private:
    ExpectNoFindings m_expectation{m_addOn.host(), [](const std::string& finding) { ADD_FAILURE() << finding; }};
};

TEST_F(Hello, IsRecordedWithItsDefaults) {
    const TestedCommand hello = m_addOn.run("hello");
    EXPECT_TRUE(hello.accepted) << hello;
    EXPECT_EQ(hello.recorded, std::vector<std::string>{"HELLO TIMES = 1 LOUD = F "});
}

TEST_F(Hello, RecordsWhatGivesTheSameAgain) {
    const TestedCommand hello = m_addOn.run("HELLO loud = yes times = 2");
    ASSERT_EQ(hello.recorded, std::vector<std::string>{"HELLO TIMES = 2 LOUD = T "}) << hello;
    EXPECT_EQ(m_addOn.run(hello.recorded.front()).recorded, hello.recorded);
}

TEST_F(Hello, SaysWhatIsWrongAndRecordsNothing) {
    struct Case {
        const char* command;
        const char* error;
    };
    const Case cases[] = {
        {"GOODBYE", "Error: Expected HELLO, but found GOODBYE"},
        {"HELLO times = 0", "Error: TIMES must be from 1 to 100"},
        {"HELLO times = 101", "Error: TIMES must be from 1 to 100"},
        {"HELLO times = often", "Error: Invalid Int64 value for command option: times\n"},
        {"HELLO loud", "Error: Expected = after LOUD"},
        {"HELLO loud T", "Error: Expected = after LOUD"},
        {"HELLO name = you", "Error: Unknown option NAME"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.command);
        const TestedCommand refused = m_addOn.run(c.command);
        EXPECT_FALSE(refused.accepted);
        EXPECT_EQ(refused.error, c.error);
        EXPECT_TRUE(refused.recorded.empty());
    }
}

}  // namespace
