#include "vexa/InvalidArgumentException.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace vexa {
namespace {

TEST(InvalidArgumentException, CanBeCaughtAsItsBases) {
    EXPECT_THROW(throw InvalidArgumentException("message"), ExceptionBase);
    EXPECT_THROW(throw InvalidArgumentException("message"), std::exception);
}

TEST(InvalidArgumentException, CarriesItsMessage) {
    EXPECT_EQ(InvalidArgumentException("message").message(), "message");
    EXPECT_STREQ(InvalidArgumentException("message").what(), "message");
}

TEST(InvalidArgumentException, CapturesNoStackTraceByDefault) {
    testing::internal::CaptureStderr();
    InvalidArgumentException("message").printStackTrace();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "message\n");
}

TEST(InvalidArgumentException, CapturesAStackTraceWhenAsked) {
    testing::internal::CaptureStderr();
    InvalidArgumentException("message", true).printStackTrace();
    EXPECT_NE(testing::internal::GetCapturedStderr(), "message\n");
}

TEST(InvalidArgumentException, TakesTheExceptionBeingHandledForItsCause) {
    try {
        throw 5;
    } catch (int) {
        EXPECT_NE(InvalidArgumentException("message").cause(), nullptr);
    }
}

TEST(InvalidArgumentException, IsMadeFromNoTextUnasked) {
    EXPECT_FALSE((std::is_convertible_v<std::string, InvalidArgumentException>));
}

}  // namespace
}  // namespace vexa
