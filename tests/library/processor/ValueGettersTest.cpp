// Tests the getters for values of each type.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <new>
#include <stdexcept>
#include <thread>

#include "library/processor/ScriptedProcessor.h"
#include "support/FailingAllocator.h"
#include "support/Sets.h"
#include "vexa/InvalidArgumentException.h"
#include "vexa/OutOfMemoryException.h"
#include "vexastandin/Host.h"

namespace vexa::vexautilutil {
namespace {

using Processor = MacroCommandProcessorAbstract;
using toolbox::Set;

// The message that the host gets, and the word left after reading.
struct Reading {
    Outcome outcome;
    std::string rest;
};

template <class Read>
Reading readFrom(const char* command, Read read) {
    const standin::Host host;
    ScriptedProcessor processor([&](Processor& p) { return read(p); });
    Reading result;
    result.outcome = outcomeOf(processor, command);
    processor.getCommand(result.rest);
    return result;
}

// Does the same for a value after an option's name, as in a real command.
template <class Read>
Reading readOption(const std::string& value, Read read) {
    return readFrom(("Opt = " + value).c_str(), [&](Processor& p) {
        std::string name;
        return p.getNextName(name) && read(p);
    });
}

TEST(GetBooleanValue, ReadsTheAcceptedWordsInAnyLetterCase) {
    for (const char* word : {"t", "T", "True", "TRUE", "yes", "YES", "yEs"}) {
        char value = 7;
        EXPECT_EQ(readOption(word, [&](Processor& p) { return p.getBooleanValue(value); }).outcome, std::nullopt);
        EXPECT_EQ(value, 1) << word;
    }
    for (const char* word : {"f", "F", "false", "FALSE", "No", "NO"}) {
        char value = 7;
        EXPECT_EQ(readOption(word, [&](Processor& p) { return p.getBooleanValue(value); }).outcome, std::nullopt);
        EXPECT_EQ(value, 0) << word;
    }
}

TEST(GetBooleanValue, RefusesAnyOtherWordAndReadsPastIt) {
    for (const char* word : {"Y", "N", "TR", "ON", "OFF", "1", "0", "TRUEX", "'T'"}) {
        char value = 7;
        const Reading reading =
            readOption(std::string(word) + " next", [&](Processor& p) { return p.getBooleanValue(value); });
        EXPECT_EQ(reading.outcome, "Error: Invalid Boolean value for command option: Opt\n") << word;
        EXPECT_EQ(reading.rest, "NEXT") << word;
        EXPECT_EQ(value, 7) << word;
    }
}

TEST(GetBooleanValue, StoresNothingAtTheEnd) {
    char value = 7;
    EXPECT_EQ(readOption("  ", [&](Processor& p) { return p.getBooleanValue(value); }).outcome, "");
    EXPECT_EQ(value, 7);
}

TEST(GetDoubleValue, ReadsANumberAfterWhiteSpace) {
    double value = 0;
    EXPECT_EQ(readOption(" \t -2.5e-3 next", [&](Processor& p) { return p.getDoubleValue(value); }).rest, "NEXT");
    EXPECT_EQ(value, -2.5e-3);
}

TEST(GetDoubleValue, RefusesAnythingElseAndStaysBeforeIt) {
    for (const char* word : {"abc", "1.5x", "1,5", "'1'", "0x10", "1e400"}) {
        double value = 7;
        const Reading reading = readOption(word, [&](Processor& p) { return p.getDoubleValue(value); });
        EXPECT_EQ(reading.outcome, "Error: Invalid Double value for command option: Opt\n") << word;
        EXPECT_NE(reading.rest, "") << word;
        EXPECT_EQ(value, 7) << word;
    }
}

TEST(GetDoubleValue, RefusesTheEnd) {
    double value = 7;
    EXPECT_EQ(readFrom("", [&](Processor& p) { return p.getDoubleValue(value); }).outcome,
              "Error: Invalid Double value");
}

TEST(GetInt32Value, KeepsTheLow32Bits) {
    struct Case {
        const char* text;
        int32_t value;
    };
    const Case cases[] = {
        {"12", 12},        {"-12", -12},       {"2147483647", 2147483647},  {"2147483648", -2147483647 - 1},
        {"4294967297", 1}, {"4294967295", -1}, {"-2147483649", 2147483647}, {"9223372036854775807", -1},
    };
    for (const Case& c : cases) {
        int32_t value = 7;
        EXPECT_EQ(readOption(c.text, [&](Processor& p) { return p.getInt32Value(value); }).outcome, std::nullopt);
        EXPECT_EQ(value, c.value) << c.text;
    }
}

TEST(GetInt32Value, RefusesAnythingElseAndStaysBeforeIt) {
    for (const char* word : {"abc", "1.5", "12x", "9223372036854775808"}) {
        int32_t value = 7;
        const Reading reading = readOption(word, [&](Processor& p) { return p.getInt32Value(value); });
        EXPECT_EQ(reading.outcome, "Error: Invalid Int32 value for command option: Opt\n") << word;
        EXPECT_NE(reading.rest, "") << word;
        EXPECT_EQ(value, 7) << word;
    }
}

TEST(GetInt64Value, ReadsTheWholeRange) {
    int64_t value = 0;
    readOption("-9223372036854775808", [&](Processor& p) { return p.getInt64Value(value); });
    EXPECT_EQ(value, INT64_MIN);
    readOption("+9223372036854775807", [&](Processor& p) { return p.getInt64Value(value); });
    EXPECT_EQ(value, INT64_MAX);
}

TEST(GetInt64Value, RefusesAnythingElseAndStaysBeforeIt) {
    for (const char* word : {"abc", "1.5", "12x", "-9223372036854775809"}) {
        int64_t value = 7;
        const Reading reading = readOption(word, [&](Processor& p) { return p.getInt64Value(value); });
        EXPECT_EQ(reading.outcome, "Error: Invalid Int64 value for command option: Opt\n") << word;
        EXPECT_NE(reading.rest, "") << word;
        EXPECT_EQ(value, 7) << word;
    }
}

TEST(GetStringValue, ReadsBetweenQuotesOfEitherKind) {
    struct Case {
        const char* why;
        const char* text;
        bool processEscapes;
        const char* value;
        const char* rest;
    };
    const Case cases[] = {
        {"double quotes", "\"a b\" next", false, "a b", "NEXT"},
        {"single quotes", "'a b' next", false, "a b", "NEXT"},
        {"blanks before", " \t\n 'a'", false, "a", ""},
        {"empty", "''", true, "", ""},
        {"blanks kept", "'  a  '", true, "  a  ", ""},
        {"the other kind inside", "'say \"hi\"'", false, "say \"hi\"", ""},
        {"the other kind inside, too", "\"it's\"", false, "it's", ""},
        {"an escaped quote", "'it\\'s' next", true, "it's", "NEXT"},
        {"no escapes: the quote ends the text", "'it\\'s' next", false, "it\\", "S'"},
        {"an escaped backslash", "'a\\\\' next", true, "a\\", "NEXT"},
        {"no escapes: two backslashes", "'a\\\\' next", false, "a\\\\", "NEXT"},
        {"no translation of other escapes", "'a\\nb'", true, "anb", ""},
        {"no escapes: kept as written", "'a\\nb'", false, "a\\nb", ""},
        {"a word glued behind stays", "'a'b", true, "a", "B"},
        {"line ends are characters", "'a\r\nb'", true, "a\r\nb", ""},
    };
    for (const Case& c : cases) {
        std::string value = "before";
        const Reading reading =
            readOption(c.text, [&](Processor& p) { return p.getStringValue(value, c.processEscapes); });
        EXPECT_EQ(reading.outcome, std::nullopt) << c.why;
        EXPECT_EQ(value, c.value) << c.why;
        EXPECT_EQ(reading.rest, c.rest) << c.why;
    }
}

TEST(GetStringValue, RefusesAnUnquotedValueWithoutAMessageAndReadsItsFirstCharacter) {
    std::string value = "before";
    const Reading reading = readOption("abc", [&](Processor& p) { return p.getStringValue(value, true); });
    EXPECT_EQ(reading.outcome, "");
    EXPECT_EQ(reading.rest, "BC");
    EXPECT_EQ(value, "");
}

TEST(GetStringValue, EmptiesTheValueAtTheEnd) {
    std::string value = "before";
    EXPECT_EQ(readOption("  ", [&](Processor& p) { return p.getStringValue(value, true); }).outcome, "");
    EXPECT_EQ(value, "");
}

TEST(GetStringValue, FailsWithWhatItReadWhenAnEscapeEndsTheCommand) {
    std::string value;
    EXPECT_EQ(readOption("'abc\\", [&](Processor& p) { return p.getStringValue(value, true); }).outcome, "");
    EXPECT_EQ(value, "abc");
}

// Runs the getter in a child process, gives it time to return, and kills it. No memory is left there, so a getter that
// read past the end and collected characters would fail and return.
TEST(GetStringValue, NeverReturnsFromATextWithoutItsClosingQuote) {
    for (const char* command : {"Opt = 'abc", "Opt = \"", "Opt = 'abc\\"}) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            std::string value;
            readFrom(command, [&](Processor& p) {
                std::string name;
                const bool hasName = p.getNextName(name);
                const tests::FailingAllocator allocator(0, tests::Failing::EverAfter);
                return hasName && p.getStringValue(value, false);
            });
            _exit(0);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, WNOHANG), 0) << command;
        kill(child, SIGKILL);
        waitpid(child, &status, 0);
    }
}

