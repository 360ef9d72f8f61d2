#include "vexastandin/RandomCommands.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include "vexastandin/Host.h"

namespace vexa::standin {
namespace {

constexpr int kMany = 2000;

const std::vector<CommandForm>& forms() {
    static const std::vector<CommandForm> all = {
        {"GREET", " = ", {{"TIMES", {"1", "2"}, {"many"}, 50}, {"LOUD", {"T"}, {}, 50}}},
        {"LEAVE", "=", {}},
    };
    return all;
}

std::vector<std::string> commandsOf(std::uint64_t seed) {
    RandomCommands random(seed);
    std::vector<std::string> commands;
    for (int i = 0; i < kMany; ++i) commands.push_back(random.command(forms()));
    return commands;
}

TEST(RandomCommands, AreTheSameForTheSameSeed) {
    EXPECT_EQ(commandsOf(7), commandsOf(7));
    EXPECT_NE(commandsOf(7), commandsOf(8));
}

TEST(RandomCommands, AreEveryOneThatIsWellFormed) {
    const std::vector<std::string> commands = commandsOf(1);
    const std::set<std::string> made(commands.begin(), commands.end());
    for (const char* command : {"LEAVE", "GREET", "GREET TIMES = 1", "GREET TIMES = 2", "GREET LOUD = T",
                                "GREET TIMES = 1 LOUD = T", "GREET LOUD = T TIMES = 2"}) {
        EXPECT_EQ(made.count(command), 1u) << command;
    }
}

TEST(RandomCommands, AreAlsoOnesThatAreRefused) {
    const std::vector<std::string> commands = commandsOf(1);
    const std::set<std::string> made(commands.begin(), commands.end());
    for (const char* command : {"GREET TIMES = many", "GREET LOUD = T LOUD = T", "LEAVE TIMES=1", "LEAV", "lEAVE"}) {
        EXPECT_EQ(made.count(command), 1u) << command;
    }
}

TEST(RandomCommands, PutTheHostIntoEveryMode) {
    Host host;
    RandomCommands random(1);
    std::set<bool> stops;
    for (int i = 0; i < kMany; ++i) {
        random.setModes(host);
        stops.insert(host.isStopPressed());
    }
    EXPECT_EQ(stops.size(), 2u) << "the user presses stop now and then";
}

TEST(RandomCommands, CountBelowTheEnd) {
    RandomCommands random(1);
    std::set<std::size_t> numbers;
    for (int i = 0; i < kMany; ++i) numbers.insert(random.below(3));
    EXPECT_EQ(numbers, (std::set<std::size_t>{0, 1, 2}));
}

TEST(RandomCommands, TakeAChanceAsOftenAsAsked) {
    RandomCommands random(1);
    int taken = 0;
    for (int i = 0; i < kMany; ++i) {
        EXPECT_TRUE(random.chance(100));
        EXPECT_FALSE(random.chance(0));
        if (random.chance(25)) ++taken;
    }
    EXPECT_NEAR(taken, kMany / 4, kMany / 20);
}

}  // namespace
}  // namespace vexa::standin
