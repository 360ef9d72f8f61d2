// What the command model does when memory runs out: std::bad_alloc comes out, and nothing is lost.
#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <stdexcept>

#include "macro/Tokens.h"
#include "support/FailingAllocator.h"
#include "support/GlobalLocale.h"
#include "vexautilutil/BooleanMacroOption.h"
#include "vexautilutil/SetMacroOption.h"
#include "vexautilutil/StringMacroOption.h"
#include "vexautilutil/UInt64MacroOption.h"

namespace vexa::vexautilutil {
namespace {

using tests::Failing;
using tests::FailingAllocator;

class MacroMemoryExhaustion : public testing::TestWithParam<Failing> {
protected:
    // Only std::bad_alloc may come out of `operation`, and nothing may leak.
    template <class Operation>
    void sweep(Operation operation) {
        operation();  // what is kept for good from a first use, by the locale or the host, is no leak
        const long before = FailingAllocator::liveBlocks();
        const long points = tests::sweepAllocations(GetParam(), [&](long allowed, Failing failing) {
            const FailingAllocator allocator(allowed, failing);
            bool refused = false;
            try {
                operation();
            } catch (const std::bad_alloc&) {
                refused = true;
            }
            if (FailingAllocator::hasFailed() != refused) throw std::logic_error("a failure was swallowed");
            return refused;
        });
        EXPECT_GT(points, 0);
        EXPECT_EQ(FailingAllocator::liveBlocks(), before);
    }

    // Parses and renders the one option of `text`.
    template <class Option, class... Default>
    void sweepOption(const std::string& text, Default... byDefault) {
        const MacroTokenizer tokens = MacroCommandAbstract::tokenize(text);
        sweep([&] {
            MacroTokenIterator current = tokens.begin();
            const MacroTokenIterator end = tokens.end();
            const Option option(current, end, byDefault...);
            const std::string rendered = option.toString();
            if (rendered != text) throw std::logic_error("a shortened text: " + rendered);
        });
    }
};
INSTANTIATE_TEST_SUITE_P(Failing, MacroMemoryExhaustion, testing::Values(Failing::Once, Failing::EverAfter));

TEST_P(MacroMemoryExhaustion, ComesOutOfABooleanOption) {
    sweepOption<BooleanMacroOption>("ANAMEOFMORETHANFIFTEENCHARACTERS=TRUE", nullptr);
}

TEST_P(MacroMemoryExhaustion, ComesOutOfAUInt64Option) {
    sweepOption<UInt64MacroOption>("ANAMEOFMORETHANFIFTEENCHARACTERS=12345678901234567890", nullptr);
}

TEST_P(MacroMemoryExhaustion, ComesOutOfAUInt64OptionUnderAnotherLocale) {
    const tests::GlobalLocale locale(new tests::GroupedNumbers);
    sweepOption<UInt64MacroOption>("ANAMEOFMORETHANFIFTEENCHARACTERS=12.345.678.901.234.567.890", nullptr);
}

TEST_P(MacroMemoryExhaustion, ComesOutOfAStringOption) {
    const std::string byDefault = "a default of more than fifteen characters";
    sweepOption<StringMacroOption>("ANAMEOFMORETHANFIFTEENCHARACTERS=\"a text of more than fifteen characters\"",
                                   &byDefault);
}

TEST_P(MacroMemoryExhaustion, ComesOutOfASetOption) {
    toolbox::Set byDefault;
    byDefault.insert(1, 3);
    sweepOption<SetMacroOption>("ANAMEOFMORETHANFIFTEENCHARACTERS=[1,3,5,7,9,11,13,15]", true, &byDefault);
}

TEST_P(MacroMemoryExhaustion, LeavesACommandAsItWas) {
    class Command : public MacroCommandAbstract {
    public:
        using MacroCommandAbstract::MacroCommandAbstract;
        void execute() override {}
    };
    const std::string name = "ANAMEOFMORETHANFIFTEENCHARACTERS";
    const auto option = std::make_shared<BooleanMacroOption>(name, true, nullptr);
    sweep([&] {
        Command command(name);
        try {
            command.addOption(option);
        } catch (const std::bad_alloc&) {
            if (!command.options().empty()) throw std::logic_error("half an option was added");
            throw;
        }
        if (command.toString() != name + ' ' + name + "=TRUE") throw std::logic_error("a shortened text");
    });
    EXPECT_EQ(option.use_count(), 1);
}

}  // namespace
}  // namespace vexa::vexautilutil