TEST(GetSetValue, ReadsASetAndItsClosingBracket) {
    Set value;
    const Reading reading = readOption("[ 1-3, 5 ] next", [&](Processor& p) { return p.getSetValue(value); });
    EXPECT_EQ(reading.outcome, std::nullopt);
    EXPECT_EQ(value.toString(), "[1-3,5]");
    EXPECT_EQ(reading.rest, "NEXT");
}

TEST(GetSetValue, LeavesTheClosingBracketOfAnEmptySetUnread) {
    Set value = tests::setOf("[4]");
    const Reading reading = readOption("[] next", [&](Processor& p) { return p.getSetValue(value); });
    EXPECT_EQ(reading.outcome, std::nullopt);
    EXPECT_EQ(value.toString(), "[]");
    EXPECT_EQ(reading.rest, "]");
}

TEST(GetSetValue, ReadsAnEmptySetWithABlankWhole) {
    Set value;
    const Reading reading = readOption("[ ] next", [&](Processor& p) { return p.getSetValue(value); });
    EXPECT_EQ(reading.outcome, std::nullopt);
    EXPECT_EQ(value.toString(), "[]");
    EXPECT_EQ(reading.rest, "NEXT");
}

TEST(GetSetValue, RefusesAValueWithoutOpeningBracketAndReadsItsFirstCharacter) {
    Set value = tests::setOf("[4]");
    const Reading reading = readOption("1,2]", [&](Processor& p) { return p.getSetValue(value); });
    EXPECT_EQ(reading.outcome, "Error: Invalid Set syntax.  Missing starting [ for command option: Opt\n");
    EXPECT_EQ(reading.rest, ",2]");
    EXPECT_EQ(value.toString(), "[]") << "emptied first";
}

