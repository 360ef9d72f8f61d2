// Tests commands whose add-on is not loaded.

#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

class UnknownId : public RunnerTest {
protected:
    ProgramResult runWithTwo(const std::vector<std::string>& options) const {
        std::vector<std::string> arguments = {"run", "m.macro", "--addon", ADDON_SECOND, "--addon", ADDON_ONE};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return runProgram(runner(arguments));
    }
};

TEST_F(UnknownId, IsToldBesideTheLoadedOnesAndTheOneThatIsMeant) {
    write("m.macro", "one ECHO a\nSECNOD ECHO b\nOTHER ECHO c\n");
    const ProgramResult result = runWithTwo({});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err,
              "m.macro:1: no add-on 'one' is loaded (loaded: ONE, SECOND); did you mean ONE?\n"
              "m.macro:2: no add-on 'SECNOD' is loaded (loaded: ONE, SECOND); did you mean SECOND?\n"
              "m.macro:3: no add-on 'OTHER' is loaded (loaded: ONE, SECOND)\n");
}

TEST_F(UnknownId, RefusesTheWholeFile) {
    write("m.macro", "ONE ECHO a\nOTHER ECHO b\n");
    EXPECT_EQ(runWithTwo({}).out, "");
}

TEST_F(UnknownId, RefusesItsCommandsOnlyWhenTheRunKeepsGoing) {
    write("m.macro", "ONE ECHO a\nOTHER ECHO b\nOTHER\nONE ECHO c\n");
    const ProgramResult result = runWithTwo({"--keep-going", "--verbose", "--record", "r.macro"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "a\nc\n");
    EXPECT_EQ(result.err,
              "m.macro:1: ONE ECHO a\n"
              "m.macro:2: OTHER ECHO b\n"
              "m.macro:2: no add-on 'OTHER' is loaded (loaded: ONE, SECOND)\n"
              "m.macro:3: OTHER\n"
              "m.macro:3: no add-on 'OTHER' is loaded (loaded: ONE, SECOND)\n"
              "m.macro:4: ONE ECHO c\n"
              "4 commands run, 2 failed; 0 recorded in r.macro\n");
}

TEST_F(UnknownId, IsAFailedCommandInTheResults) {
    write("m.macro", "OTHER ECHO b\n");
    const ProgramResult result = runWithTwo({"--keep-going", "--json", "-"});
    const std::string expected = R"-("addOn":"OTHER","command":"ECHO b","accepted":false,)-"
                                 R"-("error":"no add-on 'OTHER' is loaded (loaded: ONE, SECOND)")-";
    EXPECT_NE(result.out.find(expected), std::string::npos) << result.out;
}

TEST_F(UnknownId, LeavesOtherProblemsToTheFile) {
    write("m.macro", "ONE ECHO a\nOTHER ECHO b\nONE\n");
    const ProgramResult result = runWithTwo({"--keep-going"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "m.macro:3: expected a command after 'ONE'\n");
}

}  // namespace
}  // namespace vexa::e2e
