#include "vexautilutil/InvalidInstructionsException.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "support/VirtualSlots.h"

namespace vexa::vexautilutil {
namespace {

TEST(InvalidInstructionsException, JoinsContextAndDetail) {
    const InvalidInstructionsException exception("Instruction file", "missing END");
    EXPECT_EQ(exception.message(), "Instruction file: missing END");
    EXPECT_STREQ(exception.what(), "Instruction file: missing END");
}

TEST(InvalidInstructionsException, KeepsTheColonBetweenEmptyParts) {
    EXPECT_EQ(InvalidInstructionsException("", "").message(), ": ");
    EXPECT_EQ(InvalidInstructionsException("context", "").message(), "context: ");
    EXPECT_EQ(InvalidInstructionsException("", "detail").message(), ": detail");
}

TEST(InvalidInstructionsException, KeepsNulCharacters) {
    EXPECT_EQ(InvalidInstructionsException(std::string("a\0b", 3), "c").message(), std::string("a\0b: c", 6));
}

TEST(InvalidInstructionsException, PrintsItsMessageAndNoStack) {
    testing::internal::CaptureStderr();
    InvalidInstructionsException("a", "b").printStackTrace();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "a: b\n");
}

TEST(InvalidInstructionsException, IsCaughtAsTheBaseOfAllExceptions) {
    EXPECT_THROW(throw InvalidInstructionsException("a", "b"), ExceptionBase);
}

TEST(InvalidInstructionsException, RemembersTheExceptionThatLedToIt) {
    try {
        throw std::runtime_error("cause");
    } catch (const std::runtime_error&) {
        EXPECT_NE(InvalidInstructionsException("a", "b").cause(), nullptr);
    }
    EXPECT_EQ(InvalidInstructionsException("a", "b").cause(), nullptr);
}

TEST(InvalidInstructionsException, AddsNoFields) {
    EXPECT_EQ(sizeof(InvalidInstructionsException), sizeof(ExceptionBase));
}

TEST(InvalidInstructionsException, HasTheSlotsOfItsBase) {
    using Print = void (ExceptionBase::*)() const;
    using PrintTo = void (ExceptionBase::*)(FILE*) const;
    EXPECT_EQ(tests::slotOf(&InvalidInstructionsException::what), 2);
    EXPECT_EQ(tests::slotOf(&InvalidInstructionsException::cause), 3);
    EXPECT_EQ(tests::slotOf(&InvalidInstructionsException::message), 4);
    EXPECT_EQ(tests::slotOf(static_cast<Print>(&InvalidInstructionsException::printStackTrace)), 5);
    EXPECT_EQ(tests::slotOf(static_cast<PrintTo>(&InvalidInstructionsException::printStackTrace)), 6);
}

TEST(InvalidInstructionsException, TakesBothPartsAsTexts) {
    EXPECT_TRUE((std::is_constructible_v<InvalidInstructionsException, std::string, std::string>));
    EXPECT_FALSE((std::is_constructible_v<InvalidInstructionsException, std::string>));
}

}  // namespace
}  // namespace vexa::vexautilutil
