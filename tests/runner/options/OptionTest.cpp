#include "options/Option.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

TEST(Option, TakesFilesWhenItsValueIsNamedSo) {
    std::string value;
    for (const char* name : {"FILE", "FILE.so", "FOLDER", "MACRO", "MACROFILE", "TRACE"}) {
        EXPECT_TRUE(argument(name, "", &value).takesFiles()) << name;
    }
    for (const char* name : {"N", "RULE", "PROFILE"}) EXPECT_FALSE(argument(name, "", &value).takesFiles()) << name;
}

TEST(Option, IsLabelledWithItsLongName) {
    std::string value;
    EXPECT_EQ(option({"-j", "--jobs"}, "N", "", &value).label(), "--jobs");
    EXPECT_EQ(argument("RULE", "", &value).label(), "RULE");
}

}  // namespace
}  // namespace vexa::runner
