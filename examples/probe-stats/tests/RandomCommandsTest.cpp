#include <map>

#include "AddOnTest.h"
#include "vexastandin/RandomCommands.h"

namespace probestats {
namespace {

using vexa::standin::CommandForm;
using vexa::standin::RandomCommands;

constexpr std::uint64_t kSessions = 200;
constexpr int kCommandsOfASession = 50;

// No frequency step is small enough to take long.
const std::vector<CommandForm>& commands() {
    using Values = std::vector<std::string>;
    static const Values sets = {"[1]", "[1-2]", "[2,1]", "[1-3]", "[ 1 - 3 : 2 ]"};
    static const Values noSets = {"[9]", "[0]", "[]", "1", "[1", "[x]"};
    static const Values outputs = {"'out.txt'", "\"it's out\""};
    static const Values noOutputs = {"'missing/a'", "'probe.txt'", "''", "'out.txt", "out"};
    static const Values booleans = {"TRUE", "FALSE", "true", "F"};
    static const Values noBooleans = {"MAYBE", "1", "''"};
    static const std::vector<CommandForm> all = {
        {"LOAD",
         "=",
         {{"FILE", {"'probe.txt'", "\"it's.txt\""}, {"'header.txt'", "'broken.txt'", "'nowhere.txt'", "a.txt"}, 98},
          {"COLUMNS", sets, noSets},
          {"HEADER", booleans, noBooleans},
          {"SAMPLERATE", {"64"}, {"1", "0", "2.5"}, 80},
          {"SKIPROWS", {"0", "1"}, {"60", "64", "18446744073709551616"}},
          {"TIMECOLUMN", {"1"}, {"0", "9", "3"}, 10}}},
        {"WINDOW",
         " = ",
         {{"FIRST", {"1", "3"}, {"0", "99", "9223372036854775808"}},
          {"LAST", {"62", "40"}, {"2", "-9223372036854775808"}},
          {"STRIDE", {"1"}, {"2", "0", "70"}}}},
        {"SUMMARIZE",
         " = ",
         {{"COLUMNS", sets, noSets},
          {"FILE", outputs, noOutputs},
          {"SPECTRUM", booleans, noBooleans},
          {"DETREND", booleans, noBooleans},
          {"MINFREQUENCY", {"0", "2.5"}, {"-1", "nan", "99"}}}},
        {"SPECTRUM",
         " = ",
         {{"COLUMNS", sets, noSets},
          {"FILE", outputs, noOutputs},
          {"SECTION", {"8", "16", "32"}, {"7", "999"}},
          {"STEP", {"1", "8", "16"}, {"0"}},
          {"MINFREQUENCY", {"0", "0.25", "4"}, {"-1", "30"}},
          {"MAXFREQUENCY", {"8", "31"}, {"99", "0.5"}},
          {"FREQUENCYSTEP", {"0.5", "2"}, {"0"}},
          {"PEAKS", {"1", "3", "5"}, {"0"}}}},
    };
    return all;
}

/// What came of all sessions.
struct Tally {
    std::map<std::string, int> accepted;  ///< by the word of the command
    int refused = 0;
    int stopped = 0;
};

class RandomCommandsTest : public FolderTest {
protected:
    static void writeFiles() {
        std::string rows;
        for (int i = 0; i < 64; ++i) rows += std::to_string(i * 0.5) + ' ' + std::to_string(i % 8) + " 5\n";
        writeText("probe.txt", rows);
        writeText("it's.txt", rows);
        writeText("header.txt", "t u p\n" + rows);
        writeText("broken.txt", "1 2 3\n4 x 6\n");
    }

    // Of the kinds that the host has for these settings.
    static void setStyle(RandomCommands& random, vexa::standin::Host& host) {
        vexa::toolbox::Set columns;
        columns.insert(1, static_cast<std::int64_t>(1 + random.below(4)));
        if (random.chance(50)) host.setStyle({"FieldMap", "ActiveFieldMaps"}, columns);
        const auto digits = static_cast<std::int64_t>(random.below(20));
        if (random.chance(50)) host.setStyle({"Text", "NumberFormat", "Precision"}, digits);
        if (random.chance(50)) host.setStyle({"Frame", "Title", "Text"}, std::string(random.below(3), 'x'));
    }

    static void playSession(std::uint64_t seed, Tally& tally) {
        SCOPED_TRACE("session of seed " + std::to_string(seed));
        RandomCommands random(seed);
        writeFiles();
        LoadedHost loaded;
        loaded.host.setKeepsCalls(false);
        setStyle(random, loaded.host);
        for (int i = 0; i < kCommandsOfASession; ++i) {
            const std::string command = random.command(commands());
            random.setModes(loaded.host);
            const vexa::standin::TestedCommand tested = loaded.play(command).tested;
            ASSERT_TRUE(tested.findings.empty()) << tested;
            if (tested.accepted) ++tally.accepted[command.substr(0, command.find(' '))];
            if (!tested.accepted) ++tally.refused;
            if (tested.error.find("stopped by the user") != std::string::npos) ++tally.stopped;
        }
    }
};

TEST_F(RandomCommandsTest, KeepTheContractInEveryMode) {
    Tally tally;
    for (std::uint64_t seed = 1; seed <= kSessions && !HasFailure(); ++seed) playSession(seed, tally);
    // All of it came about, not only refusals.
    for (const char* word : {"LOAD", "WINDOW", "SUMMARIZE", "SPECTRUM"}) EXPECT_GT(tally.accepted[word], 300) << word;
    EXPECT_GT(tally.refused, 1000);
    EXPECT_GT(tally.stopped, 20);
}

}  // namespace
}  // namespace probestats
