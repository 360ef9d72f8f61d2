#include "vexa/OutOfMemoryException.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace vexa {
namespace {

TEST(OutOfMemoryException, CanBeCaughtAsItsBases) {
    EXPECT_THROW(throw OutOfMemoryException("message"), ExceptionBase);
    EXPECT_THROW(throw OutOfMemoryException("message"), std::exception);
}

TEST(OutOfMemoryException, CarriesItsMessage) {
    EXPECT_EQ(OutOfMemoryException("message").message(), "message");
    EXPECT_STREQ(OutOfMemoryException("message").what(), "message");
}

TEST(OutOfMemoryException, CapturesNoStackTraceByDefault) {
    testing::internal::CaptureStderr();
    OutOfMemoryException("message").printStackTrace();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "message\n");
}

TEST(OutOfMemoryException, CapturesAStackTraceWhenAsked) {
    testing::internal::CaptureStderr();
    OutOfMemoryException("message", true).printStackTrace();
    EXPECT_NE(testing::internal::GetCapturedStderr(), "message\n");
}

TEST(OutOfMemoryException, TakesTheExceptionBeingHandledForItsCause) {
    try {
        throw 5;
    } catch (int) {
        EXPECT_NE(OutOfMemoryException("message").cause(), nullptr);
    }
}

TEST(OutOfMemoryException, IsMadeFromNoTextUnasked) {
    EXPECT_FALSE((std::is_convertible_v<std::string, OutOfMemoryException>));
}

}  // namespace
}  // namespace vexa
