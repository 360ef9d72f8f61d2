// Tests the parts of the binary interface: slots and fields.
#include <gtest/gtest.h>

#include <type_traits>

#include "library/processor/ScriptedProcessor.h"
#include "support/VirtualSlots.h"
#include "vexa/Scanner.h"

namespace vexa::vexautilutil {
namespace {

using Processor = MacroCommandProcessorAbstract;
using tests::fieldAt;
using tests::slotOf;

TEST(MacroCommandProcessor, KeepsTheSlotOrder) {
    // The destructor has slots 0 and 1.
    EXPECT_EQ(slotOf(&Processor::parseCommandString), 2);
    EXPECT_EQ(slotOf(&Processor::recordMacroCommand), 3);
    EXPECT_EQ(slotOf(&Processor::journalMacroCommand), 4);
    EXPECT_EQ(slotOf(&Processor::depositErrorMessage), 5);
    EXPECT_EQ(slotOf(&Processor::getCommand), 6);
    EXPECT_EQ(slotOf(&Processor::getNextName), 7);
    EXPECT_EQ(slotOf(&Processor::getBooleanValue), 8);
    EXPECT_EQ(slotOf(&Processor::getDoubleValue), 9);
    EXPECT_EQ(slotOf(&Processor::getInt32Value), 10);
    EXPECT_EQ(slotOf(&Processor::getInt64Value), 11);
    EXPECT_EQ(slotOf(&Processor::getStringValue), 12);
    EXPECT_EQ(slotOf(&Processor::getSetValue), 13);
    EXPECT_EQ(slotOf(&Processor::processCommand), 14);
    EXPECT_EQ(slotOf(&Processor::composeCommandString), 15);
}

TEST(MacroCommandProcessor, HoldsAPointerToItsImplementationAndNothingElse) {
    EXPECT_EQ(sizeof(Processor), 2 * sizeof(void*));
    static_assert(std::is_abstract_v<Processor>);
    static_assert(!std::is_copy_constructible_v<ScriptedProcessor>);
}

TEST(MacroCommandProcessor, KeepsTheFieldOrderOfItsImplementation) {
    ScriptedProcessor processor([](Processor& p) {
        std::string name;
        int64_t value = 0;
        p.getNextName(name);
        return p.getInt64Value(value);
    });
    const char* const impl = fieldAt<const char*>(processor, sizeof(void*));
    constexpr std::size_t kOptionName = sizeof(Scanner);
    constexpr std::size_t kErrorMessage = kOptionName + sizeof(std::string);
    constexpr std::size_t kOwner = kErrorMessage + sizeof(std::string);
    EXPECT_EQ(fieldAt<std::string>(*impl, kOptionName), "");
    EXPECT_EQ(fieldAt<std::string>(*impl, kErrorMessage), "");
    EXPECT_EQ(fieldAt<Processor*>(*impl, kOwner), &processor);

    outcomeOf(processor, "Count = many");
    EXPECT_TRUE(reinterpret_cast<const Scanner*>(impl)->hasNextToken()) << "the refused word is left";
    EXPECT_EQ(fieldAt<std::string>(*impl, kOptionName), "Count");
    EXPECT_EQ(fieldAt<std::string>(*impl, kErrorMessage), "Error: Invalid Int64 value for command option: Count\n");
}

}  // namespace
}  // namespace vexa::vexautilutil
