// What a processor does when memory runs out in the middle.
#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string_view>

#include "processor/ScriptedProcessor.h"
#include "support/FailingAllocator.h"
#include "support/GlobalLocale.h"
#include "vexastandin/Host.h"

namespace vexa::vexautilutil {
namespace {

using Processor = MacroCommandProcessorAbstract;
using tests::Failing;
using tests::FailingAllocator;

class MemoryExhaustion : public testing::TestWithParam<Failing> {
protected:
    // The host is to keep nothing of what it sees.
    MemoryExhaustion() {
        m_host.setKeepsCalls(false);
        m_host.setChecking(false);
    }

    // Runs `operation` with ever more allocations allowed. Only std::bad_alloc may come out, and nothing may leak.
    template <class Operation>
    void sweep(Operation operation) {
        operation();  // what is kept for good from a first use, by the locale or the host, is no leak
        const long before = FailingAllocator::liveBlocks();
        const long points = tests::sweepAllocations(GetParam(), [&](long allowed, Failing failing) {
            const FailingAllocator allocator(allowed, failing);
            try {
                operation();
            } catch (const std::bad_alloc&) {}
            return FailingAllocator::hasFailed();
        });
        EXPECT_GT(points, 0);
        EXPECT_EQ(FailingAllocator::liveBlocks(), before);
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

TEST_P(MemoryExhaustion, LeaksNothingFromConstruction) {
    sweep([] { ScriptedProcessor processor({}); });
}

TEST_P(MemoryExhaustion, LeaksNothingFromReadingACommand) {
    const char* const command =
        "a-long-command-word-of-many-characters TITLE = 'a text of more characters than fit into a string' "
        "ZONES = [1,3,5,7,9,11,13] COUNT = many";
    sweep([&] {
        ScriptedProcessor processor([](Processor& p) {
            std::string word;
            std::string name;
            std::string text;
            toolbox::Set set;
            int64_t count = 0;
            return p.getCommand(word) && p.getNextName(name) && p.getStringValue(text, true) && p.getNextName(name) &&
                   p.getSetValue(set) && p.getNextName(name) && p.getInt64Value(count);
        });
        char* errMsg = nullptr;
        try {
            processor.parseCommandString(command, &errMsg);
        } catch (...) {
            VexaUtilStringDealloc(&errMsg);
            throw;
        }
        VexaUtilStringDealloc(&errMsg);
    });
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

// Writes every kind of value; a text that comes out must be whole.
void writeAll(const toolbox::Set& set) {
    const std::string name = "A_NAME_OF_MORE_THAN_FIFTEEN_CHARACTERS";
    const std::string texts[] = {
        Processor::toNameValueAssignment(name, char{1}), Processor::toNameValueAssignment(name, std::string("text")),
        Processor::toNameValueAssignment(name, 1234.5), Processor::toNameValueAssignment(name, int64_t{1234567}),
        Processor::toNameValueAssignment(name, set)};
    const char* const ends[] = {" = T ", " = 'text' ", "1.234,5 ", " = 1.234.567 ", " = [1-3]"};
    for (std::size_t i = 0; i < std::size(texts); ++i) {
        const bool whole =
            texts[i].size() >= std::string_view(ends[i]).size() &&
            texts[i].compare(texts[i].size() - std::string_view(ends[i]).size(), std::string::npos, ends[i]) == 0;
        if (!whole) throw std::logic_error("a shortened text");
    }
}

TEST_P(MemoryExhaustion, ShortensNoAssignment) {
    const tests::GlobalLocale locale(new tests::GroupedNumbers);  // the road through a stream
    toolbox::Set set;
    set.insert(1, 3);
    sweep([&] { writeAll(set); });
}

}  // namespace
}  // namespace vexa::vexautilutil
