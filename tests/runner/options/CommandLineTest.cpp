#include "options/CommandLine.h"

#include <gtest/gtest.h>

#include "options/UsageError.h"

namespace vexa::runner {
namespace {

using Words = std::vector<std::string>;

constexpr auto kRan = static_cast<ExitStatus_e>(77);

// A program with one command, `go`, whose options the tests add.
class CommandLine : public ::testing::Test {
protected:
    CommandLine() {
        m_program.commands = {Command{"go", "Goes"}};
        go().run = [] { return kRan; };
    }

    Command& go() { return m_program.commands.front(); }

    void accept(const Words& words) const { EXPECT_EQ(parse(m_program, words)(), kRan); }

    // The message with which a command line is refused.
    std::string refusalOf(const Words& words) const {
        try {
            parse(m_program, words);
            return "none";
        } catch (const UsageError& error) {
            return error.what();
        }
    }

    Command m_program{"prog", "Does things"};
};

TEST_F(CommandLine, PutsValuesWhereTheyGo) {
    bool isFast = false;
    int level = 0;
    long offset = 0;
    std::size_t jobs = 0;
    double size = 0;
    std::string name;
    std::optional<std::uint64_t> seed;
    std::optional<std::string> style;
    go().add(flag({"--fast"}, "", &isFast));
    go().add(option({"--level"}, "N", "", &level));
    go().add(option({"--offset"}, "N", "", &offset));
    go().add(option({"-j", "--jobs"}, "N", "", &jobs));
    go().add(option({"--size"}, "X", "", &size));
    go().add(option({"--name"}, "TEXT", "", &name));
    go().add(option({"--seed"}, "N", "", &seed));
    go().add(option({"--style"}, "FILE", "", &style));
    accept({"go", "--fast", "--level", "-3", "--offset=-5", "-j", "4", "--size", "2.5", "--name", "a b", "--seed",
            "18446744073709551615", "--style", "s.json"});
    EXPECT_TRUE(isFast);
    EXPECT_EQ(level, -3);
    EXPECT_EQ(offset, -5);
    EXPECT_EQ(jobs, 4U);
    EXPECT_EQ(size, 2.5);
    EXPECT_EQ(name, "a b");
    EXPECT_EQ(seed, 18446744073709551615U);
    EXPECT_EQ(style, "s.json");
}

TEST_F(CommandLine, LeavesAloneWhatIsNotGiven) {
    int level = 2;
    std::optional<std::string> style;
    std::optional<bool> isStrict;
    go().add(option({"--level"}, "N", "", &level));
    go().add(option({"--style"}, "FILE", "", &style));
    go().add(flag({"--strict"}, "", switchTo(isStrict, true)));
    accept({"go"});
    EXPECT_EQ(level, 2);
    EXPECT_FALSE(style);
    EXPECT_FALSE(isStrict);
}

TEST_F(CommandLine, SetsSwitchesBothWays) {
    std::optional<bool> isStrict;
    go().add(flag({"--strict"}, "", switchTo(isStrict, true)));
    go().add(flag({"--no-strict"}, "", switchTo(isStrict, false)));
    accept({"go", "--no-strict"});
    EXPECT_EQ(isStrict, false);
    accept({"go", "--strict"});
    EXPECT_EQ(isStrict, true);
}

TEST_F(CommandLine, HandsTextOver) {
    std::string taken;
    go().add(option({"--when"}, "WHEN", "", [&taken](const std::string& text) { taken = text; }));
    accept({"go", "--when", "now"});
    EXPECT_EQ(taken, "now");
}

TEST_F(CommandLine, RepeatsOptionsOneValueEach) {
    Words addOns;
    Words files;
    go().add(argument("FILE", "", &files));
    go().add(option({"--addon"}, "FILE.so", "", &addOns));
    accept({"go", "--addon", "a", "m", "n", "--addon", "b", "o"});
    EXPECT_EQ(addOns, Words({"a", "b"}));
    EXPECT_EQ(files, Words({"m", "n", "o"}));
}

TEST_F(CommandLine, RecordsTheOptionsGiven) {
    std::vector<GivenOption> given;
    std::size_t jobs = 0;
    bool isFast = false;
    bool isLoud = false;
    Words files;
    go().add(argument("FILE", "", &files));
    go().add(option({"-j", "--jobs"}, "N", "", &jobs));
    go().add(flag({"--fast"}, "", &isFast));
    go().add(flag({"--loud"}, "", &isLoud));
    go().given = &given;
    accept({"go", "--fast", "m", "-j", "4"});
    EXPECT_EQ(given, std::vector<GivenOption>({{"--jobs", {"4"}}, {"--fast", {}}}));
}

TEST_F(CommandLine, RefusesWhatTheDataDoesNotAllow) {
    std::string folder;
    std::string when;
    std::string id;
    std::size_t jobs = 1;
    bool isLong = false;
    std::optional<std::string> rule;
    go().add(argument("FOLDER", "", &folder).require());
    go().add(argument("RULE", "", &rule).exclude("--long"));
    go().add(flag({"--long"}, "", &isLong).exclude("RULE"));
    go().add(option({"--when"}, "WHEN", "", &when).allow({"now", "never"}));
    go().add(option({"--id"}, "ID", "", &id).check([](const std::string& text) {
        return text == "bad" ? "not this one" : "";
    }));
    go().add(option({"-j", "--jobs"}, "N", "", &jobs).check(Range{1, 8}));
    struct Case {
        Words words;
        const char* refusal;
    };
    const Case cases[] = {
        {{"go"}, "FOLDER is required"},
        {{"go", "a", "b", "--long"}, "RULE cannot be used with --long"},
        {{"go", "a", "--when", "soon"}, "--when: expected now or never, but found soon"},
        {{"go", "a", "--id", "bad"}, "--id: not this one"},
        {{"go", "a", "--id"}, "--id: the value ID is missing"},
        {{"go", "a", "-j", "9"}, "--jobs: expected a number from 1 to 8, but found 9"},
        {{"go", "a", "-j", "x"}, "--jobs: expected a number from 1 to 8, but found x"},
        {{"go", "a", "b", "c"}, "unexpected argument: c"},
        {{"walk"}, "there is no command 'walk'"},
        {{"go", "a", "--id", "fine", "--when", "now", "-j", "8", "--long"}, "none"},
    };
    for (const Case& c : cases) EXPECT_EQ(refusalOf(c.words), c.refusal);
}

TEST_F(CommandLine, ChecksOptionsTogetherOnceAllAreRead) {
    std::string name;
    go().add(option({"--name"}, "TEXT", "", &name));
    go().check = [&name] {
        if (name == "two") throw UsageError("--name: goes alone");
    };
    EXPECT_EQ(refusalOf({"go", "--name", "one"}), "none");
    EXPECT_EQ(refusalOf({"go", "--name", "two"}), "--name: goes alone");
}

TEST_F(CommandLine, NamesTheCommandAndWhatMayBeMeant) {
    bool isFast = false;
    go().add(flag({"--fast"}, "", &isFast));
    try {
        parse(m_program, {"go", "--fats"});
        FAIL() << "an unknown option was accepted";
    } catch (const UsageError& error) {
        EXPECT_EQ(error.call, "prog go");
        EXPECT_EQ(error.suggestions, Words({"--fats: did you mean --fast?"}));
    }
    try {
        parse(m_program, {"og"});
        FAIL() << "an unknown command was accepted";
    } catch (const UsageError& error) {
        EXPECT_EQ(error.call, "prog");
        EXPECT_EQ(error.suggestions, Words({"og: did you mean go?"}));
    }
}

TEST_F(CommandLine, PrintsTheHelpOfTheCommandThatIsAsked) {
    m_program.add(flag({"-h", "--help"}, "", ShowHelp()));
    go().add(flag({"-h", "--help"}, "", ShowHelp()));
    const auto printed = [this](const Words& words, ExitStatus_e status) {
        ::testing::internal::CaptureStdout();
        EXPECT_EQ(parse(m_program, words)(), status);
        return ::testing::internal::GetCapturedStdout();
    };
    EXPECT_EQ(printed({"--help"}, ExitStatus_e::AllWell).rfind("Does things\nUsage: prog [OPTIONS] [COMMAND]\n", 0),
              0U);
    EXPECT_EQ(printed({"go", "-h"}, ExitStatus_e::AllWell).rfind("Goes\nUsage: prog go [OPTIONS]\n", 0), 0U);
}

TEST_F(CommandLine, PrintsTheVersion) {
    m_program.add(flag({"--version"}, "", ShowVersion{"prog 1.2"}));
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(parse(m_program, {"--version"})(), ExitStatus_e::AllWell);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "prog 1.2\n");
}

TEST_F(CommandLine, WithoutACommandPrintsTheHelpAsAnError) {
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(parse(m_program, {})(), ExitStatus_e::BadUsageOrInput);
    EXPECT_EQ(::testing::internal::GetCapturedStderr().rfind("Does things\n", 0), 0U);
}

}  // namespace
}  // namespace vexa::runner
