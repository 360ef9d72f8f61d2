#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

using ListCommand = RunnerTest;

TEST_F(ListCommand, ShowsIdTitleAndFileInTheOrderOfLoading) {
    const ProgramResult result =
        runProgram(runner({"list", "--addon", ADDON_SECOND, "--addon", ADDON_UNTITLED, "--addon", ADDON_ONE}));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, "SECOND    Größe      " ADDON_SECOND
                          "\n"
                          "UNTITLED  -          " ADDON_UNTITLED
                          "\n"
                          "ONE       The first  " ADDON_ONE "\n");
}

TEST_F(ListCommand, TakesFilesWithAndWithoutAnOption) {
    const ProgramResult result = runProgram(runner({"list", ADDON_SECOND, ADDON_UNTITLED, "--addon", ADDON_ONE}));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(
        result.out,
        runProgram(runner({"list", "--addon", ADDON_SECOND, "--addon", ADDON_UNTITLED, "--addon", ADDON_ONE})).out);
}

TEST_F(ListCommand, TellsOfEveryAddOnThatCannotBeLoaded) {
    write("text.so", "not a library");
    const ProgramResult result =
        runProgram(runner({"list", "--addon", "./gone.so", "--addon", ADDON_ONE, "--addon", ADDON_ONE_AGAIN, "--addon",
                           NO_ADDON, "--addon", ADDON_REFUSING, "--addon", "./text.so"}));
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err,
              "./gone.so: no such file\n" ADDON_ONE_AGAIN ": an add-on ONE is already loaded, from " ADDON_ONE
              "\n" NO_ADDON ": it does not export the function vexaAddOn, so it is not an add-on\n" ADDON_REFUSING
              ": it refuses to be loaded (its entry returned null)\n"
              "./text.so: not a shared object\n");
}

}  // namespace
}  // namespace vexa::e2e
