#include "commands/docs/DescriptionPage.h"

#include <gtest/gtest.h>

#include "formats/DescriptionFile.h"

namespace vexa::runner {
namespace {

AddOnDescription documentedAddOn() {
    return parseDescription(R"({
        "addon": "STATS",
        "commands": [
            {"name": "LOAD", "kind": "command", "purpose": "Loads a & b.", "options": [
                {"name": "FILE", "type": "String", "required": true, "mayBeEmpty": false, "help": "the file"},
                {"name": "ZONES", "type": "Set", "default": "[1-3]", "help": "a|b"}]},
            {"name": "MEAN", "kind": "processor", "purpose": "Prints the mean.", "options": [
                {"name": "TIMES", "type": "Int64", "default": 1, "min": 1, "max": 9, "help": "how often"},
                {"name": "SCALE", "type": "Double", "min": 0, "without": "see `TIMES`", "help": "a <factor>"},
                {"name": "MODE", "type": "Choice", "values": ["fast", "slow"], "default": "slow",
                 "repeatable": true, "help": "how"}],
             "examples": ["MEAN TIMES = 2", "MEAN"]}]})",
                            "f")
        .description;
}

TEST(DescriptionPage, HasPurposeFormOptionsAndExamplesAsMarkdown) {
    EXPECT_EQ(markdownPage(documentedAddOn()), R"(# Commands of STATS

## LOAD

Loads a & b.

    STATS LOAD FILE=text [ZONES=set]

| option | type | default | meaning |
|---|---|---|---|
| `FILE` | text, not empty | required | the file |
| `ZONES` | set | `[1-3]` | a\|b |

## MEAN

Prints the mean.

    STATS MEAN [TIMES = Int64] [SCALE = Double] [MODE = choice]...

| option | type | default | meaning |
|---|---|---|---|
| `TIMES` | Int64, 1 to 9 | `1` | how often |
| `SCALE` | Double, 0 or more | see `TIMES` | a <factor> |
| `MODE` | `fast` or `slow`, repeatable | `'slow'` | how |

Examples:

    STATS MEAN TIMES = 2
    STATS MEAN
)");
}

TEST(DescriptionPage, HasOneTableOfAllOptions) {
    EXPECT_EQ(markdownTable(documentedAddOn()), R"(| command | option | type | default | meaning |
|---|---|---|---|---|
| `LOAD` | | | | Loads a & b. |
| | `FILE` | text, not empty | required | the file |
| | `ZONES` | set | `[1-3]` | a\|b |
| `MEAN` | | | | Prints the mean. |
| | `TIMES` | Int64, 1 to 9 | `1` | how often |
| | `SCALE` | Double, 0 or more | see `TIMES` | a <factor> |
| | `MODE` | `fast` or `slow`, repeatable | `'slow'` | how |
)");
}

TEST(DescriptionPage, IsEscapedAsHtml) {
    const std::string page = htmlPage(documentedAddOn());
    const auto has = [&](const char* text) { return page.find(text) != std::string::npos; };
    EXPECT_TRUE(has("<title>Commands of STATS</title>")) << page;
    EXPECT_TRUE(has("<p>Loads a &amp; b.</p>")) << page;
    EXPECT_TRUE(
        has("<tr><td><code>SCALE</code></td><td>Double, 0 or more</td><td>see <code>TIMES</code></td>"
            "<td>a &lt;factor&gt;</td></tr>"))
        << page;
    EXPECT_TRUE(has("<pre>STATS MEAN TIMES = 2\nSTATS MEAN\n</pre>")) << page;
    EXPECT_EQ(page.substr(page.size() - 8), "</html>\n");
}

}  // namespace
}  // namespace vexa::runner
