#include "formats/DescriptionFile.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

using Problems = std::vector<std::string>;

// A description with one command of kind processor with this option.
std::string withOption(const std::string& option) {
    return R"({"addon": "A", "commands": [{"name": "C", "kind": "processor", "purpose": "p", "options": [)" + option +
           "]}]}";
}

// The only problem of a description with this option, without file and place.
std::string problemOfOption(const std::string& option) {
    const Problems problems = parseDescription(withOption(option), "f").problems;
    if (problems.size() != 1) return std::to_string(problems.size()) + " problems";
    const std::string start = "f: /commands/0/options/0";
    if (problems[0].compare(0, start.size(), start) != 0) return problems[0];
    return problems[0].substr(start.size(), problems[0].rfind(" (") - start.size());
}

TEST(DescriptionFile, HasTheCommandsWithTheirOptions) {
    const ReadDescription read = parseDescription(R"({
        "$schema": "commands.schema.json",
        "addon": "STATS",
        "commands": [
            {"name": "LOAD", "kind": "command", "purpose": "Loads a file.",
             "options": [
                {"name": "FILE", "type": "String", "required": true, "mayBeEmpty": false, "help": "the file"},
                {"name": "SKIP", "type": "UInt64", "default": "18446744073709551615", "help": "rows to skip"},
                {"name": "ZONES", "type": "Set", "default": "[ 1 , 2 ]", "min": 1, "help": "the zones"}],
             "examples": ["LOAD FILE=\"a\""]},
            {"name": "MEAN", "kind": "processor", "purpose": "Prints the mean.",
             "options": [
                {"name": "SCALE", "type": "Double", "default": 0.5, "min": 0, "max": 1e3, "help": "a factor"},
                {"name": "LOUD", "type": "Boolean", "default": false, "repeatable": true, "help": "in capitals"},
                {"name": "MODE", "type": "Choice", "values": ["fast", "slow"], "default": "slow",
                 "escapes": false, "help": "how"},
                {"name": "STEP", "type": "Int32", "without": "half a section", "help": "the step"}],
             "before": ["LOAD FILE=\"a\""]}]})",
                                                  "stats.commands.json");
    EXPECT_EQ(read.problems, Problems{});
    EXPECT_EQ(read.description.addOn, "STATS");
    ASSERT_EQ(read.description.commands.size(), 2U);

    const CommandDescription& load = read.description.commands[0];
    EXPECT_EQ(load.name, "LOAD");
    EXPECT_EQ(load.kind, CommandKind_e::Command);
    EXPECT_EQ(load.purpose, "Loads a file.");
    EXPECT_EQ(load.examples, Problems{"LOAD FILE=\"a\""});
    ASSERT_EQ(load.options.size(), 3U);
    EXPECT_EQ(load.options[0].name, "FILE");
    EXPECT_EQ(load.options[0].type, OptionType_e::String);
    EXPECT_EQ(load.options[0].help, "the file");
    EXPECT_TRUE(load.options[0].isRequired);
    EXPECT_FALSE(load.options[0].mayBeEmpty);
    EXPECT_FALSE(load.options[0].hasEscapes);
    EXPECT_EQ(load.options[0].defaultValue, std::nullopt);
    EXPECT_EQ(load.options[1].defaultValue, "18446744073709551615");
    EXPECT_EQ(load.options[2].defaultValue, "[1-2]");
    EXPECT_EQ(load.options[2].min->text, "1");

    const CommandDescription& mean = read.description.commands[1];
    EXPECT_EQ(mean.kind, CommandKind_e::Processor);
    EXPECT_EQ(mean.before, Problems{"LOAD FILE=\"a\""});
    ASSERT_EQ(mean.options.size(), 4U);
    EXPECT_EQ(mean.options[0].defaultValue, "0.5");
    EXPECT_EQ(mean.options[0].min->value, 0);
    EXPECT_EQ(mean.options[0].max->value, 1000);
    EXPECT_EQ(mean.options[1].defaultValue, "FALSE");
    EXPECT_TRUE(mean.options[1].isRepeatable);
    EXPECT_TRUE(mean.options[1].hasEscapes);
    EXPECT_EQ(mean.options[2].values, (Problems{"fast", "slow"}));
    EXPECT_FALSE(mean.options[2].hasEscapes);
    EXPECT_EQ(mean.options[3].without, "half a section");
}

