#include "system/files/PathFromHere.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace vexa::runner {
namespace {

TEST(PathFromHere, IsRelativeBelowTheCurrentFolder) {
    const std::filesystem::path here = std::filesystem::current_path();
    EXPECT_EQ(pathFromHere("./t/../m.macro"), "m.macro");
    EXPECT_EQ(pathFromHere((here / "t" / "m.macro").string()), "t/m.macro");
}

TEST(PathFromHere, IsAbsoluteElsewhere) {
    const std::filesystem::path here = std::filesystem::current_path();
    EXPECT_EQ(pathFromHere("/no/m.macro"), "/no/m.macro");
    EXPECT_EQ(pathFromHere("../m.macro"), (here.parent_path() / "m.macro").string());
}

}  // namespace
}  // namespace vexa::runner
