#include "AddOnTest.h"

namespace probestats {
namespace {

using Recording = AddOnTest;

TEST_F(Recording, WritesTheOptionsGivenInOneOrderAndForm) {
    run("load COLUMNS=[3,2] TIMECOLUMN=01 SKIPROWS=0 FILE='probe.txt' ");
    run("WINDOW STRIDE = +2 FIRST = 01");
    run("WINDOW");
    run("LOAD SKIPROWS=1 SAMPLERATE=+2500000 HEADER=false COLUMNS=[ 1 ] FILE=\"probe.txt\"");
    run("SUMMARIZE SPECTRUM = no FILE = 'out.txt' COLUMNS = [1]");
    EXPECT_EQ(recorded(),
              "LOAD COLUMNS=[2-3] FILE='probe.txt' TIMECOLUMN=1\n"
              "WINDOW FIRST = 1 STRIDE = 2\n"
              "WINDOW\n"
              "LOAD COLUMNS=[1] FILE=\"probe.txt\" SAMPLERATE=2500000 SKIPROWS=1\n"
              "SUMMARIZE COLUMNS = [1] FILE = 'out.txt' SPECTRUM = F\n");
}

TEST_F(Recording, EscapesTexts) {
    run("LOAD FILE='probe.txt' COLUMNS=[1]");
    run("SUMMARIZE FILE = \"it's a\\\\b\"");
    EXPECT_EQ(recorded(), "LOAD COLUMNS=[1] FILE='probe.txt'\nSUMMARIZE FILE = 'it\\'s a\\\\b'\n");
}

TEST_F(Recording, LeavesOutWhatFailed) {
    refusalOf("LOAD FILE='nowhere.txt'");
    refusalOf("WINDOW");
    EXPECT_EQ(recorded(), "");
}

TEST_F(Recording, NamesTheAddOn) {
    run("LOAD FILE='probe.txt' COLUMNS=[1]");
    ASSERT_EQ(host.recordedCommands().size(), 1u);
    EXPECT_EQ(host.recordedCommands()[0].addOnId, "PROBESTATS");
}

TEST_F(Recording, HappensOnlyWhenTheHostRecords) {
    host.setRecording(false);
    run("LOAD FILE='probe.txt' COLUMNS=[1]");
    EXPECT_EQ(recorded(), "");
}

TEST_F(Recording, LeavesTheStateAsItWasWhenTheHostRefusesIt) {
    run("LOAD FILE='probe.txt' COLUMNS=[1]");
    const std::string before = run("SUMMARIZE");
    host.failCall("VexaUtilMacroRecordExtCommand");
    const vexa::standin::TestedCommand result = play("WINDOW FIRST = 2").tested;
    EXPECT_FALSE(result.accepted);
    EXPECT_EQ(result.error, "Error: The host did not record the command");
    EXPECT_EQ(run("SUMMARIZE"), before);
}

// What commands print, and what is recorded of them.
struct Outcome {
    std::string printed;
    std::string recorded;
};

Outcome play(const std::vector<std::string>& commands) {
    LoadedHost loaded;
    Outcome outcome;
    for (const std::string& command : commands) outcome.printed += loaded.run(command);
    outcome.recorded = loaded.recorded();
    return outcome;
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = text.find('\n', begin);
        lines.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return lines;
}

class RecordedMacro : public FolderTest {};

TEST_F(RecordedMacro, PlaysBackToTheSameOutcome) {
    std::filesystem::copy(PROBESTATS_FOLDER "/data/wake-probe.txt", "it's.txt");
    const Outcome first = play({
        "LOAD FILE=\"it's.txt\" COLUMNS=[1-5] SKIPROWS=3 SAMPLERATE=1999 HEADER=TRUE",
        "SUMMARIZE",
        "LOAD TIMECOLUMN=1 SKIPROWS=0 FILE=\"it's.txt\"",
        "WINDOW STRIDE = 3 FIRST = 201 LAST = 2998",
        "SUMMARIZE SPECTRUM = TRUE DETREND = YES MINFREQUENCY = 0.000123 COLUMNS = [2,3,4,5]",
        "SUMMARIZE COLUMNS = [4] SPECTRUM = true FILE = 'summary.txt'",
        "WINDOW",
        "SPECTRUM PEAKS = 2 STEP = 700 MAXFREQUENCY = 200 MINFREQUENCY = 0.5 FREQUENCYSTEP = 2.5 SECTION = 500",
        "SPECTRUM COLUMNS = [2] STEP = 2000 FILE = 'spectrum.txt'",
    });
    const std::string summary = readText("summary.txt");
    ASSERT_NE(summary, "");
    const std::string spectrum = readText("spectrum.txt");
    ASSERT_NE(spectrum, "");
    std::filesystem::remove("summary.txt");
    std::filesystem::remove("spectrum.txt");

    const Outcome second = play(linesOf(first.recorded));
    EXPECT_EQ(linesOf(first.recorded).size(), 9u);
    EXPECT_EQ(second.printed, first.printed);
    EXPECT_EQ(second.recorded, first.recorded);
    EXPECT_EQ(readText("summary.txt"), summary);
    EXPECT_EQ(readText("spectrum.txt"), spectrum);
}

}  // namespace
}  // namespace probestats
