#include <ostream>

#include "CheckRunnerTest.h"

namespace vexa::e2e {
namespace {

using Check = CheckRunnerTest;

struct RuleBroken {
    const char* command;  // named after its rule
    const char* test;
    const char* outcome;
};

// For the names of the tests.
std::ostream& operator<<(std::ostream& out, const RuleBroken& broken) { return out << broken.command; }

class BrokenRule : public Check, public ::testing::WithParamInterface<RuleBroken> {
protected:
    ProgramResult result(const std::vector<std::string>& more = {}) const {
        write("m.macro", std::string("MISBEHAVING ") + GetParam().command + '\n');
        std::vector<std::string> arguments = {"check",  ADDON_MISBEHAVING, "--macro",   "m.macro",
                                              "--only", GetParam().test,   "--timeout", "2"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return runProgram(runner(arguments));
    }
};

TEST_P(BrokenRule, IsFoundAndCanBeReproduced) {
    const ProgramResult found = result({"--warnings-as-errors"});
    EXPECT_EQ(found.status, 1);
    EXPECT_TRUE(cameOut(found, GetParam().test, GetParam().outcome)) << found.out;
    EXPECT_TRUE(has(found, GetParam().command)) << found.out;
    const ProgramResult again = reproduced(found);
    EXPECT_GT(again.status, 0) << found.out << again.out << again.err;
    EXPECT_LT(again.status, 5) << again.status;
    EXPECT_NE(again.status, 2) << again.err;
}

TEST_P(BrokenRule, PassesWithItsWellBehavedTwin) {
    write("m.macro", std::string("MISBEHAVING ") + GetParam().command + "-twin\n");
    const ProgramResult well =
        runProgram(runner({"check", ADDON_MISBEHAVING, "--macro", "m.macro", "--only", GetParam().test}));
    EXPECT_TRUE(cameOut(well, GetParam().test, "passed")) << well.out;
    EXPECT_EQ(well.status, 0);
}

INSTANTIATE_TEST_SUITE_P(OfEachKind, BrokenRule,
                         ::testing::ValuesIn(std::vector<RuleBroken>{
                             {"unbalanced-lock", "commands-alone", "failed"},
                             {"lock-identity", "commands-alone", "failed"},
                             {"unbalanced-auxdata", "commands-alone", "failed"},
                             {"unbalanced-marking", "commands-alone", "failed"},
                             {"unbalanced-solution-time", "commands-alone", "failed"},
                             {"unbalanced-status", "commands-alone", "failed"},
                             {"status-started-twice", "commands-alone", "failed"},
                             {"status-not-started", "commands-alone", "failed"},
                             {"percent-out-of-range", "commands-alone", "warned"},
                             {"percent-backwards", "commands-alone", "warned"},
                             {"use-after-free", "commands-alone", "failed"},
                             {"double-free", "commands-alone", "failed"},
                             {"foreign-handle", "commands-alone", "failed"},
                             {"null-handle", "commands-alone", "failed"},
                             {"null-address", "commands-alone", "failed"},
                             {"leaked-arglist", "commands-alone", "failed"},
                             {"leaked-string", "commands-alone", "failed"},
                             {"leaked-mutex", "commands-alone", "failed"},
                             {"leaked-set", "commands-alone", "failed"},
                             {"mutex-not-held", "commands-alone", "failed"},
                             {"mutex-locked-twice", "commands-alone", "failed"},
                             {"mutex-freed-locked", "commands-alone", "failed"},
                             {"mutex-left-locked", "commands-alone", "failed"},
                             {"string-overrun", "commands-alone", "failed"},
                             {"string-unterminated", "commands-alone", "failed"},
                             {"foreign-errmsg", "commands-alone", "failed"},
                             {"errmsg-on-success", "commands-alone", "failed"},
                             {"missing-errmsg", "commands-alone", "warned"},
                             {"missing-argument", "commands-alone", "failed"},
                             {"duplicate-argument", "commands-alone", "failed"},
                             {"wrong-argument-kind", "commands-alone", "failed"},
                             {"wrong-thread", "commands-alone", "failed"},
                             {"escaped-exception", "commands-alone", "failed"},
                             {"command-timeout", "commands-alone", "timed out"},
                             {"recording-not-replayable", "record-replay", "failed"},
                         }),
                         [](const auto& broken) {
                             std::string name = broken.param.command;
                             for (char& c : name) c = c == '-' ? '_' : c;
                             return name;
                         });

TEST_F(Check, LetsASuppressedRulePass) {
    write("m.macro", "MISBEHAVING leaked-arglist\n");
    const ProgramResult result = runProgram(runner({"check", ADDON_MISBEHAVING, "--macro", "m.macro", "--only",
                                                    "commands-alone", "--suppress", "leaked-arglist"}));
    EXPECT_EQ(result.status, 0) << result.out;
}

TEST_F(Check, TakesTheProjectFile) {
    write("vexa-standin.toml", "suppress = [\"leaked-arglist\"]\n");
    write("m.macro", "MISBEHAVING leaked-arglist\n");
    const ProgramResult result =
        runProgram(runner({"check", ADDON_MISBEHAVING, "--macro", "m.macro", "--only", "commands-alone"}));
    EXPECT_EQ(result.status, 0) << result.out;
}

}  // namespace
}  // namespace vexa::e2e
