#include "stacks/OwnCode.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

TEST(OwnCode, KnowsTheLibrariesThatAddOnsShare) {
    for (const char* const object : {"/usr/lib/libstdc++.so.6", "libc.so.6", "./libvexautilutil_utils.so.1"}) {
        EXPECT_TRUE(isSharedLibrary(object)) << object;
    }
    for (const char* const object : {"./stats.so", "/libc.so.6/stats.so", "libcurves.so", ""}) {
        EXPECT_FALSE(isSharedLibrary(object)) << object;
    }
}

TEST(OwnCode, KnowsTheLibrariesThroughWhichAddOnsCallTheHost) {
    EXPECT_TRUE(isBetweenAddOnAndHost("/x/libvexautilutil_utils.so.1"));
    EXPECT_TRUE(isBetweenAddOnAndHost("libvexahostlibs.so"));
    EXPECT_FALSE(isBetweenAddOnAndHost("libstdc++.so.6"));
}

TEST(OwnCode, IsNotThatOfHeadersOfTheSystemAndTheLibrary) {
    for (const char* const file : {"/usr/include/c++/12/vector", "/usr/lib/llvm-14/include/c++/v1/vector",
                                   "/opt/x/include/vexautilutil/HostGuards.h", "/opt/gcc/include/c++/13/map"}) {
        EXPECT_FALSE(isOwnSource({"f", file, 3, "", 0})) << file;
        EXPECT_TRUE(isForeignSource({"f", file, 3, "", 0})) << file;
    }
    for (const char* const file : {"/home/a/src/Stats.cpp", "/usr/src/stats/Stats.cpp", "/home/a/include/Stats.h"}) {
        EXPECT_TRUE(isOwnSource({"f", file, 3, "", 0})) << file;
        EXPECT_FALSE(isForeignSource({"f", file, 3, "", 0})) << file;
    }
    EXPECT_FALSE(isOwnSource({"f", "", 0, "./stats.so", 0}));
    EXPECT_FALSE(isForeignSource({"f", "", 0, "./stats.so", 0}));
}

}  // namespace
}  // namespace vexa::runner