TEST(DescriptionFile, SaysWhatIsWrongWithAnOption) {
    struct Case {
        const char* option;
        const char* problem;
    };
    const Case cases[] = {
        {R"(1)", ": expected an object"},
        {R"({"type": "Int64", "help": "h"})", ": the member \"name\" is missing"},
        {R"({"name": "N", "help": "h"})", ": the member \"type\" is missing"},
        {R"({"name": "N", "type": "Int64"})", ": the member \"help\" is missing"},
        {R"({"name": "N", "type": "Int64", "help": "h", "defualt": 1})",
         ": unknown member \"defualt\"; is default meant?"},
        {R"({"name": "N", "type": "Int64", "help": "h", "a\nb": 1})",
         ": unknown member \"a\\nb\"; expected name, type, help, default, without, min, max, values, required, "
         "repeatable, "
         "mayBeEmpty or escapes"},
        {R"({"name": "N", "type": "Int64", "help": "h", "help": "i"})", ": the member \"help\" is given twice"},
        {R"({"name": "N", "type": "Int46", "help": "h"})",
         "/type: \"Int46\" is no type of an option of kind processor; is Int64 meant?"},
        {R"({"name": "N", "type": "UInt64", "help": "h"})",
         "/type: \"UInt64\" is no type of an option of kind processor; is Int64 meant?"},
        {R"({"name": "N", "type": 64, "help": "h"})", "/type: expected the name of a type"},
        {R"({"name": "1N", "type": "Int64", "help": "h"})",
         "/name: expected a name of at most 64 letters and digits, '_', '-', '.', with a letter first, but found "
         "\"1N\""},
        {R"({"name": "N", "type": "Int64", "help": " "})", "/help: expected a text that is not empty"},
        {R"({"name": "N", "type": "Int64", "help": "a\nb"})", "/help: expected a text of one line"},
        {R"({"name": "N", "type": "Int64", "help": "h", "default": "x"})",
         "/default: expected an integer from -9223372036854775808 to 9223372036854775807"},
        {R"({"name": "N", "type": "Int64", "help": "h", "default": 1.0})",
         "/default: expected an integer from -9223372036854775808 to 9223372036854775807"},
        {R"({"name": "N", "type": "Int32", "help": "h", "max": 2147483648})",
         "/max: expected an integer from -2147483648 to 2147483647"},
        {R"({"name": "N", "type": "Int64", "help": "h", "min": 2, "max": 1})",
         "/max: the maximum is less than the minimum"},
        {R"({"name": "N", "type": "Int64", "help": "h", "min": 2, "default": 1})",
         "/default: the default is less than the minimum"},
        {R"({"name": "N", "type": "Double", "help": "h", "max": 0.5, "default": 1})",
         "/default: the default is greater than the maximum"},
        {R"({"name": "N", "type": "Set", "help": "h", "min": 2, "default": "[1-3]"})",
         "/default: the default is less than the minimum"},
        {R"({"name": "N", "type": "Set", "help": "h", "max": 2, "default": "[1-3]"})",
         "/default: the default is greater than the maximum"},
        {R"({"name": "N", "type": "Set", "help": "h", "mayBeEmpty": false, "default": "[]"})",
         "/default: the default is empty, but \"mayBeEmpty\" is false"},
        {R"({"name": "N", "type": "String", "help": "h", "mayBeEmpty": false, "default": ""})",
         "/default: the default is empty, but \"mayBeEmpty\" is false"},
        {R"({"name": "N", "type": "String", "help": "h", "escapes": false, "default": "'\""})",
         "/default: a text with both quotes needs escapes"},
        {R"({"name": "N", "type": "Choice", "help": "h", "escapes": false, "values": ["a", "'\""]})",
         "/values/1: a text with both quotes needs escapes"},
        {R"({"name": "N", "type": "Double", "help": "h", "default": "1"})", "/default: expected a number"},
        {R"({"name": "N", "type": "Boolean", "help": "h", "default": 1})", "/default: expected true or false"},
        {R"({"name": "N", "type": "Boolean", "help": "h", "min": 1})",
         "/min: an option of type Boolean has no \"min\""},
        {R"({"name": "N", "type": "String", "help": "h", "max": 9})", "/max: an option of type String has no \"max\""},
        {R"({"name": "N", "type": "Int64", "help": "h", "mayBeEmpty": false})",
         "/mayBeEmpty: an option of type Int64 has no \"mayBeEmpty\""},
        {R"({"name": "N", "type": "Set", "help": "h", "escapes": false})",
         "/escapes: an option of type Set has no \"escapes\""},
        {R"({"name": "N", "type": "String", "help": "h", "values": ["a"]})",
         "/values: an option of type String has no \"values\""},
        {R"({"name": "N", "type": "Choice", "help": "h"})", ": the member \"values\" is missing"},
        {R"({"name": "N", "type": "Choice", "help": "h", "values": []})", "/values: expected at least one value"},
        {R"({"name": "N", "type": "Choice", "help": "h", "values": ["a", 1]})", "/values/1: expected a text"},
        {R"({"name": "N", "type": "Choice", "help": "h", "values": ["a", "b", "a"]})", "/values: \"a\" is given twice"},
        {R"({"name": "N", "type": "Choice", "help": "h", "values": ["slow"], "default": "slwo"})",
         "/default: \"slwo\" is not one of the values; is slow meant?"},
        {R"({"name": "N", "type": "Set", "help": "h", "default": "[3-1]"})",
         "/default: Expected a range end of 3 or more at column 4 of set: [3-1]"},
        {R"({"name": "N", "type": "Set", "help": "h", "default": [1]})",
         "/default: expected a set as text, such as \"[1-3,5]\""},
        {R"({"name": "N", "type": "Int64", "help": "h", "required": 1})", "/required: expected true or false"},
        {R"({"name": "N", "type": "Int64", "help": "h", "required": true, "default": 1})",
         "/default: a required option has no default"},
        {R"({"name": "N", "type": "Int64", "help": "h", "required": true, "without": "w"})",
         "/without: a required option is never absent"},
        {R"({"name": "N", "type": "Int64", "help": "h", "default": 1, "without": "w"})",
         "/without: \"default\" already says what the command does without the option"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.option);
        EXPECT_EQ(problemOfOption(c.option), c.problem);
    }
}

