
#include "AddOnTest.h"

namespace probestats {
namespace {

/// With the small file loaded.
class LoadedTest : public AddOnTest {
protected:
    LoadedTest() { run("LOAD FILE='probe.txt' COLUMNS=[2-3] SAMPLERATE=2"); }

    /// Loads a wave of 8 Hz at 64 samples a second as column 1, and a constant as column 2.
    void loadWave() {
        std::string rows;
        const char* const period[] = {"0", "0.7", "1", "0.7", "0", "-0.7", "-1", "-0.7"};
        for (int i = 0; i < 64; ++i) rows += std::string(period[i % 8]) + " 5\n";
        writeText("wave.txt", rows);
        run("LOAD FILE='wave.txt' SAMPLERATE=64");
    }
};

using AddOn = AddOnTest;
using Load = AddOnTest;
using Window = LoadedTest;
using Summarize = LoadedTest;

struct Refusal {
    const char* why;
    const char* command;
    const char* message;
};

TEST_F(AddOn, TellsTheHostWhoItIs) {
    ASSERT_EQ(host.addOns().size(), 1u);
    EXPECT_EQ(host.addOns()[0].id, "PROBESTATS");
    EXPECT_EQ(host.addOns()[0].title, "Probe statistics");
}

TEST_F(AddOn, ShutsDownWithoutComplaint) {
    run("LOAD FILE='probe.txt' COLUMNS=[1]");
    host.unloadAddOns();
}

TEST_F(AddOn, ForgetsItsDataWhenItIsUnloaded) {
    run("LOAD FILE='probe.txt' COLUMNS=[1]");
    host.unloadAddOns();
    host.loadAddOn(PROBESTATS_ADDON);
    EXPECT_EQ(refusalOf("SUMMARIZE"), "Error: No data: LOAD comes first");
}

TEST_F(AddOn, ReadsCommandsInAnyLetterCase) {
    EXPECT_EQ(run("load FILE='probe.txt' COLUMNS=[1]"), "Loaded probe.txt: 4 rows of columns [1], no sample rate\n");
}

TEST_F(AddOn, RefusesCommandsItDoesNotKnow) {
    EXPECT_EQ(refusalOf("Frobnicate"),
              "Error: Unknown command: FROBNICATE; known are LOAD, WINDOW, SUMMARIZE, SPECTRUM");
    EXPECT_EQ(refusalOf(""), "Error: Missing command; known are LOAD, WINDOW, SUMMARIZE, SPECTRUM");
}

TEST_F(AddOn, ExplainsWhatAHostFunctionThrew) {
    host.throwFromCall("VexaUtilMacroIsRecordingActive");
    const vexa::standin::TestedCommand result = play("LOAD FILE='probe.txt' COLUMNS=[1]").tested;
    EXPECT_FALSE(result.accepted);
    EXPECT_NE(result.error, "");
    EXPECT_EQ(refusalOf("WINDOW"), "Error: No data: LOAD comes first");
}

TEST_F(AddOn, LetsNothingOutWhenTheHostHasNoStrings) {
    host.suppress("missing-errmsg");  // there is no memory for one
    host.throwFromCall("VexaUtilStringAlloc", 1);
    host.throwFromCall("VexaUtilStringAlloc", 2);
    EXPECT_EQ(refusalOf("FROB"), "");
    host.failCall("VexaUtilStringAlloc");
    EXPECT_EQ(refusalOf("FROB"), "");
}

TEST_F(Load, TellsWhatWasLoaded) {
    EXPECT_EQ(run("LOAD FILE='probe.txt' COLUMNS=[2-3] SKIPROWS=1 SAMPLERATE=2000"),
              "Loaded probe.txt: 3 rows of columns [2-3], 2000 Hz\n");
}

TEST_F(Load, TakesTheSampleRateFromTheTimes) {
    EXPECT_EQ(run("LOAD FILE='probe.txt' COLUMNS=[2] TIMECOLUMN=1"), "Loaded probe.txt: 4 rows of columns [2], 2 Hz\n");
}

TEST_F(Load, TakesAnyNameOfAFileWithOneKindOfQuotes) {
    for (const char* name : {"two  words", "it's", "a\\b", "say \"hi\"", "\\", "a=[1-2]"}) {
        SCOPED_TRACE(name);
        writeText(name, "1\n2\n");
        const char quote = std::string(name).find('"') == std::string::npos ? '"' : '\'';
        EXPECT_EQ(run(std::string("LOAD FILE=") + quote + name + quote),
                  "Loaded " + std::string(name) + ": 2 rows of columns [1], no sample rate\n");
    }
}

TEST_F(Load, PassesOverAHeader) {
    writeText("header.txt", "u p\n1 2\n3 4\n5 6\n");
    EXPECT_EQ(run("LOAD FILE='header.txt' HEADER=true SKIPROWS=1"),
              "Loaded header.txt: 2 rows of columns [1-2], no sample rate\n");
    EXPECT_EQ(refusalOf("LOAD FILE='header.txt' HEADER=FALSE"), "Error: header.txt:1: column 1 is no number: \"u\"");
}

TEST_F(Load, TellsOfNewTimesOnceWindowAndDataFit) {
    host.clearCalls();
    run("LOAD FILE='probe.txt' COLUMNS=[1]");
    EXPECT_EQ(host.calledFunctions(),
              (std::vector<std::string>{"VexaUtilLockStart", "VexaUtilZoneSolutionTimeModificationBegin",
                                        "VexaUtilMacroIsRecordingActive", "VexaUtilStateIsProcessingJournal",
                                        "VexaUtilStateIsProcessingLayout", "VexaUtilMacroRecordExtCommand",
                                        "VexaUtilZoneSolutionTimeModificationEnd", "VexaUtilLockFinish"}));
    EXPECT_EQ(host.calls().front().arguments, "PROBESTATS");
}

TEST_F(Load, TakesASetWithBlanksInIt) {
    EXPECT_EQ(run("LOAD  COLUMNS=[ 1 - 3 : 2 ]  FILE=\"probe.txt\" "),
              "Loaded probe.txt: 4 rows of columns [1,3], no sample rate\n");
}

TEST_F(Load, RefusesWhatIsWrongWithItsOptions) {
    const Refusal refusals[] = {
        {"unknown option", "LOAD FILES='probe.txt'",
         "Error: Unknown option of LOAD: FILES; known are COLUMNS, FILE, HEADER, SAMPLERATE, SKIPROWS, TIMECOLUMN"},
        {"lower case", "LOAD file='probe.txt'",
         "Error: Unknown option of LOAD: file; known are COLUMNS, FILE, HEADER, SAMPLERATE, SKIPROWS, TIMECOLUMN"},
        {"no name", "LOAD ='probe.txt'",
         "Error: Unknown option of LOAD: =; known are COLUMNS, FILE, HEADER, SAMPLERATE, SKIPROWS, TIMECOLUMN"},
        {"no file", "LOAD COLUMNS=[1]", "Error: LOAD needs the option FILE"},
        {"nothing at all", "LOAD", "Error: LOAD needs the option FILE"},
        {"given twice", "LOAD FILE='a' FILE='b'", "Error: Duplicate macro command option FILE"},
        {"a number given twice", "LOAD FILE='a' SKIPROWS=0 SKIPROWS=1",
         "Error: Duplicate macro command option SKIPROWS"},
        {"a blank before =", "LOAD FILE ='a'", "Error: Expected assignment operator, but found  "},
        {"a blank after =", "LOAD FILE= 'a'", "Error: Expected single or double quoted string"},
        {"something else than =", "LOAD FILE'a'", "Error: Expected assignment operator, but found '"},
        {"nothing after the name", "LOAD FILE='a' SKIPROWS", "Error: Expected assignment operator"},
        {"text without quotes", "LOAD FILE=probe.txt", "Error: Expected single or double quoted string"},
        {"text missing", "LOAD FILE=", "Error: Expected string operator missing"},
        {"empty text", "LOAD FILE=''", "Error: Empty text for command option: FILE"},
        {"single quote left open", "LOAD FILE='probe.txt COLUMNS=[1]",
         "Error: Expected string to terminate with a single quotation mark"},
        {"double quote left open", "LOAD FILE=\"probe.txt'",
         "Error: Expected string to terminate with a double quotation mark"},
        {"both kinds of quotes", "LOAD FILE=\"say \"it's\"\"",
         "Error: Expected a blank after the value of FILE, but found it"},
        {"no blank between options", "LOAD FILE='a'COLUMNS=[1]",
         "Error: Expected a blank after the value of FILE, but found COLUMNS"},
        {"set without brackets", "LOAD FILE='a' COLUMNS=1", "Error: Expected opening set character, ["},
        {"set missing", "LOAD FILE='a' COLUMNS=", "Error: Expected set operator missing"},
        {"set left open", "LOAD FILE='a' COLUMNS=[1", "Error: Expected closing set character, ]"},
        {"empty set", "LOAD FILE='a' COLUMNS=[]", "Error: Empty set for command option: COLUMNS"},
        {"no Boolean", "LOAD FILE='a' HEADER=YES", "Error: Expected a Boolean operator, but found YES"},
        {"Boolean missing", "LOAD FILE='a' HEADER=", "Error: Expected Boolean operator missing"},
        {"no integer", "LOAD FILE='a' SKIPROWS=1.5", "Error: Invalid integer value 1.5"},
        {"integer missing", "LOAD FILE='a' SKIPROWS=", "Error: Expected UInt64 operator missing"},
        {"over 64 bits", "LOAD FILE='a' SKIPROWS=18446744073709551616",
         "Error: Invalid integer value 18446744073709551616"},
        {"negative", "LOAD FILE='a' SKIPROWS=-1", "Error: Invalid integer value -"},
        {"zero rate", "LOAD FILE='a' SAMPLERATE=0", "Error: SAMPLERATE must be above 0"},
        {"two rates", "LOAD FILE='a' SAMPLERATE=1 TIMECOLUMN=1", "Error: SAMPLERATE and TIMECOLUMN exclude each other"},
        {"time column 0", "LOAD FILE='probe.txt' COLUMNS=[1] TIMECOLUMN=0",
         "Error: probe.txt: columns are 1 to 4, but TIMECOLUMN asks for 0"},
        {"largest time column", "LOAD FILE='probe.txt' COLUMNS=[1] TIMECOLUMN=18446744073709551615",
         "Error: probe.txt: columns are 1 to 4, but TIMECOLUMN asks for 18446744073709551615"},
        {"all rows skipped", "LOAD FILE='probe.txt' COLUMNS=[1] SKIPROWS=18446744073709551615",
         "Error: probe.txt: expected at least 2 rows, found 0"},
    };
    for (const Refusal& r : refusals) EXPECT_EQ(refusalOf(r.command), r.message) << r.why;
}

TEST_F(Load, RefusesASetThatIsNone) {
    EXPECT_EQ(refusalOf("LOAD FILE='a' COLUMNS=[x]").rfind("Error: Expected ", 0), 0u);
}

TEST_F(Load, RefusesFilesItCannotRead) {
    writeText("malformed.txt", "1 2 3\n4 5\n");
    writeText("short.txt", "1 2 3\n");
    const Refusal refusals[] = {
        {"missing file", "LOAD FILE='nowhere.txt'", "Error: Cannot open nowhere.txt: No such file or directory"},
        {"malformed row", "LOAD FILE='malformed.txt'", "Error: malformed.txt:2: expected 3 columns, found 2"},
        {"label", "LOAD FILE='probe.txt'", "Error: probe.txt:2: column 4 is no number: \"a\""},
        {"too short", "LOAD FILE='short.txt'", "Error: short.txt: expected at least 2 rows, found 1"},
        {"no such column", "LOAD FILE='probe.txt' COLUMNS=[5]",
         "Error: probe.txt: columns are 1 to 4, but COLUMNS asks for 5"},
    };
    for (const Refusal& r : refusals) EXPECT_EQ(refusalOf(r.command), r.message) << r.why;
}

TEST_F(Window, TellsWhatRemains) {
    EXPECT_EQ(run("WINDOW FIRST = 2 LAST = 4 STRIDE = 2"), "Window: 2 rows, from 2 to 4 in steps of 2\n");
}

TEST_F(Window, AloneGoesBackToAllRows) {
    run("WINDOW FIRST = 2");
    EXPECT_EQ(run("WINDOW"), "Window: 4 rows, from 1 to 4\n");
    EXPECT_NE(run("SUMMARIZE").find("4 rows, from 1 to 4"), std::string::npos);
}

TEST_F(Window, DoesNotBuildOnTheOneBefore) {
    run("WINDOW FIRST = 2");
    EXPECT_EQ(run("WINDOW LAST = 3"), "Window: 3 rows, from 1 to 3\n");
}

TEST_F(Window, EndsWithTheNextLoad) {
    run("WINDOW FIRST = 2");
    run("LOAD FILE='probe.txt' COLUMNS=[1]");
    EXPECT_NE(run("SUMMARIZE").find("4 rows, from 1 to 4"), std::string::npos);
}

TEST_F(Window, RefusesWhatIsWrongWithItsOptions) {
    const Refusal refusals[] = {
        {"unknown option", "WINDOW FROM = 1", "Error: Unknown option of WINDOW: FROM; known are FIRST, LAST, STRIDE"},
        {"first too low", "WINDOW FIRST = 0", "Error: FIRST must be 1 or more"},
        {"last too high", "WINDOW LAST = 5", "Error: LAST is 5, but there are 4 rows"},
        {"stride too low", "WINDOW STRIDE = 0", "Error: STRIDE must be 1 or more"},
        {"first too high", "WINDOW FIRST = 9223372036854775807",
         "Error: FIRST, LAST and STRIDE leave 0 rows, but 2 are needed"},
        {"reversed", "WINDOW FIRST = 3 LAST = 2", "Error: FIRST, LAST and STRIDE leave 0 rows, but 2 are needed"},
        {"lowest last", "WINDOW LAST = -9223372036854775808",
         "Error: FIRST, LAST and STRIDE leave 0 rows, but 2 are needed"},
        {"one row", "WINDOW STRIDE = 4", "Error: FIRST, LAST and STRIDE leave 1 rows, but 2 are needed"},
        {"nothing after the name", "WINDOW First = 1 Last ", "Error: Missing = and value for command option: Last"},
        {"no blanks around =", "WINDOW First=1", "Error: Missing = and value for command option: First=1"},
        {"given twice", "WINDOW FIRST = 1 FIRST = 2", "Error: Command option given twice: FIRST"},
        {"over 64 bits", "WINDOW LAST = 9223372036854775808", "Error: Invalid Int64 value for command option: LAST\n"},
        {"no = before a single sign", "WINDOW First 2", "Error: Missing =  for command option: First\n"},
        {"no integer", "WINDOW Stride = 2.5", "Error: Invalid Int32 value for command option: Stride\n"},
        {"integer missing", "WINDOW LAST = ", "Error: Invalid Int64 value for command option: LAST\n"},
    };
    for (const Refusal& r : refusals) EXPECT_EQ(refusalOf(r.command), r.message) << r.why;
}

TEST_F(Summarize, ShowsATable) {
    EXPECT_EQ(run("SUMMARIZE"),
              "probe.txt: 4 rows, from 1 to 4, 2 Hz\n"
              "column    count          mean     deviation       minimum       maximum\n"
              "     2        4           2.5       1.29099             1             4\n"
              "     3        4            10             0            10            10\n");
}

TEST_F(Summarize, ShowsTheColumnsAskedForWithinTheWindow) {
    run("WINDOW FIRST = 2 LAST = 4 STRIDE = 2");
    EXPECT_EQ(run("SUMMARIZE COLUMNS = [2]"),
              "probe.txt: 2 rows, from 2 to 4 in steps of 2, 1 Hz\n"
              "column    count          mean     deviation       minimum       maximum\n"
              "     2        2             3       1.41421             2             4\n");
}

TEST_F(Summarize, ShowsDominantFrequencies) {
    loadWave();
    // A period's squares sum up to 3.96; the deviation is the square root of 8 * 3.96 / 63.
    EXPECT_EQ(run("SUMMARIZE SPECTRUM = TRUE DETREND = NO MINFREQUENCY = 2.5"),
              "wave.txt: 64 rows, from 1 to 64, 64 Hz\n"
              "column    count          mean     deviation       minimum       maximum     frequency\n"
              "     1       64             0      0.709124            -1             1             8\n"
              "     2       64             5             0             5             5             -\n");
}

TEST_F(Summarize, TakesADriftOffWhenTold) {
    std::string rows;
    for (int i = 0; i < 64; ++i) rows += std::to_string(i) + '\n';
    writeText("drift.txt", rows);
    run("LOAD FILE='drift.txt' SAMPLERATE=64");
    EXPECT_NE(run("SUMMARIZE SPECTRUM = TRUE").find(" 1\n"), std::string::npos);
    EXPECT_NE(run("SUMMARIZE SPECTRUM = TRUE DETREND = TRUE").find(" -\n"), std::string::npos);
}

TEST_F(Summarize, TakesTheStrideIntoAccount) {
    loadWave();
    run("WINDOW STRIDE = 2");
    EXPECT_NE(run("SUMMARIZE COLUMNS = [1] SPECTRUM = T").find("             8\n"), std::string::npos);
}

TEST_F(Summarize, WritesTheTableToAFile) {
    const std::string shown = run("SUMMARIZE");
    EXPECT_EQ(run("SUMMARIZE FILE = 'summary.txt'"), "");
    EXPECT_EQ(readText("summary.txt"), shown);
}

TEST_F(Summarize, TakesAnyNameOfAFile) {
    for (const char* name : {"two words", "it's", "a\\b", "\"it's\"", "\\"}) {
        SCOPED_TRACE(name);
        std::string escaped;
        for (const char c : std::string(name)) {
            escaped += (c == '\'' || c == '\\') ? std::string{'\\', c} : std::string{c};
        }
        run("SUMMARIZE FILE = '" + escaped + "'");
        EXPECT_NE(readText(name), "");
    }
}

TEST_F(Summarize, RefusesWhatIsWrongWithItsOptions) {
    std::filesystem::create_symlink("probe.txt", "link.txt");
    const Refusal refusals[] = {
        {"unknown option", "SUMMARIZE COLUMN = [1]",
         "Error: Unknown option of SUMMARIZE: COLUMN; known are COLUMNS, FILE, SPECTRUM, DETREND, MINFREQUENCY"},
        {"no Boolean", "SUMMARIZE Spectrum = ON", "Error: Invalid Boolean value for command option: Spectrum\n"},
        {"Boolean missing", "SUMMARIZE SPECTRUM =", "Error: Missing Boolean value for command option: SPECTRUM"},
        {"text without quotes", "SUMMARIZE FILE = out.txt", "Error: Expected a quoted text for command option: FILE"},
        {"text with a line break", "SUMMARIZE FILE = 'a\nb'", "Error: Line break in the text for command option: FILE"},
        {"text missing", "SUMMARIZE FILE =", "Error: Expected a quoted text for command option: FILE"},
        {"empty text", "SUMMARIZE FILE = ''", "Error: Empty text for command option: FILE"},
        {"quote left open", "SUMMARIZE FILE = 'out.txt COLUMNS = [2]",
         "Error: Missing closing quote of: 'out.txt COLUMNS = [2]"},
        {"closing quote escaped", "SUMMARIZE FILE = 'out.txt\\'", "Error: Missing closing quote of: 'out.txt\\'"},
        {"ends on an escape", "SUMMARIZE FILE = 'out.txt\\", "Error: Missing closing quote of: 'out.txt\\"},
        {"closed by the other quote", "SUMMARIZE FILE = 'a\"", "Error: Missing closing quote of: 'a\""},
        {"second text left open", "SUMMARIZE FILE = 'a' FILE = \"b", "Error: Missing closing quote of: \"b"},
        {"set without brackets", "SUMMARIZE Columns = 2",
         "Error: Invalid Set syntax.  Missing starting [ for command option: Columns\n"},
        {"set left open", "SUMMARIZE COLUMNS = [2",
         "Error: Invalid Set syntax.  Missing ending ] for command option: COLUMNS\n"},
        {"no set", "SUMMARIZE COLUMNS = [x]", "Error: Invalid Set syntax. for command option: COLUMNS\n"},
        {"empty set with a blank", "SUMMARIZE COLUMNS = [ ]", "Error: Empty set for command option: COLUMNS"},
        {"no double", "SUMMARIZE MinFrequency = low", "Error: Invalid Double value for command option: MinFrequency\n"},
        {"not a number", "SUMMARIZE MINFREQUENCY = nan",
         "Error: Expected a finite number for command option: MINFREQUENCY"},
        {"infinite", "SUMMARIZE MINFREQUENCY = inf",
         "Error: Expected a finite number for command option: MINFREQUENCY"},
        {"empty set", "SUMMARIZE COLUMNS = []", "Error: Empty set for command option: COLUMNS"},
        {"column not loaded", "SUMMARIZE COLUMNS = [1-2]", "Error: COLUMNS asks for 1, but loaded are [2-3]"},
        {"a huge set", "SUMMARIZE COLUMNS = [2-9223372036854775807]",
         "Error: COLUMNS asks for 4, but loaded are [2-3]"},
        {"detrend without spectrum", "SUMMARIZE DETREND = TRUE",
         "Error: DETREND and MINFREQUENCY need SPECTRUM = TRUE"},
        {"minimum without spectrum", "SUMMARIZE MINFREQUENCY = 1 SPECTRUM = FALSE",
         "Error: DETREND and MINFREQUENCY need SPECTRUM = TRUE"},
        {"too few rows", "SUMMARIZE SPECTRUM = TRUE", "Error: SPECTRUM needs 8 rows or more, but the window has 4"},
        {"folder missing", "SUMMARIZE FILE = 'missing/summary.txt'",
         "Error: Cannot write missing/summary.txt: No such file or directory"},
        {"the data itself", "SUMMARIZE FILE = './probe.txt'",
         "Error: FILE is the file that the data came from: ./probe.txt"},
        {"a link to the data", "SUMMARIZE FILE = 'link.txt'",
         "Error: FILE is the file that the data came from: link.txt"},
    };
    for (const Refusal& r : refusals) EXPECT_EQ(refusalOf(r.command), r.message) << r.why;
}

TEST_F(Summarize, RefusesFrequenciesThatTheSampleRateCannotShow) {
    loadWave();
    EXPECT_EQ(refusalOf("SUMMARIZE SPECTRUM = T MINFREQUENCY = -1"), "Error: MINFREQUENCY must be 0 or more");
    EXPECT_EQ(refusalOf("SUMMARIZE SPECTRUM = T MINFREQUENCY = 32.5"),
              "Error: MINFREQUENCY must be at most half the sample rate");
    EXPECT_EQ(refusalOf("SUMMARIZE SPECTRUM = T MINFREQUENCY = 0.12345678"),
              "Error: Expected at most six significant digits, which is what can be recorded, for command option: "
              "MINFREQUENCY");
}

TEST_F(Summarize, RefusesASpectrumWithoutASampleRate) {
    run("LOAD FILE='probe.txt' COLUMNS=[2]");
    EXPECT_EQ(refusalOf("SUMMARIZE SPECTRUM = TRUE"),
              "Error: SPECTRUM needs a sample rate: LOAD with SAMPLERATE or TIMECOLUMN");
}

TEST_F(AddOn, RefusesToWorkOnNoData) {
    EXPECT_EQ(refusalOf("WINDOW"), "Error: No data: LOAD comes first");
    EXPECT_EQ(refusalOf("SUMMARIZE"), "Error: No data: LOAD comes first");
    EXPECT_EQ(refusalOf("SPECTRUM"), "Error: No data: LOAD comes first");
}

TEST_F(Summarize, IsTheSameAfterCommandsThatFailed) {
    run("WINDOW FIRST = 2");
    const std::string before = run("SUMMARIZE");
    refusalOf("LOAD FILE='nowhere.txt'");
    refusalOf("LOAD FILE='probe.txt'");
    refusalOf("WINDOW FIRST = 1 LAST = 5");
    refusalOf("WINDOW FIRST = 1 LAST");
    EXPECT_EQ(run("SUMMARIZE"), before);
}

}  // namespace
}  // namespace probestats
