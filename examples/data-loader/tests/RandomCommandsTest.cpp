#include <map>

#include "LoaderTest.h"
#include "vexastandin/RandomCommands.h"

namespace dataloader {
namespace {

using vexa::standin::CommandForm;
using vexa::standin::RandomCommands;

constexpr std::uint64_t kSessions = 200;
constexpr int kCommandsOfASession = 50;

const std::vector<CommandForm>& commands() {
    static const std::vector<CommandForm> all = {
        {"LOAD",
         " = ",
         {{"FILE",
           {"'small.csv'", "'gaps.txt'", "\"it's.csv\"", "'broken.csv'"},
           {"'long.csv'", "'nowhere.csv'", "small.csv", "''", "'small.csv"},
           95},
          {"SEPARATOR", {"'auto'", "'comma'", "\"blank\""}, {"'tab'", "auto"}},
          {"MISSING", {"'refuse'", "'skip'", "\"keep\""}, {"'KEEP'", "1"}}}},
        {"SUMMARY", " = ", {}},
        {"EXPORT", " = ", {{"FILE", {"'out.csv'", "\"it's out\""}, {"'small.csv'", "'missing/a'", "out", "''"}, 95}}},
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
        write("small.csv", "hour,rain\n0,0.5\n1,1.5\n");
        write("it's.csv", "a\n1\n");
        write("gaps.txt", "a b\n1 2\nNA 4\n");
        write("broken.csv", "hour,rain\n0,0.5\n1,x\n2,2.5\n");
        // Long enough to be stopped on the way.
        std::string rows = "a\n";
        for (int i = 0; i < 5000; ++i) rows += "1\n";
        write("long.csv", rows);
    }

    static void playSession(std::uint64_t seed, Tally& tally) {
        SCOPED_TRACE("session of seed " + std::to_string(seed));
        RandomCommands random(seed);
        writeFiles();
        vexa::standin::AddOnTester addOn(DATALOADER_ADDON);
        const vexa::standin::ExpectNoFindings expectation(addOn.host(), fail);
        addOn.host().setKeepsCalls(false);
        for (int i = 0; i < kCommandsOfASession; ++i) {
            const std::string command = random.command(commands());
            random.setModes(addOn.host());
            const vexa::standin::TestedCommand tested = addOn.run(command);
            ASSERT_TRUE(tested.findings.empty()) << tested;
            if (tested.accepted) ++tally.accepted[command.substr(0, command.find(' '))];
            if (!tested.accepted) ++tally.refused;
            if (tested.error.find("stopped by the user") != std::string::npos) ++tally.stopped;
        }
    }
};

TEST_F(RandomCommandsTest, KeepTheContractInEveryMode) {
    Tally tally;
    testing::internal::CaptureStdout();
    for (std::uint64_t seed = 1; seed <= kSessions && !HasFailure(); ++seed) playSession(seed, tally);
    testing::internal::GetCapturedStdout();
    // All of it came about, not only refusals.
    for (const char* word : {"LOAD", "SUMMARY", "EXPORT"}) EXPECT_GT(tally.accepted[word], 300) << word;
    EXPECT_GT(tally.refused, 1000);
    EXPECT_GT(tally.stopped, 20);
}

}  // namespace
}  // namespace dataloader
