#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "CheckRunnerTest.h"

namespace vexa::e2e {
namespace {

// The description of tests/e2e/check/Described.cpp.
std::string rightDescription() {
    std::ifstream file(VEXA_DOCS "/../tests/e2e/check/described.commands.json");
    return {std::istreambuf_iterator<char>(file), {}};
}

class CheckDescription : public CheckRunnerTest {
protected:
    /// Checks the add-on with the description in which \p from is \p to.
    ProgramResult checkChanged(const std::string& from, const std::string& to,
                               const std::vector<std::string>& more = {}) const {
        std::string text = rightDescription();
        const std::size_t at = text.find(from);
        if (at == std::string::npos) return {-1, "the description does not have " + from, ""};
        text.replace(at, from.size(), to);
        write("d.json", text);
        std::vector<std::string> options = {"--describe", "d.json"};
        for (const char* test : {"examples", "options", "refusals", "complete"}) {
            options.insert(options.end(), {"--only", std::string("description-") + test});
        }
        options.insert(options.end(), more.begin(), more.end());
        return check("described", options);
    }
};

TEST_F(CheckDescription, PassesTheRightDescription) {
    const ProgramResult result = checkChanged("Greets.", "Greets.");
    EXPECT_EQ(result.status, 0) << result.out << result.err;
    EXPECT_TRUE(has(result, "check passed: 5 passed\n")) << result.out;
}

TEST_F(CheckDescription, NoticesEachWayToBeStale) {
    struct Case {
        const char* why;
        const char* from;
        const char* to;
        const char* mistake;
    };
    const Case cases[] = {
        {"an option of the processor is dropped",
         R"({"name": "TIMES", "type": "Int64", "default": 1, "min": 1, "max": 100, "help": "how often"},)", "",
         "records DESCRIBED GREET NAME = 'you' TIMES = 2 STEP = 1 : GREET has no option TIMES"},
        {"one that is neither recorded nor in an example is dropped",
         R"({"name": "SCALE", "type": "Double", "default": 1, "help": "a factor"},)", "",
         "GREET has an option SCALE, which is not described"},
        {"an option of the command is dropped",
         R"({"name": "HEADER", "type": "Boolean", "default": false, "help": "whether there is a header"},)", "",
         "LOAD has an option HEADER, which is not described"},
        {"an option is added", R"({"name": "LOUD",)",
         R"({"name": "QUIET", "type": "Boolean", "help": "h"}, {"name": "LOUD",)",
         "refuses GREET NAME = 'you' QUIET = TRUE (QUIET with a value of its type): Error: Unknown option QUIET"},
        {"an option of the command is added", R"({"name": "COUNT",)",
         R"({"name": "SKIP", "type": "UInt64", "help": "h"}, {"name": "COUNT",)",
         "refuses LOAD FILE=\"a b\" SKIP=1 (SKIP with a value of its type): Unknown option SKIP"},
        {"Int64 as Int32", R"("TIMES", "type": "Int64")", R"("TIMES", "type": "Int32")",
         "(TIMES with a value of which an Int32 uses the low 32 bits): Error: TIMES must be from 1 to 100"},
        {"Int64 as Double", R"("TIMES", "type": "Int64")", R"("TIMES", "type": "Double")",
         "refuses GREET NAME = 'you' TIMES = 2.5 (TIMES with a fraction)"},
        {"Int64 as Boolean", R"("TIMES", "type": "Int64", "default": 1, "min": 1, "max": 100)",
         R"("TIMES", "type": "Boolean")", "refuses GREET NAME = 'you' TIMES = TRUE (TIMES that is true)"},
        {"Int64 as String", R"("TIMES", "type": "Int64", "default": 1, "min": 1, "max": 100)",
         R"("TIMES", "type": "String", "default": "1")",
         "refuses GREET NAME = 'you' TIMES = '1' (TIMES at its default)"},
        {"Int32 as Int64", R"("STEP", "type": "Int32", "default": 1)",
         R"("STEP", "type": "Int64", "default": 1, "max": 9)",
         "accepts GREET NAME = 'you' STEP = 4294967305 (STEP above its maximum)"},
        {"Int32 as Int64 without a maximum", R"("STEP", "type": "Int32", "default": 1)",
         R"("STEP", "type": "Int64", "default": 1)",
         "records GREET NAME = 'you' STEP = 4294967297 with STEP = 1: it reads an Int32, not an Int64"},
        {"Double as Int64", R"("SCALE", "type": "Double")", R"("SCALE", "type": "Int64")",
         "accepts GREET NAME = 'you' SCALE = 1.5 (SCALE with a value that is no Int64)"},
        {"Boolean as Choice", R"("LOUD", "type": "Boolean", "default": false)",
         R"("LOUD", "type": "Choice", "values": ["T"])", "refuses GREET NAME = 'you' LOUD = 'T' (LOUD with T)"},
        {"Set as String", R"("type": "Set", "help": "the zones"},
       {"name": "MODE")",
         R"("type": "String", "help": "the zones"},
       {"name": "MODE")",
         "refuses GREET NAME = 'you' ZONES = 'text' (ZONES with a value of its type)"},
        {"String as Set", R"("NAME", "type": "String")", R"("NAME", "type": "Set")",
         "has the example DESCRIBED GREET NAME = 'you'"},
        {"String as Choice", R"("name": "NAME", "type": "String", "required": true, "mayBeEmpty": false,)",
         R"("name": "NAME", "type": "Choice", "required": true, "values": ["you"],)",
         "accepts GREET NAME = 'VEXACHECK' TIMES = 2 (NAME with a value that is not in the list)"},
        {"UInt64 as Boolean", R"("COUNT", "type": "UInt64", "default": 10)", R"("COUNT", "type": "Boolean")",
         "has the example DESCRIBED LOAD ZONES=[1-3] FILE='a' COUNT=5: COUNT: expected TRUE or FALSE"},
        {"Boolean as UInt64", R"("HEADER", "type": "Boolean", "default": false)", R"("HEADER", "type": "UInt64")",
         "refuses LOAD FILE=\"a b\" HEADER=1 (HEADER with a value of its type)"},
        {"another default", R"("TIMES", "type": "Int64", "default": 1)", R"("TIMES", "type": "Int64", "default": 2)",
         "records GREET NAME = 'you' with TIMES = 1, but its default is described as 2"},
        {"another default of a command", R"("default": 10)", R"("default": 11)",
         "records LOAD FILE=\"a b\" COUNT=11 with COUNT=11, but omits defaults of other options: it has another "
         "default"},
        {"another default of a Boolean", R"("HEADER", "type": "Boolean", "default": false)",
         R"("HEADER", "type": "Boolean", "default": true)", "but omits defaults of other options"},
        {"a larger range", R"("max": 100)", R"("max": 101)",
         "refuses GREET NAME = 'you' TIMES = 101 (TIMES at its maximum): Error: TIMES must be from 1 to 100"},
        {"a smaller range", R"("max": 100)", R"("max": 99)",
         "accepts GREET NAME = 'you' TIMES = 100 (TIMES above its maximum)"},
        {"a value too many", R"(["fast", "slow"])", R"(["fast", "slow", "late"])",
         "refuses GREET NAME = 'you' MODE = 'late' (MODE with late): Error: MODE must be fast or slow"},
        {"an option that is not required", R"("ZONES", "type": "Set",)", R"("ZONES", "type": "Set", "required": true,)",
         "accepts LOAD FILE='a' COUNT=5 (without the required option ZONES)"},
        {"a required option as one that is not", R"("required": true, "help": "the file")", R"("help": "the file")",
         "refuses LOAD (with only its required options): FILE is missing"},
        {"an option that may be repeated", R"("COUNT", "type": "UInt64",)",
         R"("COUNT", "type": "UInt64", "repeatable": true,)",
         "(COUNT given twice): Duplicate macro command option COUNT"},
        {"a text that may be empty", R"("ZONES", "type": "Set", "help": "the zones"}],)",
         R"("ZONES", "type": "Set", "mayBeEmpty": false, "help": "the zones"}],)",
         "accepts LOAD ZONES=[ ] FILE='a' COUNT=5 (ZONES that is empty)"},
        {"the other kind of command", R"("kind": "processor")", R"("kind": "command")", "d.json: /commands/1/options/"},
        {"another add-on", R"("addon": "DESCRIBED")", R"("addon": "OTHER")",
         "the description d.json is of the add-on OTHER, but the id of this add-on is DESCRIBED"},
        {"an example that fails", "TIMES = 2", "TIMES = 200",
         "has the example DESCRIBED GREET NAME = 'you' TIMES = 200"},
        {"a command of the processor is dropped", R"({"name": "GREET",)", R"({"name": "GREETS",)",
         "the add-on has a command GREET, which is not described"},
        {"a command that is not there", R"({"name": "GREET",)",
         R"({"name": "WAVE", "kind": "processor", "purpose": "p"}, {"name": "GREET",)",
         "refuses WAVE (with only its required options): Error: Unknown command WAVE"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        const ProgramResult result = checkChanged(c.from, c.to);
        EXPECT_NE(result.status, 0);
        EXPECT_NE((result.out + result.err).find(c.mistake), std::string::npos) << result.out << result.err;
    }
}

TEST_F(CheckDescription, AcceptsTheEmptySetAsADefaultOfTheProcessor) {
    const std::string zones = R"(       {"name": "ZONES", "type": "Set",)";
    const ProgramResult result = checkChanged(zones + R"( "help": "the zones"},
       {"name": "MODE")",
                                              zones + R"( "default": "[]", "help": "the zones"},
       {"name": "MODE")");
    EXPECT_EQ(result.status, 0) << result.out << result.err;
}

TEST_F(CheckDescription, KeepsTheMacroOfTheFirstMistake) {
    const ProgramResult result = checkChanged(R"("max": 100)", R"("max": 101)");
    EXPECT_TRUE(has(result, "tried: of the description: DESCRIBED GREET NAME = 'you' TIMES = 101\n")) << result.out;
    EXPECT_TRUE(has(result, "reproduce: ")) << result.out;
    EXPECT_EQ(read("vexa-standin-check-description-options.macro"),
              "DESCRIBED LOAD FILE=\"a\"\nDESCRIBED GREET NAME = 'you' TIMES = 101\n");
}

TEST_F(CheckDescription, ComparesTheMacrosWithTheDescription) {
    write("m.macro", "DESCRIBED LOAD FILE=\"a\"\nDESCRIBED GREET NAME = 'x' LOUD = T\n");
    const ProgramResult result = checkChanged(
        R"({"name": "LOUD", "type": "Boolean", "default": false, "help": "in capitals"},)", "", {"--macro", "m.macro"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(has(result, "m.macro:2 has DESCRIBED GREET NAME = 'x' LOUD = T: GREET has no option LOUD"))
        << result.out;
}

TEST_F(CheckDescription, IsNotTestedWithoutADescription) {
    EXPECT_FALSE(has(check("described", {"--level", "1"}), "description"));
    const ProgramResult result = check("described", {"--only", "description-options"});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(cameOut(result, "description-options", "skipped")) << result.out;
    EXPECT_TRUE(has(result, "described.commands.json")) << result.out;
}

TEST_F(CheckDescription, IsFoundBesideTheAddOn) {
    std::filesystem::copy_file(CHECK_ADDONS "/described.so", folder() / "described.so");
    write("described.commands.json", rightDescription());
    const ProgramResult result = runProgram(runner({"check", "./described.so", "--only", "description-examples"}));
    EXPECT_EQ(result.status, 0) << result.out << result.err;
    EXPECT_TRUE(cameOut(result, "description-examples", "passed")) << result.out;
}

TEST_F(CheckDescription, RefusesAWrongDescription) {
    write("d.json", "{}");
    const ProgramResult result = check("described", {"--describe", "d.json"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "d.json: /: the member \"addon\" is missing (1:1)\n");
}

TEST_F(CheckDescription, RunsRandomCommandsOfTheDescription) {
    const ProgramResult right = checkChanged("Greets.", "Greets.", {"--only", "description-random", "--seed", "3"});
    EXPECT_EQ(right.status, 0) << right.out << right.err;
    EXPECT_TRUE(has(right, "check passed: 6 passed\n")) << right.out;
}

TEST_F(CheckDescription, NoticesARandomCommandThatShouldFail) {
    std::string text = rightDescription();
    const std::string optional = R"("type": "Boolean", "default": false, "help": "in capitals")";
    text.replace(text.find(optional), optional.size(), R"("type": "Boolean", "required": true, "help": "h")");
    write("d.json", text);
    const ProgramResult wrong =
        check("described", {"--describe", "d.json", "--only", "description-random", "--seed", "1"});
    EXPECT_EQ(wrong.status, 1) << wrong.out << wrong.err;
    EXPECT_TRUE(has(wrong, "(without the required option LOUD)\n")) << wrong.out;
}

}  // namespace
}  // namespace vexa::e2e
