#include "commands/repl/DescribedHelp.h"

#include <gtest/gtest.h>

#include "formats/DescriptionFile.h"

namespace vexa::runner {
namespace {

AddOnDescription statsAddOn() {
    return parseDescription(R"({"addon": "STATS", "commands": [
        {"name": "LOAD", "kind": "command", "purpose": "Reads `FILE`."},
        {"name": "MEAN", "kind": "processor", "purpose": "Prints the means.", "options": [
            {"name": "ZONES", "type": "Set", "required": true, "help": "the zones"},
            {"name": "TIMES", "type": "Int64", "default": 2, "min": 1, "max": 9, "help": "how `often`"},
            {"name": "MODE", "type": "Choice", "values": ["fast", "slow"], "without": "both", "help": "how"}],
         "examples": ["MEAN ZONES = [1]", "MEAN ZONES = [2]"]}]})",
                            "f")
        .description;
}

TEST(DescribedHelp, ListsTheCommandsOfAnAddOn) {
    EXPECT_EQ(helpOfAddOn(statsAddOn()),
              "Commands; ':help STATS LOAD' shows the options of one:\n"
              "  LOAD  Reads FILE.\n"
              "  MEAN  Prints the means.\n");
}

TEST(DescribedHelp, HasTheFormTheOptionsAndAnExampleOfACommand) {
    const AddOnDescription addOn = statsAddOn();
    EXPECT_EQ(helpOfCommand(addOn, addOn.commands[1]),
              "STATS MEAN ZONES = set [TIMES = Int64] [MODE = choice]\n"
              "  Prints the means.\n"
              "  option  type           default   meaning\n"
              "  ZONES   set            required  the zones\n"
              "  TIMES   Int64, 1 to 9  2         how often\n"
              "  MODE    fast or slow   both      how\n"
              "  example: STATS MEAN ZONES = [1]\n");
    EXPECT_EQ(helpOfCommand(addOn, addOn.commands[0]), "STATS LOAD\n  Reads FILE.\n");
}

TEST(DescribedHelp, IsEmptyForAnAddOnWithoutCommands) { EXPECT_EQ(helpOfAddOn({"STATS", {}}), ""); }

}  // namespace
}  // namespace vexa::runner
