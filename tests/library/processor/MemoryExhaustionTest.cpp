// Tests what getters do if memory runs out. The tests in tests/fault check that nothing leaks and no text is cut.
#include <gtest/gtest.h>

#include "library/processor/ScriptedProcessor.h"
#include "support/FailingAllocator.h"
#include "vexastandin/Host.h"

namespace vexa::vexautilutil {
namespace {

using Processor = MacroCommandProcessorAbstract;
using tests::Failing;
using tests::FailingAllocator;

class MemoryExhaustion : public testing::TestWithParam<Failing> {
protected:
    // The host itself must not allocate, so it keeps no calls and checks no rules.
    MemoryExhaustion() {
        m_host.setKeepsCalls(false);
        m_host.setChecking(false);
    }

    standin::Host m_host;
};
INSTANTIATE_TEST_SUITE_P(Failing, MemoryExhaustion, testing::Values(Failing::Once, Failing::EverAfter));

TEST_P(MemoryExhaustion, KeepsTheMessageBeforeWhenTheNextCannotBeBuilt) {
    int64_t integer = 0;
    double number = 0;
    bool failed = false;
    EXPECT_EQ(outcomeOf("Option = many",
                        [&](Processor& p) {
                            std::string name;
                            p.getNextName(name);
                            p.getInt64Value(integer);
                            const FailingAllocator allocator(0, GetParam());
                            p.getDoubleValue(number);
                            failed = FailingAllocator::hasFailed();
                            return false;
                        }),
              "Error: Invalid Int64 value for command option: Option\n");
    EXPECT_TRUE(failed);
}

TEST_P(MemoryExhaustion, FailsAGetterOfTextsWithoutAnException) {
    std::string value;
    bool accepted = true;
    EXPECT_EQ(outcomeOf("'a text of more characters than fit into a string object'",
                        [&](Processor& p) {
                            const FailingAllocator allocator(0, GetParam());
                            accepted = p.getStringValue(value, true);
                            return false;
                        }),
              "");
    EXPECT_FALSE(accepted);
    EXPECT_EQ(value, "a text of more ") << "what was read so far";
}

TEST(MemoryExhaustionOfSets, IsReportedAsAMessage) {
    const standin::Host host;
    long internalErrors = 0;
    for (long allowed = 0; allowed < 10; ++allowed) {
        const Outcome outcome = outcomeOf("[1,3,5,7,9]", [&](Processor& p) {
            toolbox::Set set;
            const FailingAllocator allocator(allowed, Failing::Once);
            return p.getSetValue(set);
        });
        if (outcome == "Error: Internal error processing Set syntax.") ++internalErrors;
    }
    EXPECT_GT(internalErrors, 0);
}

}  // namespace
}  // namespace vexa::vexautilutil
