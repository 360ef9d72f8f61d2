#include "vexautilutil/MacroCommandError.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "support/VirtualSlots.h"

namespace vexa::vexautilutil {
namespace {

TEST(MacroCommandError, CarriesItsMessageUnchanged) {
    const MacroCommandError error("Expected assignment operator");
    EXPECT_EQ(error.message(), "Expected assignment operator");
    EXPECT_STREQ(error.what(), "Expected assignment operator");
}

TEST(MacroCommandError, IsCaughtAsTheBaseOfAllExceptions) {
    try {
        throw MacroCommandError("bad");
    } catch (const ExceptionBase& error) {
        EXPECT_EQ(error.message(), "bad");
        return;
    }
    FAIL() << "not caught";
}

TEST(MacroCommandError, CapturesNoStackTrace) {
    testing::internal::CaptureStderr();
    MacroCommandError("message").printStackTrace();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "message\n");
}

TEST(MacroCommandError, AddsNothingToItsBase) {
    EXPECT_EQ(sizeof(MacroCommandError), sizeof(ExceptionBase));
    static_assert(std::is_base_of_v<ExceptionBase, MacroCommandError>);
}

TEST(MacroCommandError, IsNotMadeFromATextByAccident) {
    static_assert(!std::is_convertible_v<std::string, MacroCommandError>);
    static_assert(std::is_constructible_v<MacroCommandError, const std::string&>);
    SUCCEED();
}

TEST(MacroCommandError, KeepsTheSlotOrder) {
    using PrintToStderr = void (MacroCommandError::*)() const;
    using PrintToStream = void (MacroCommandError::*)(FILE*) const;
    EXPECT_EQ(tests::slotOf(&MacroCommandError::what), 2);
    EXPECT_EQ(tests::slotOf(&MacroCommandError::cause), 3);
    EXPECT_EQ(tests::slotOf(&MacroCommandError::message), 4);
    EXPECT_EQ(tests::slotOf<PrintToStderr>(&MacroCommandError::printStackTrace), 5);
    EXPECT_EQ(tests::slotOf<PrintToStream>(&MacroCommandError::printStackTrace), 6);
}

}  // namespace
}  // namespace vexa::vexautilutil
