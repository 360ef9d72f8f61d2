#include "options/HelpText.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

TEST(HelpText, ShowsArgumentsOptionsAndFooter) {
    std::vector<std::string> files;
    std::string page;
    bool isFast = false;
    Command command{"go", "Goes", "Example:\n  prog go a.macro"};
    command.add(argument("MACRO", "The macros", &files).require());
    command.add(option({"-o", "--output"}, "FILE.html", "The page", &page).require());
    command.add(flag({"--fast"}, "Hurries", &isFast).exclude("--output"));
    EXPECT_EQ(helpText(command, "prog go", 80),
              "Goes\n"
              "Usage: prog go [OPTIONS] MACRO...\n"
              "\n"
              "Positionals:\n"
              "  MACRO ... REQUIRED          The macros\n"
              "\n"
              "Options:\n"
              "  -o,--output FILE.html REQUIRED\n"
              "                              The page\n"
              "  --fast Excludes: --output   Hurries\n"
              "\n"
              "Example:\n"
              "  prog go a.macro\n");
}

TEST(HelpText, ShowsCommandsThatAreNotHidden) {
    Command program{"prog", "Does things"};
    program.commands = {Command{"go", "Goes"}, Command{"secret", "Hides"}};
    program.commands.back().isHidden = true;
    EXPECT_EQ(helpText(program, "prog", 80),
              "Does things\n"
              "Usage: prog [OPTIONS] [COMMAND]\n"
              "\n"
              "Commands:\n"
              "  go                          Goes\n"
              "\n");
}

TEST(HelpText, ContinuesLongTextBelowItsStart) {
    std::string name;
    Command command{"go", "Goes", "One two three four five six seven\neight\n  KEY  one two three four five six"};
    command.add(option({"--name"}, "N", "One two three four five", &name));
    EXPECT_EQ(helpText(command, "prog go", 30),
              "Goes\n"
              "Usage: prog go [OPTIONS]\n"
              "\n"
              "Options:\n"
              "  --name N One two three four\n"
              "           five\n"
              "\n"
              "One two three four five six\n"
              "seven eight\n"
              "  KEY  one two three four five\n"
              "       six\n");
}

}  // namespace
}  // namespace vexa::runner
