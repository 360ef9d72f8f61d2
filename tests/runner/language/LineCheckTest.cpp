#include "language/LineCheck.h"

#include <gtest/gtest.h>

#include "formats/DescriptionFile.h"

namespace vexa::runner {
namespace {

Descriptions lintedAddOn() {
    return Descriptions(parseDescription(R"({
        "addon": "STATS",
        "commands": [
            {"name": "LOAD", "kind": "command", "purpose": "Loads a file.", "options": [
                {"name": "FILE", "type": "String", "required": true, "mayBeEmpty": false, "help": "the file"},
                {"name": "SKIP", "type": "UInt64", "max": 9, "help": "rows to skip"},
                {"name": "HEADER", "type": "Boolean", "help": "names"},
                {"name": "ZONES", "type": "Set", "min": 1, "max": 8, "mayBeEmpty": false, "help": "zones"}]},
            {"name": "MEAN", "kind": "processor", "purpose": "Prints the mean.", "options": [
                {"name": "TITLE", "type": "String", "help": "a title"},
                {"name": "PATH", "type": "String", "escapes": false, "help": "a path"},
                {"name": "TIMES", "type": "Int64", "min": 1, "max": 100, "help": "how often"},
                {"name": "STEP", "type": "Int32", "repeatable": true, "help": "step"},
                {"name": "SCALE", "type": "Double", "min": 0, "help": "a factor"},
                {"name": "LOUD", "type": "Boolean", "help": "in capitals"},
                {"name": "ZONES", "type": "Set", "help": "zones"},
                {"name": "MODE", "type": "Choice", "values": ["fast", "slow"], "help": "how"}]},
            {"name": "QUIT", "kind": "processor", "purpose": "Does nothing."}]})",
                                         "f")
                            .description);
}

// The mistakes in a line, as "BEGIN-END RULE: MESSAGE" each; "warning " is before those that are warnings.
std::string mistakesIn(const std::string& line) {
    std::string all;
    for (const Diagnostic& found : checkLine(line, lintedAddOn())) {
        all += (all.empty() ? "" : "\n") + std::string(found.severity == standin::Severity_e::Error ? "" : "warning ") +
               std::to_string(found.span.begin) + '-' + std::to_string(found.span.end) + ' ' + found.rule + ": " +
               found.message;
    }
    return all;
}

TEST(LineCheck, AcceptsWhatTheAddOnAccepts) {
    for (const char* line : {
             "",
             "   # STATZ comment",
             "STATS QUIT",
             "  STATS\tLOAD FILE=\"a b\"",
             "STATS LOAD SKIP=9 FILE='say \"hi\"' HEADER=true ZONES=[1-3, 8]",
             "STATS LOAD FILE=\"back\\\" SKIP=+09",
             "STATS MEAN",
             "STATS mean times = 100 Loud = yes",
             "STATS MEAN TIMES =1 SCALE = 2e3\tLOUD = f",
             "STATS MEAN TITLE = 'it\\'s' PATH = 'C:\\' STEP = -2147483648 STEP = +1",
             "STATS MEAN ZONES = [ ] MODE = \"fast\"",
             "STATS MEAN SCALE = inf",
         }) {
        EXPECT_EQ(mistakesIn(line), "") << line;
    }
}