TEST(GetSetValue, RefusesTheEndAsAMissingBracket) {
    Set value;
    EXPECT_EQ(readFrom("", [&](Processor& p) { return p.getSetValue(value); }).outcome,
              "Error: Invalid Set syntax.  Missing starting [");
}

TEST(GetSetValue, RefusesASetWithoutClosingBracketAndStaysBehindTheOpeningOne) {
    Set value = tests::setOf("[4]");
    const Reading reading = readOption("[1,2", [&](Processor& p) { return p.getSetValue(value); });
    EXPECT_EQ(reading.outcome, "Error: Invalid Set syntax.  Missing ending ] for command option: Opt\n");
    EXPECT_EQ(reading.rest, "1,2");
    EXPECT_EQ(value.toString(), "[]");
}

TEST(GetSetValue, RefusesALoneOpeningBracket) {
    Set value;
    EXPECT_EQ(readOption("[", [&](Processor& p) { return p.getSetValue(value); }).outcome,
              "Error: Invalid Set syntax.  Missing ending ] for command option: Opt\n");
}

TEST(GetSetValue, RefusesWhatTheSetRefusesAndReadsPastIt) {
    for (const char* command : {"[3-1] next", "[1~2] next"}) {
        Set value = tests::setOf("[4]");
        const Reading reading = readOption(command, [&](Processor& p) { return p.getSetValue(value); });
        EXPECT_EQ(reading.outcome, "Error: Invalid Set syntax. for command option: Opt\n") << command;
        EXPECT_EQ(reading.rest, "NEXT") << command;
        EXPECT_EQ(value.toString(), "[]") << command;
    }
}

// A set that records the calls of its virtual operations. They can be made to fail.
class WatchedSet : public Set {
public:
    enum class Failure { None, InvalidArgument, OutOfMemory, BadAlloc };

    explicit WatchedSet(Failure failure) : m_failure(failure) {}

    void clear() override { calls += "clear "; }
    void assign(std::string text) override {
        calls += "assign " + text;
        switch (m_failure) {
            case Failure::None: break;
            case Failure::InvalidArgument: throw InvalidArgumentException("refused");
            case Failure::OutOfMemory: throw OutOfMemoryException("Out of memory");
            case Failure::BadAlloc: throw std::bad_alloc();
        }
    }

    std::string calls;

private:
    Failure m_failure;
};

TEST(GetSetValue, FillsADerivedSetThroughItsOwnOperations) {
    WatchedSet value(WatchedSet::Failure::None);
    readOption("[ 1, 2]", [&](Processor& p) { return p.getSetValue(value); });
    EXPECT_EQ(value.calls, "clear assign [ 1, 2]");
}

TEST(GetSetValue, TurnsTheSetsExceptionsIntoMessages) {
    WatchedSet refusing(WatchedSet::Failure::InvalidArgument);
    EXPECT_EQ(readOption("[1]", [&](Processor& p) { return p.getSetValue(refusing); }).outcome,
              "Error: Invalid Set syntax. for command option: Opt\n");
    WatchedSet exhausted(WatchedSet::Failure::OutOfMemory);
    EXPECT_EQ(readOption("[1]", [&](Processor& p) { return p.getSetValue(exhausted); }).outcome,
              "Error: Internal error processing Set syntax. for command option: Opt\n");
}

TEST(GetSetValue, LetsOtherExceptionsThrough) {
    const standin::Host host;
    WatchedSet value(WatchedSet::Failure::BadAlloc);
    ScriptedProcessor processor([&](Processor& p) { return p.getSetValue(value); });
    char* errMsg = nullptr;
    EXPECT_THROW(processor.parseCommandString("[1]", &errMsg), std::bad_alloc);
}

}  // namespace
}  // namespace vexa::vexautilutil
