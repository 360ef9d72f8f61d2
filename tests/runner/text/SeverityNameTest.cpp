#include "text/SeverityName.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

TEST(SeverityName, IsTheWordThatMessagesStartWith) {
    EXPECT_STREQ(nameOf(standin::Severity_e::Error), "error");
    EXPECT_STREQ(nameOf(standin::Severity_e::Warning), "warning");
}

}  // namespace
}  // namespace vexa::runner
