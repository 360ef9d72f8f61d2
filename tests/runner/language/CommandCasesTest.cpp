#include "language/CommandCases.h"

#include <gtest/gtest.h>

#include "formats/DescriptionFile.h"
#include "language/LineCheck.h"

namespace vexa::runner {
namespace {

AddOnDescription addOnWith(const std::string& options, const std::string& examples) {
    return parseDescription(R"({"addon": "A", "commands": [{"name": "C", "kind": "processor", "purpose": "p",
                                "options": [)" +
                                options + R"(], "examples": [)" + examples + "]}]}",
                            "f")
        .description;
}

std::string linesOfCases(const std::vector<CommandCase>& cases) {
    std::string lines;
    for (const CommandCase& one : cases) {
        lines += one.what + ':';
        for (const std::string& text : one.texts) lines += " <" + text + '>';
        lines += '\n';
    }
    return lines;
}

const std::string kTimes = R"({"name": "TIMES", "type": "Int64", "min": 1, "max": 9, "help": "h"})";
const std::string kFile = R"({"name": "FILE", "type": "String", "required": true, "help": "h"})";

TEST(CommandCases, HaveEachOptionInItsExamplesAndAlone) {
    const AddOnDescription addOn = addOnWith(kFile + ',' + kTimes, R"("C FILE = 'a'", "C TIMES = 2 FILE = 'b'")");
    EXPECT_EQ(linesOfCases(acceptedCases(addOn, addOn.commands[0])),
              "with only its required options: <C FILE = 'a'>\n"
              "FILE with a value of its type: <C FILE = 'a'> <C TIMES = 2 FILE = 'a'> <C FILE = 'a'>\n"
              "TIMES with a value of its type: <C TIMES = 2 FILE = 'b'> <C FILE = 'a' TIMES = 2>\n"
              "TIMES at its minimum: <C TIMES = 1 FILE = 'b'> <C FILE = 'a' TIMES = 1>\n"
              "TIMES at its maximum: <C TIMES = 9 FILE = 'b'> <C FILE = 'a' TIMES = 9>\n");
}

TEST(CommandCases, AreWrongInOneWay) {
    const AddOnDescription addOn = addOnWith(kFile + ',' + kTimes, R"("C FILE = 'a'")");
    EXPECT_EQ(linesOfCases(refusedCases(addOn, addOn.commands[0])),
              "without the required option FILE: <C>\n"
              "with an option that is not described: <C FILE = 'a' VEXACHECK = 1>\n"
              "FILE with a value that is no String: <C FILE = x>\n"
              "FILE with a value that is no String: <C FILE = 1>\n"
              "TIMES with a value that is no Int64: <C FILE = 'a' TIMES = x>\n"
              "TIMES with a value that is no Int64: <C FILE = 'a' TIMES = 1.5>\n"
              "TIMES with a value that is no Int64: <C FILE = 'a' TIMES = 9223372036854775808>\n"
              "TIMES with a value that is no Int64: <C FILE = 'a' TIMES = '1'>\n"
              "TIMES below its minimum: <C FILE = 'a' TIMES = 0>\n"
              "TIMES above its maximum: <C FILE = 'a' TIMES = 10>\n"
              "TIMES above its maximum: <C FILE = 'a' TIMES = 4294967305>\n");
}

TEST(CommandCases, HaveAnIntegerThatAnInt32Cuts) {
    const AddOnDescription addOn = addOnWith(kTimes, R"("C TIMES = 2")");
    const std::vector<LargeInteger> large = largeIntegers(addOn, addOn.commands[0]);
    ASSERT_EQ(large.size(), 1U);
    EXPECT_EQ(large[0].option, "TIMES");
    EXPECT_EQ(large[0].value, "4294967298");
    EXPECT_EQ(large[0].text, "C TIMES = 4294967298");
}

TEST(CommandCases, FitWhatTheDescriptionSays) {
    const std::string all = kFile + ',' + kTimes + R"(,
        {"name": "LOUD", "type": "Boolean", "default": true, "help": "h"},
        {"name": "SCALE", "type": "Double", "min": -0.5, "max": 0.75, "help": "h"},
        {"name": "NARROW", "type": "Double", "min": 0.75, "max": 1, "help": "h"},
        {"name": "LARGE", "type": "Double", "min": -1e300, "max": 1e300, "help": "h"},
        {"name": "STEP", "type": "Int32", "min": -1, "max": 2147483647, "help": "h"},
        {"name": "COUNT", "type": "Int64", "min": -9223372036854775808, "max": 9223372036854775807, "help": "h"},
        {"name": "ZONES", "type": "Set", "min": 1, "max": 3, "mayBeEmpty": false, "help": "h"},
        {"name": "MODE", "type": "Choice", "values": ["a", "it's"], "help": "h"},
        {"name": "TEXT", "type": "String", "mayBeEmpty": false, "repeatable": true, "help": "h"})";
    const AddOnDescription addOn = addOnWith(all, "");
    for (const CommandCase& one : acceptedCases(addOn, addOn.commands[0])) {
        if (one.what.find("low 32 bits") != std::string::npos) continue;  // accepted, but a mistake of the user
        for (const std::string& text : one.texts) EXPECT_TRUE(checkCommand(text, addOn).empty()) << text;
    }
    for (const CommandCase& one : refusedCases(addOn, addOn.commands[0])) {
        EXPECT_EQ(checkCommand(one.texts.front(), addOn).size(), 1U) << one.texts.front();
    }
}

}  // namespace
}  // namespace vexa::runner
