#include "commands/lsp/LineHelp.h"

#include <gtest/gtest.h>

#include "formats/DescriptionFile.h"

namespace vexa::runner {
namespace {

// The help at the mark `|` in the line: "BEGIN-END TITLE: DETAIL", or "none".
std::string helpIn(std::string line) {
    static const Descriptions descriptions(parseDescription(R"({
        "addon": "STATS",
        "commands": [
            {"name": "MEAN", "kind": "processor", "purpose": "Prints the mean.", "options": [
                {"name": "TIMES", "type": "Int64", "default": 1, "min": 1, "max": 9, "help": "how often"},
                {"name": "COLUMN", "type": "Int64", "required": true, "help": "the column"},
                {"name": "TITLE", "type": "String", "without": "no title", "help": "a title"}],
             "examples": ["MEAN COLUMN = 2"]},
            {"name": "QUIT", "kind": "command", "purpose": "Stops."}]})",
                                                            "f")
                                               .description);
    const std::size_t at = line.find('|');
    line.erase(at, 1);
    const auto help = helpAt(line, at, descriptions);
    if (!help) return "none";
    return std::to_string(help->span.begin) + '-' + std::to_string(help->span.end) + ' ' + help->title + ": " +
           help->detail;
}

TEST(LineHelp, ListsTheCommandsOfAnAddOn) {
    EXPECT_EQ(helpIn("|STATS MEAN"), "0-5 STATS: - `MEAN`: Prints the mean.\n- `QUIT`: Stops.\n");
}

TEST(LineHelp, ShowsTheFormOfACommandAndAnExample) {
    EXPECT_EQ(helpIn("STATS me|an"),
              "6-10 STATS MEAN [TIMES = Int64] COLUMN = Int64 [TITLE = text]: Prints the mean.\n\n"
              "Example: `STATS MEAN COLUMN = 2`\n");
    EXPECT_EQ(helpIn("STATS QUIT|"), "6-10 STATS QUIT: Stops.\n");
}

TEST(LineHelp, ShowsTypeAndDefaultOfAnOptionAtItsNameAndAtItsValue) {
    EXPECT_EQ(helpIn("STATS MEAN TIM|ES = 2"),
              "11-16 TIMES: how often\n\nType: Int64, 1 to 9\n\nWithout the option: `1`\n");
    EXPECT_EQ(helpIn("STATS MEAN TIMES = 2|"),
              "19-20 TIMES: how often\n\nType: Int64, 1 to 9\n\nWithout the option: `1`\n");
    EXPECT_EQ(helpIn("STATS MEAN column| = 2"), "11-17 COLUMN: the column\n\nType: Int64\n\nThe option is required.\n");
    EXPECT_EQ(helpIn("STATS MEAN TITLE = 'a| b'"),
              "19-24 TITLE: a title\n\nType: text\n\nWithout the option: no title\n");
}

TEST(LineHelp, IsMissingWhereNothingIsDescribed) {
    for (const char* const line : {"|", "# ST|ATS", "OTH|ER MEAN", "STATS NO|NE", "STATS MEAN NO|NE = 1",
                                   "STATS  |  MEAN", "STATS MEAN TIMES = 2  |"}) {
        EXPECT_EQ(helpIn(line), "none") << line;
    }
}

}  // namespace
}  // namespace vexa::runner
