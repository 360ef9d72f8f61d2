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
    const std::string text = testing::internal::GetCapturedStderr();
    const std::size_t firstLine = text.find('\n') + 1;
    const std::size_t secondLine = text.find('\n', firstLine) + 1;
    EXPECT_LT(text.find("libvexahostlibs"), secondLine) << "where the base class was called from: " << text;
    EXPECT_EQ(text.find("libvexahostlibs", secondLine), std::string::npos) << text;
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
