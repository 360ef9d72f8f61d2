#include <algorithm>
#include <iostream>
#include <map>
#include <vector>

#include "LoaderTest.h"
#include "vexastandin/RandomCommands.h"

namespace dataloader {
namespace {

using vexa::standin::RandomCommands;

constexpr std::size_t kCommandsOfASession = 50;

/// A random command that `vexa-standin random` wrote from the description.
struct DescribedCommand {
    std::string text;
    bool isWrong;
};

// Without the id of the add-on. A comment before a wrong command says so.
std::vector<DescribedCommand> describedCommands() {
    std::ifstream in(RANDOM_MACRO);
    std::vector<DescribedCommand> commands;
    bool isWrong = false;
    for (std::string line; std::getline(in, line);) {
        if (line.front() != '#') commands.push_back({line.substr(line.find(' ') + 1), isWrong});
        isWrong = line.rfind("# wrong: ", 0) == 0;
    }
    return commands;
}

/// What came of all sessions.
struct Tally {
    std::map<std::string, int> accepted;  ///< by the word of the command
    int refused = 0;
    int stopped = 0;
};

class RandomCommandsTest : public FolderTest {
protected:
    // The files of the examples. Some cannot be read; some are long enough to be stopped on the way.
    static void writeFiles(RandomCommands& random) {
        write("full.csv", random.chance(20) ? "hour,rain\n0,0.5\n1,x\n2,2.5\n" : "hour,rain\n0,0.5\n1,1.5\n");
        write("full.txt", random.chance(20) ? "a b\n1 2\nNA 4\n" : "hour rain\n0 0.5\n1 1.5\n");
        write("rain.csv", random.chance(30) ? largeTable(5000) : "hour,rain\n0,0.5\n1,NA\n2,1.5\n");
        if (random.chance(10)) std::filesystem::create_directory("copy.csv");
    }

    static void playSession(const std::vector<DescribedCommand>& commands, std::size_t begin, Tally& tally) {
        SCOPED_TRACE("session from command " + std::to_string(begin));
        RandomCommands random(begin);
        writeFiles(random);
        vexa::standin::AddOnTester addOn(DATALOADER_ADDON);
        const vexa::standin::ExpectNoFindings expectation(addOn.host(), fail);
        addOn.host().setKeepsCalls(false);
        for (std::size_t at = begin; at != std::min(begin + kCommandsOfASession, commands.size()); ++at) {
            const bool isDamaged = random.chance(10);
            const std::string& text = commands[at].text;
            random.setModes(addOn.host());
            const vexa::standin::TestedCommand tested = addOn.run(isDamaged ? random.damaged(text) : text);
            ASSERT_TRUE(tested.findings.empty()) << tested;
            ASSERT_FALSE(tested.accepted && commands[at].isWrong && !isDamaged) << tested;
            if (tested.accepted) ++tally.accepted[text.substr(0, text.find(' '))];
            if (!tested.accepted) ++tally.refused;
            if (tested.error.find("stopped by the user") != std::string::npos) ++tally.stopped;
        }
        std::error_code ignored;
        std::filesystem::remove("copy.csv", ignored);
    }
};

TEST_F(RandomCommandsTest, KeepTheContractInEveryMode) {
    const std::vector<DescribedCommand> commands = describedCommands();
    ASSERT_GE(commands.size(), 10000U);
    Tally tally;
    testing::internal::CaptureStdout();
    for (std::size_t begin = 0; begin < commands.size() && !HasFailure(); begin += kCommandsOfASession) {
        playSession(commands, begin, tally);
    }
    const std::string printed = testing::internal::GetCapturedStdout();
    if (HasFailure()) std::cout << printed;  // with the failures
    // All of it came about, not only refusals.
    for (const char* word : {"LOAD", "SUMMARY", "EXPORT"}) EXPECT_GT(tally.accepted[word], 300) << word;
    EXPECT_GT(tally.refused, 1000);
    EXPECT_GT(tally.stopped, 20);
}

}  // namespace
}  // namespace dataloader