TEST(LineCheck, SaysWhatIsWrongAndWhere) {
    struct Case {
        const char* line;
        const char* mistakes;
    };
    const Case cases[] = {
        {"STATZ LOAD", "0-5 unknown-add-on: no description has the add-on STATZ; did you mean STATS?"},
        {"OTHER LOAD", "0-5 unknown-add-on: no description has the add-on OTHER; described is STATS"},
        {" STATS", "1-6 unknown-command: expected a command after STATS"},
        {"STATS MAEN", "6-10 unknown-command: STATS has no command MAEN; did you mean MEAN?"},
        {"STATS X", "6-7 unknown-command: STATS has no command X; its commands are LOAD, MEAN, QUIT"},
        {"STATS load FILE='a'",
         "warning 6-10 unknown-command: the add-on may expect LOAD, in this letter case, but found load"},
        {"STATS LOAD FILE='a' SIKP=1", "20-24 unknown-option: LOAD has no option SIKP; did you mean SKIP?"},
        {"STATS LOAD FILE='a' skip=1", "20-24 unknown-option: LOAD has no option skip; did you mean SKIP?"},
        {"STATS MEAN X = 'a b'",
         "11-12 unknown-option: MEAN has no option X; its options are TITLE, PATH, TIMES, STEP, SCALE, LOUD, ZONES, "
         "MODE"},
        {"STATS QUIT X = 1", "11-12 unknown-option: QUIT has no option X"},
        {"STATS LOAD SKIP=1", "6-10 missing-option: LOAD needs the option FILE"},
        {"STATS MEAN TIMES = 1 times = 2", "21-26 repeated-option: the option TIMES is given twice"},
        {"STATS LOAD FILE='a' SKIP", "20-24 wrong-assignment: expected = after SKIP"},
        {"STATS LOAD FILE = 'a'", "11-18 wrong-assignment: expected no blanks around =: FILE='a'"},
        {"STATS MEAN TIMES=3", "11-17 wrong-assignment: expected a blank before =: TIMES = 3"},
        {"STATS MEAN TIMES= 3", "11-18 wrong-assignment: expected a blank before =: TIMES = 3"},
        {"STATS MEAN = 3", "11-12 wrong-assignment: expected the name of an option before ="},
        {"STATS MEAN TIMES 3",
         "11-16 wrong-assignment: expected = after TIMES\n"
         "17-18 unknown-option: MEAN has no option 3; its options are TITLE, PATH, TIMES, STEP, "
         "SCALE, LOUD, ZONES, MODE"},
        {"STATS MEAN TIMES =", "11-16 wrong-value: TIMES: expected an Int64, such as -12"},
        {"STATS MEAN TIMES = 1.5", "19-22 wrong-value: TIMES: expected an Int64, such as -12, but found 1.5"},
        {"STATS MEAN TIMES = 9223372036854775808",
         "19-38 wrong-value: TIMES: expected an Int64, such as -12, but found 9223372036854775808"},
        {"STATS MEAN TIMES = 0", "19-20 value-out-of-range: TIMES: 0 is less than 1"},
        {"STATS MEAN TIMES = 101", "19-22 value-out-of-range: TIMES: 101 is greater than 100"},
        {"STATS MEAN STEP = 2147483648",
         "18-28 value-out-of-range: STEP: 2147483648 is no Int32: the add-on uses only its low 32 bits"},
        {"STATS MEAN SCALE = 1,5", "19-22 wrong-value: SCALE: expected a number, such as 0.5 or 2e3, but found 1,5"},
        {"STATS MEAN SCALE = -0.5", "19-23 value-out-of-range: SCALE: -0.5 is less than 0"},
        {"STATS MEAN SCALE = nan", "19-22 value-out-of-range: SCALE: nan is less than 0"},
        {"STATS MEAN LOUD = 1",
         "18-19 wrong-value: LOUD: expected a Boolean: T, TRUE, YES, F, FALSE or NO, but found 1"},
        {"STATS LOAD FILE='a' HEADER=T", "27-28 wrong-value: HEADER: expected TRUE or FALSE, but found T"},
        {"STATS LOAD FILE='a' SKIP=-1",
         "25-27 wrong-value: SKIP: expected an integer from 0 to 18446744073709551615, but found -1"},
        {"STATS MEAN TITLE = Wake", "19-23 wrong-quote: TITLE: expected a text in quotes, but found Wake"},
        {"STATS MEAN TITLE = 'a TIMES = 1", "19-31 wrong-quote: TITLE: the closing ' is missing"},
        {"STATS MEAN TITLE = 'a\\'", "19-23 wrong-quote: TITLE: the closing ' is missing"},
        {"STATS LOAD FILE=\"\"", "16-18 wrong-value: FILE: the text must not be empty"},
        {"STATS LOAD FILE='a'b", "19-20 wrong-value: FILE: expected a blank after the value"},
        {"STATS MEAN MODE = 'slwo'",
         "18-24 wrong-value: MODE: expected fast or slow, but found 'slwo'; did you mean slow?"},
        {"STATS MEAN MODE = fast", "18-22 wrong-quote: MODE: expected a text in quotes, but found fast"},
        {"STATS MEAN ZONES = 1", "19-20 wrong-bracket: ZONES: expected a set, such as [1-3,5], but found 1"},
        {"STATS MEAN ZONES = [1-3", "19-23 wrong-bracket: ZONES: the closing ] is missing"},
        {"STATS MEAN ZONES = [3-1]",
         "19-24 wrong-value: ZONES: Expected a range end of 3 or more at column 4 of set: [3-1]"},
        {"STATS MEAN ZONES = []",
         "warning 19-21 wrong-bracket: ZONES: the command processor leaves the ] of [] unread; write [ ]"},
        {"STATS LOAD FILE='a' ZONES=[]", "26-28 wrong-value: ZONES: the set must not be empty"},
        {"STATS LOAD FILE='a' ZONES=[0-3]", "26-31 value-out-of-range: ZONES: 0 is less than 1"},
        {"STATS LOAD FILE='a' ZONES=[2,9]", "26-31 value-out-of-range: ZONES: 9 is greater than 8"},
        {"STATS QUIT\r x", "10-11 wrong-line: the line contains a carriage return"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line);
        EXPECT_EQ(mistakesIn(c.line), c.mistakes);
    }
}

TEST(LineCheck, ReportsSeveralMistakesOfALine) {
    EXPECT_EQ(mistakesIn("STATS LOAD SKIP=10 HEADR=TRUE"),
              "16-18 value-out-of-range: SKIP: 10 is greater than 9\n"
              "19-24 unknown-option: LOAD has no option HEADR; did you mean HEADER?\n"
              "6-10 missing-option: LOAD needs the option FILE");
}

TEST(LineCheck, NumbersTheLinesOfAText) {
    const std::vector<Diagnostic> found =
        checkText("\xEF\xBB\xBFSTATS QUI\r\n\n# c\nSTATS QUIT\r\nSTATS X", lintedAddOn());
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].line, 1U);
    EXPECT_EQ(found[0].span.begin, 9U);
    EXPECT_EQ(found[0].span.end, 12U);
    EXPECT_EQ(found[1].line, 5U);
}

TEST(LineCheck, FindsANulByte) {
    const std::string line("STATS QUIT\0", 11);
    const std::vector<Diagnostic> found = checkLine(line, lintedAddOn());
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].message, "the line contains a NUL byte");
    EXPECT_EQ(found[0].span.begin, 10U);
}

TEST(LineCheck, ChecksACommandWithoutItsId) {
    const Descriptions descriptions = lintedAddOn();
    const AddOnDescription& stats = *descriptions.find("STATS");
    EXPECT_TRUE(checkCommand("MEAN TIMES = 1", stats).empty());
    EXPECT_EQ(checkCommand("MEAN TIMES = 0", stats).size(), 1U);
}

}  // namespace
}  // namespace vexa::runner
