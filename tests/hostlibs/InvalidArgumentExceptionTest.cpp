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
    const std::string text = testing::internal::GetCapturedStderr();
    const std::size_t firstLine = text.find('\n') + 1;
    const std::size_t secondLine = text.find('\n', firstLine) + 1;
    EXPECT_LT(text.find("libvexahostlibs"), secondLine) << "where the base class was called from: " << text;
    EXPECT_EQ(text.find("libvexahostlibs", secondLine), std::string::npos) << text;
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
