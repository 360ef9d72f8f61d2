#include "language/GuessedDescription.h"

#include <gtest/gtest.h>

#include "formats/DescriptionFile.h"
#include "formats/DescriptionText.h"

namespace vexa::runner {
namespace {

// "KIND WORD: NAME TYPE, NAME TYPE" for each command
std::string guessed(const std::vector<std::string>& commands) {
    std::string text;
    for (const CommandDescription& command : guessedDescription("A", commands).commands) {
        text += std::string(nameOf(command.kind)) + ' ' + command.name + ':';
        for (const OptionDescription& option : command.options) {
            text += ' ' + option.name + ' ' + nameOf(option.type) + ',';
        }
        text += '\n';
    }
    return text;
}

TEST(GuessedDescription, TakesTheKindFromTheBlanksAndTheTypeFromTheValues) {
    struct Case {
        const char* why;
        std::vector<std::string> commands;
        const char* guessed;
    };
    const Case cases[] = {
        {"a command without options", {"CLEAR"}, "processor CLEAR:\n"},
        {"option classes",
         {"LOAD FILE=\"a b\" ROWS=3 HEADER=TRUE ZONES=[1-3,5]"},
         "command LOAD: FILE String, ROWS UInt64, HEADER Boolean, ZONES Set,\n"},
        {"the processor",
         {"MEAN TIMES = -3 SCALE = 0.5 LOUD = T TITLE = 'it\\'s = X' ZONES = [ 1 - 3 ]"},
         "processor MEAN: TIMES Int64, SCALE Double, LOUD Boolean, TITLE String, ZONES Set,\n"},
        {"all values decide", {"MEAN SCALE = 1", "MEAN SCALE = 0.5"}, "processor MEAN: SCALE Double,\n"},
        {"one command in another letter case", {"mean times = 1", "MEAN TIMES = 2"}, "processor MEAN: TIMES Int64,\n"},
        {"a value that has no type", {"MEAN X = y"}, "processor MEAN: X String,\n"},
        {"an open quote", {"MEAN X = 'y"}, "processor MEAN: X String,\n"},
        {"no value", {"MEAN X ="}, "processor MEAN: X String,\n"},
        {"no equals sign", {"MEAN X"}, "processor MEAN:\n"},
    };
    for (const Case& c : cases) EXPECT_EQ(guessed(c.commands), c.guessed) << c.why;
}

TEST(GuessedDescription, IsReadAgainAsItWasWritten) {
    AddOnDescription description = guessedDescription("A", {"MEAN TIMES = 1 SCALE = 0.5 LOUD = T TITLE = 'a \"b\"'"});
    CommandDescription& command = description.commands.front();
    command.purpose = "Größe";
    command.before = {"CLEAR"};
    command.options[0].min = DescribedNumber{1, "1"};
    command.options[0].max = DescribedNumber{9, "9"};
    command.options[0].defaultValue = "2";
    command.options[1].isRequired = true;
    command.options[2].defaultValue = "FALSE";
    command.options[3].mayBeEmpty = false;
    command.options[3].hasEscapes = false;
    command.options[3].isRepeatable = true;
    for (OptionDescription& option : command.options) option.help = "h";
    description.commands.push_back(command);
    description.commands.back().name = "CLEAR";
    const std::string text = descriptionText(description);
    const ReadDescription read = parseDescription(text, "f");
    EXPECT_TRUE(read.problems.empty()) << read.problems.front() << text;
    EXPECT_EQ(descriptionText(read.description), text);
    EXPECT_NE(text.find(R"({"name": "TIMES", "type": "Int64", "default": 2, "min": 1, "max": 9, "help": "h"})"),
              std::string::npos)
        << text;
}

}  // namespace
}  // namespace vexa::runner
