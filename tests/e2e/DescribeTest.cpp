// Tests the command `describe` with tests/e2e/check/Described.cpp.

#include "CheckRunnerTest.h"

namespace vexa::e2e {
namespace {

class Describe : public CheckRunnerTest {
protected:
    ProgramResult describe(const std::string& macro, const std::string& addOn = "described") const {
        write("m.macro", macro);
        return runProgram(runner({"describe", std::string(CHECK_ADDONS) + '/' + addOn + ".so", "--macro", "m.macro"}));
    }
};

constexpr const char* kMacro =
    "DESCRIBED LOAD FILE=\"a\" COUNT=5\n"
    "DESCRIBED GREET NAME = 'you' TIMES = 2 STEP = 3 SCALE = 2 LOUD = T ZONES = [1-2] MODE = 'fast'\n"
    "DESCRIBED GREET TIMES = 3\n";

TEST_F(Describe, LearnsFromWhatTheAddOnAccepts) {
    const ProgramResult result = describe(kMacro);
    EXPECT_EQ(result.status, 0) << result.err;
    for (const char* const line : {
             R"("kind": "command")",
             R"({"name": "FILE", "type": "String", "required": true, )",
             R"({"name": "COUNT", "type": "UInt64", "help": "TODO. guessed: UInt64"})",
             R"({"name": "TIMES", "type": "Int64", "min": 1, "help": "TODO. guessed: Int64; 0 is refused"})",
             R"({"name": "STEP", "type": "Int32", "help": "TODO. guessed: Int32, because the high bits)",
             R"({"name": "SCALE", "type": "Double", "help": "TODO. guessed: Double, because 1.5 is accepted"})",
             "another text is refused, so it may be a Choice",
             "\"before\": [\n        \"LOAD FILE=\\\"a\\\" COUNT=5\"\n      ]",
         }) {
        EXPECT_NE(result.out.find(line), std::string::npos) << line << "\n" << result.out;
    }
    EXPECT_EQ(result.out.find("GREET TIMES = 3"), std::string::npos) << "the add-on refuses it\n" << result.out;
}

TEST_F(Describe, DraftsWhatTheCheckAccepts) {
    write("d.json", describe(kMacro).out);
    const ProgramResult result =
        check("described", {"--describe", "d.json", "--only", "description-examples", "--only", "description-options"});
    EXPECT_EQ(result.status, 0) << result.out << result.err;
}

TEST_F(Describe, NeedsACommandOfTheAddOn) {
    const ProgramResult result = describe("OTHER LOAD\n");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "no macro has a command of DESCRIBED\n");
}

}  // namespace
}  // namespace vexa::e2e
