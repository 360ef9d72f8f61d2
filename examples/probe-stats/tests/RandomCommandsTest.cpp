#include <algorithm>
#include <map>
#include <vector>

#include "AddOnTest.h"
#include "vexastandin/RandomCommands.h"

namespace probestats {
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
    // A few rows are soon read. Some files cannot be read, and some summaries cannot be written.
    static void writeFiles(RandomCommands& random) {
        std::string rows;
        for (int i = 0; i < 64; ++i) rows += std::to_string(i * 0.5) + ' ' + std::to_string(i % 8) + " 5\n";
        if (random.chance(10)) rows.insert(rows.size() / 2, "4 x 6\n");
        if (random.chance(10)) rows.insert(0, "t u p\n");
        if (random.chance(10)) rows.resize(random.below(20));
        writeText("probe.txt", rows);
        if (random.chance(10)) std::filesystem::create_directory("summary.txt");
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

    static void playSession(const std::vector<DescribedCommand>& commands, std::size_t begin, Tally& tally) {
        SCOPED_TRACE("session from command " + std::to_string(begin));
        RandomCommands random(begin);
        writeFiles(random);
        LoadedHost loaded;
        loaded.host.setKeepsCalls(false);
        setStyle(random, loaded.host);
        for (std::size_t at = begin; at != std::min(begin + kCommandsOfASession, commands.size()); ++at) {
            const bool isDamaged = random.chance(10);
            const std::string& text = commands[at].text;
            random.setModes(loaded.host);
            const vexa::standin::TestedCommand tested = loaded.play(isDamaged ? random.damaged(text) : text).tested;
            ASSERT_TRUE(tested.findings.empty()) << tested;
            ASSERT_FALSE(tested.accepted && commands[at].isWrong && !isDamaged) << tested;
            if (tested.accepted) ++tally.accepted[text.substr(0, text.find(' '))];
            if (!tested.accepted) ++tally.refused;
            if (tested.error.find("stopped by the user") != std::string::npos) ++tally.stopped;
        }
        std::error_code ignored;
        std::filesystem::remove("summary.txt", ignored);
    }
};

TEST_F(RandomCommandsTest, KeepTheContractInEveryMode) {
    const std::vector<DescribedCommand> commands = describedCommands();
    ASSERT_GE(commands.size(), 10000U);
    Tally tally;
    for (std::size_t begin = 0; begin < commands.size() && !HasFailure(); begin += kCommandsOfASession) {
        playSession(commands, begin, tally);
    }
    // All of it came about, not only refusals.
    for (const char* word : {"LOAD", "WINDOW", "SUMMARIZE", "SPECTRUM"}) EXPECT_GT(tally.accepted[word], 300) << word;
    EXPECT_GT(tally.refused, 1000);
    EXPECT_GT(tally.stopped, 20);
}

}  // namespace
}  // namespace probestats
