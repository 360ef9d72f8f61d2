#include "language/LineFormat.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "formats/DescriptionFile.h"
#include "language/LineCheck.h"
#include "language/MacroLine.h"

namespace vexa::runner {
namespace {

const Descriptions& formattedAddOn() {
    static const Descriptions descriptions(parseDescription(R"({
        "addon": "STATS",
        "commands": [
            {"name": "LOAD", "kind": "command", "purpose": "p", "options": [
                {"name": "ZONES", "type": "Set", "help": "h"},
                {"name": "FILE", "type": "String", "help": "h"}]},
            {"name": "MEAN", "kind": "processor", "purpose": "p", "options": [
                {"name": "TIMES", "type": "Int64", "help": "h"},
                {"name": "ZONES", "type": "Set", "help": "h"},
                {"name": "TITLE", "type": "String", "help": "h"}]}]})",
                                                            "f")
                                               .description);
    return descriptions;
}

TEST(LineFormat, ChangesOnlyBlanksWithoutMeaning) {
    struct Case {
        const char* why;
        const char* line;
        const char* formatted;
    };
    const Case cases[] = {
        {"blanks between words", "STATS  MEAN\t\tTIMES   = \t2", "STATS MEAN TIMES = 2"},
        {"no blank after =", "STATS MEAN TIMES =2", "STATS MEAN TIMES = 2"},
        {"blanks at the end", "STATS MEAN \t ", "STATS MEAN"},
        {"blanks at the start stay", " \t STATS MEAN ", " \t STATS MEAN"},
        {"no blanks around = for option classes", "STATS LOAD  ZONES=[1]   FILE=\"a\" ",
         "STATS LOAD ZONES=[1] FILE=\"a\""},
        {"blanks in a text", "STATS MEAN TITLE = ' a  b '  ", "STATS MEAN TITLE = ' a  b '"},
        {"blanks in a set", "STATS MEAN ZONES = [ 1 - 3 ]  ", "STATS MEAN ZONES = [ 1 - 3 ]"},
        {"letter case", "STATS  mean tImes = 2", "STATS mean tImes = 2"},
        {"a comment", "  #  a  b  ", "  #  a  b"},
        {"a blank line", " \t ", ""},
        {"an empty line", "", ""},
    };
    for (const Case& c : cases) EXPECT_EQ(formattedLine(c.line, formattedAddOn()), c.formatted) << c.why;
}

TEST(LineFormat, KeepsALineWithAMistake) {
    for (const char* const line :
         {"STATS  MEAN TITLE = 'a  ", "STATS  MEAN TIMES=2 ", "STATS  LOAD FILE = \"a\"  ", "OTHER  X  ", "STATS  X  ",
          "STATS  MEAN ZONES = []  ", "STATS  MEAN\rTIMES = 1  "}) {
        EXPECT_EQ(formattedLine(line, formattedAddOn()), line);
    }
}

// The id, the command, and each name and value: what the add-on reads.
std::vector<std::string> partsOf(std::string_view line) {
    const MacroLine parts = parseLine(line, formattedAddOn());
    std::vector<std::string> texts;
    const auto add = [&](Span span) { texts.emplace_back(textOf(span, line)); };
    add(parts.id);
    add(parts.word);
    for (const WrittenOption& option : parts.options) {
        add(option.name);
        add(option.value);
        add(option.rest);
    }
    return texts;
}

TEST(LineFormat, KeepsTheMeaningOfRandomLinesAndIsDoneAtOnce) {
    const std::vector<std::string> pieces = {"STATS", "MEAN",  "LOAD", "TIMES", "TITLE", "ZONES",  "FILE",  " ",
                                             " ",     "  ",    "\t",   "=",     " = ",   "'a  b'", "\"c\"", "2",
                                             "[1]",   "[ 2 ]", "#",    "'",     "\\",    "]"};
    std::mt19937 random(7);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same lines in each run
    int changed = 0;
    for (int i = 0; i < 20000; ++i) {
        std::string line = i % 2 == 0 ? "STATS  MEAN " : "STATS LOAD";
        for (std::size_t left = random() % 12; left > 0; --left) line += pieces[random() % pieces.size()];
        const std::string formatted = formattedLine(line, formattedAddOn());
        EXPECT_EQ(partsOf(formatted), partsOf(line)) << line;
        EXPECT_EQ(checkLine(formatted, formattedAddOn()).size(), checkLine(line, formattedAddOn()).size()) << line;
        EXPECT_EQ(formattedLine(formatted, formattedAddOn()), formatted) << line;
        if (formatted != line) ++changed;
    }
    EXPECT_GT(changed, 500);
}

}  // namespace
}  // namespace vexa::runner