TEST(DescriptionFile, NamesFilePointerAndPlaceOfEachProblem) {
    EXPECT_EQ(parseDescription("{\"addon\": \"A\",\n"
                               " \"commands\": [\n"
                               "  {\"name\": \"C\", \"kind\": \"command\", \"purpose\": \"p\", \"options\": [\n"
                               "   {\"name\": \"N\", \"type\": \"Double\", \"help\": \"h\"},\n"
                               "   {\"name\": \"M\", \"type\": \"Set\", \"help\": 1}]},\n"
                               "  {\"name\": \"D\", \"kind\": \"comand\", \"purpose\": \"p\"}]}",
                               "stats.commands.json")
                  .problems,
              (Problems{"stats.commands.json: /commands/0/options/0/type: \"Double\" is no type of an option of kind "
                        "command; expected Boolean, UInt64, String, Set or Choice (4:26)",
                        "stats.commands.json: /commands/0/options/1/help: expected a text (5:41)",
                        "stats.commands.json: /commands/1/kind: \"comand\" is no kind of command; is command meant? "
                        "(6:25)"}));
}

TEST(DescriptionFile, RefusesNamesThatDifferInLetterCaseOnly) {
    EXPECT_EQ(
        problemOfOption(R"({"name": "N", "type": "Set", "help": "h"}, {"name": "n", "type": "Set", "help": "h"})"),
        "f: /commands/0/options/1/name: \"n\" is given twice (1:144)");
}

TEST(DescriptionFile, RefusesANameThatAnOptionClassCannotRead) {
    const std::string text = R"({"addon": "A", "commands": [{"name": "C", "kind": "command", "purpose": "p",
        "options": [{"name": "A_B", "type": "Set", "help": "h"}]}]})";
    EXPECT_EQ(parseDescription(text, "f").problems,
              Problems{"f: /commands/0/options/0/name: expected a name of at most 64 letters and digits, with a letter "
                       "first, but found \"A_B\" (2:30)"});
}

TEST(DescriptionFile, RefusesATextThatIsNotJsonWithItsPlace) {
    const Problems problems = parseDescription("{\"addon\": \"A\",\n]", "f").problems;
    ASSERT_EQ(problems.size(), 1U);
    EXPECT_EQ(problems[0].substr(0, 7), "f:2:1: ");
}

TEST(DescriptionFile, ListsAtMostTwentyProblems) {
    std::string commands = "1";
    for (int i = 0; i < 30; ++i) commands += ",1";
    EXPECT_EQ(parseDescription(R"({"addon": "A", "commands": [)" + commands + "]}", "f").problems.size(), 20U);
}

TEST(DescriptionFile, IsBounded) {
    std::string commands = "1";
    for (int i = 0; i < 1000; ++i) commands += ",1";
    EXPECT_EQ(parseDescription(R"({"addon": "A", "commands": [)" + commands + "]}", "f").problems,
              Problems{"f: /commands: the array has more than 1000 items (1:28)"});
    EXPECT_EQ(problemOfOption(R"({"name": "N", "type": "Set", "help": ")" + std::string(10001, 'h') + "\"}"),
              "/help: the text is longer than 10000 bytes");
}

TEST(DescriptionFile, LiesBesideTheAddOn) {
    EXPECT_EQ(descriptionBeside("build/stats.so"), "build/stats.commands.json");
    EXPECT_EQ(descriptionBeside("./stats.so"), "./stats.commands.json");
    EXPECT_EQ(descriptionBeside("stats"), "stats.commands.json");
}

}  // namespace
}  // namespace vexa::runner
