// Tests texts that only an attacker or a broken program writes: huge texts, a single token, a million options, NULs,
// lone quotes, deep brackets, invalid UTF-8, numbers of a million digits. The library must read each text correctly or
// refuse it with a clear message. Its time must be linear in the size, and its memory a small multiple of the size.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "library/macro/Tokens.h"
#include "library/processor/ScriptedProcessor.h"
#include "load/LargeTexts.h"
#include "load/Load.h"
#include "load/Resources.h"
#include "vexa/InvalidArgumentException.h"
#include "vexa/toolbox/Set.h"
#include "vexastandin/Host.h"
#include "vexautilutil/BooleanMacroOption.h"
#include "vexautilutil/SetMacroOption.h"
#include "vexautilutil/StringMacroOption.h"
#include "vexautilutil/UInt64MacroOption.h"

namespace vexa::vexautilutil {
namespace {

using load::counted;
using load::filled;
using load::repeated;

constexpr std::size_t kMostAnswered = 300;

// A kind of text, and how the answer to it starts, for any size.
struct Hostile {
    const char* name;
    std::string (*text)(std::size_t size);
    const char* answer;
    long memoryFactor;    // the allowed memory divided by the size of the text, including the text itself
    long moreKiB = 4096;  // the allowed memory that does not grow with the text

    friend std::ostream& operator<<(std::ostream& out, const Hostile& hostile) { return out << hostile.name; }
};

struct Cost {
    double seconds = 0;
    long peakKiB = 0;
};

// Expects the correct answer to a text of `size`.
Cost costOf(const Hostile& hostile, std::size_t size, std::string (*answerTo)(const std::string& text)) {
    EXPECT_TRUE(load::forgetPeakMemory());
    const long before = load::peakMemoryKiB();
    const std::string text = hostile.text(size);
    const double begin = load::processorSeconds();
    const std::string answer = answerTo(text);
    Cost cost;
    cost.seconds = load::processorSeconds() - begin;
    cost.peakKiB = load::peakMemoryKiB() - before;
    EXPECT_EQ(answer.substr(0, std::string(hostile.answer).size()), hostile.answer);
    return cost;
}

// Returns the median of three.
double medianSeconds(const Hostile& hostile, std::size_t size, std::string (*answerTo)(const std::string& text)) {
    std::array<double, 3> seconds{};
    for (double& one : seconds) one = costOf(hostile, size, answerTo).seconds;
    std::sort(seconds.begin(), seconds.end());
    return seconds[1];
}

// Expects that four times the text takes about four times the time. If a single measurement fails, uses the median of
// three, because a text that exceeds the allocator's free memory takes longer to copy.
void expectLinear(const Hostile& hostile, std::size_t size, double seconds,
                  std::string (*answerTo)(const std::string&)) {
    constexpr double kMost = 8;
    constexpr double kCopying = 0.1;
    double quarter = costOf(hostile, size / 4, answerTo).seconds;
    if (seconds > kMost * quarter + kCopying) {
        seconds = medianSeconds(hostile, size, answerTo);
        quarter = medianSeconds(hostile, size / 4, answerTo);
    }
    std::printf(", a quarter of it %.3f s", quarter);
    EXPECT_LE(seconds, kMost * quarter + kCopying);
}

void expectBearable(const Hostile& hostile, std::string (*answerTo)(const std::string& text)) {
    const std::size_t size = load::largeSize();
    const Cost cost = costOf(hostile, size, answerTo);
    const long sizeKiB = static_cast<long>(size / 1024);
#if !VEXA_IS_SANITIZED
    EXPECT_LE(cost.peakKiB, hostile.memoryFactor * sizeKiB + hostile.moreKiB);
#endif
    std::printf("%zu MB: %.3f s, %.1f times the text's memory", size >> 20, cost.seconds,
                static_cast<double>(cost.peakKiB) / static_cast<double>(sizeKiB));
    if (load::isLong()) {
        expectLinear(hostile, size, cost.seconds, answerTo);
    }
    std::printf("\n");
}

// ---- Sets

std::string answerOfSet(const std::string& text) {
    toolbox::Set set;
    try {
        set.assign(text);
    } catch (const InvalidArgumentException& refusal) {
        EXPECT_LT(refusal.message().size(), kMostAnswered) << "a message is for people";
        return refusal.message();
    }
    toolbox::Set again;
    again.assign(set.toString());
    EXPECT_TRUE(again == set);
    return set.isEmpty() ? "none" : "from " + std::to_string(*set.begin());
}

const Hostile kSets[] = {
    {"OneNumber", [](std::size_t n) { return '[' + filled(n, '7') + ']'; }, "Expected ", 4},
    {"LeadingZeros", [](std::size_t n) { return '[' + filled(n, '0') + "5]"; }, "from 5", 4},
    {"Ascending",
     [](std::size_t n) { return '[' + counted(n, [](std::size_t i) { return std::to_string(2 * i) + ','; }) + "0]"; },
     "from 0", 24},
    {"Descending",
     [](std::size_t n) {
         return '[' + counted(n, [](std::size_t i) { return std::to_string(200000000 - 2 * i) + ','; }) + "9]";
     },
     "from 9", 24},
    {"OneMemberAgainAndAgain", [](std::size_t n) { return '[' + repeated(n, "5,") + "5]"; }, "from 5", 24},
    {"Overlapping", [](std::size_t n) { return '[' + repeated(n, "0-9,5-99,") + "5]"; }, "from 0", 24},
    {"TooManySteps", [](std::size_t n) { return '[' + repeated(n, "0-20000000:2,") + "5]"; },
     "Expected at most 16777216 members in stepped ranges", 4, 600L << 10},
    {"Blanks", [](std::size_t n) { return '[' + filled(n, ' ') + "5 ]"; }, "from 5", 4},
    {"NulsOnly", [](std::size_t n) { return filled(n, '\0'); }, "Expected '[' at column 1 ", 4},
    {"NulsInside", [](std::size_t n) { return "[1" + filled(n, '\0') + ']'; }, "Expected ", 4},
    {"BehindTheEnd", [](std::size_t n) { return "[1]" + filled(n, ']'); }, "Expected nothing after ']' at column 4 ",
     4},
    {"DeepBrackets", [](std::size_t n) { return filled(n, '['); }, "Expected a number", 4},
    {"Quotes", [](std::size_t n) { return filled(n, '"'); }, "Expected '[' at column 1 ", 4},
    {"NoUtf8", [](std::size_t n) { return '[' + filled(n, '\xff') + ']'; }, "Expected a number", 4},
    {"Commas", [](std::size_t n) { return '[' + filled(n, ',') + ']'; }, "Expected a number", 4},
    {"NeverEnding", [](std::size_t n) { return '[' + repeated(n, "5,"); }, "Expected a number", 24},
};

class HostileSet : public testing::TestWithParam<Hostile> {};

TEST_P(HostileSet, IsReadOrRefused) { expectBearable(GetParam(), answerOfSet); }

INSTANTIATE_TEST_SUITE_P(Every, HostileSet, testing::ValuesIn(kSets), load::NameOf());

// ---- Commands through the processor

// Reads options. The first letter of a name decides the type.
bool readCommand(MacroCommandProcessorAbstract& command, long& options) {
    std::string word;
    std::string name;
    if (!command.getCommand(word)) return false;
    for (; command.getNextName(name); name.clear(), ++options) {
        bool isRead = false;
        char flag = 0;
        double real = 0;
        std::int64_t integer = 0;
        std::string text;
        toolbox::Set set;
        switch (name.front()) {
            case 'B': isRead = command.getBooleanValue(flag); break;
            case 'D': isRead = command.getDoubleValue(real); break;
            case 'I': isRead = command.getInt64Value(integer); break;
            case 'T': isRead = command.getStringValue(text, true); break;
            case 'V': isRead = command.getStringValue(text, false); break;
            case 'S': isRead = command.getSetValue(set); break;
            default: command.depositErrorMessage("unknown");
        }
        if (!isRead) return false;
    }
    return name.empty();
}

std::string answerOfProcessor(const std::string& text) {
    standin::Host host;
    host.setKeepsCalls(false);
    long options = 0;
    ScriptedProcessor processor([&](MacroCommandProcessorAbstract& command) { return readCommand(command, options); });
    const Outcome outcome = outcomeOf(processor, text.c_str());
    EXPECT_TRUE(host.violations().empty());
    if (outcome) return *outcome;
    return options < 2 ? "accepted with " + std::to_string(options) : "accepted";
}

// Returns the only option of a command.
std::string only(const std::string& option) { return "LOAD " + option; }

const Hostile kCommands[] = {
    {"CommandWord", [](std::size_t n) { return filled(n, 'a'); }, "accepted with 0", 8},
    {"Blanks", [](std::size_t n) { return only(filled(n, ' ')); }, "accepted with 0", 8},
    {"Integers", [](std::size_t n) { return only(repeated(n, "I = 1 ")); }, "accepted", 8},
    {"Doubles", [](std::size_t n) { return only(repeated(n, "D = 2.5e-3 ")); }, "accepted", 8},
    {"Flags", [](std::size_t n) { return only(repeated(n, "B = yes ")); }, "accepted", 8},
    {"Texts", [](std::size_t n) { return only(repeated(n, "T = 'a b' V = \"\" ")); }, "accepted", 8},
    {"Sets", [](std::size_t n) { return only(repeated(n, "S = [1-3,5] ")); }, "accepted", 8},
    {"Name", [](std::size_t n) { return only(filled(n, 'T')); }, "", 12},
    {"NameWithoutEquals", [](std::size_t n) { return only(filled(n, 'T') + " x"); },
     "Error: Missing =  for command option: TTTT", 16},
    {"Equals", [](std::size_t n) { return only("I " + filled(n, '=')); },
     "Error: Invalid Int64 value for command option: I\n", 8},
    {"LongInteger", [](std::size_t n) { return only("I = " + filled(n, '1')); },
     "Error: Invalid Int64 value for command option: I\n", 8},
    {"IntegerOfZeros", [](std::size_t n) { return only("I = -" + filled(n, '0') + '1'); }, "accepted with 1", 8},
    {"LongDouble", [](std::size_t n) { return only("D = " + filled(n, '1')); },
     "Error: Invalid Double value for command option: D\n", 8},
    {"LongFraction", [](std::size_t n) { return only("D = 0." + filled(n, '3')); }, "accepted with 1", 8},
    {"VerySmallDouble", [](std::size_t n) { return only("D = 0." + filled(n, '0') + '1'); }, "accepted with 1", 8},
    {"LongExponent", [](std::size_t n) { return only("D = 1e" + filled(n, '9')); },
     "Error: Invalid Double value for command option: D\n", 8},
    {"LongNegativeExponent", [](std::size_t n) { return only("D = 1e-" + filled(n, '9')); }, "accepted with 1", 8},
    {"LongNanNote", [](std::size_t n) { return only("D = nan(" + filled(n, 'a') + ')'); },
     "Error: Invalid Double value for command option: D\n", 8},
    {"LongFlag", [](std::size_t n) { return only("B = " + filled(n, 't')); },
     "Error: Invalid Boolean value for command option: B\n", 8},
    {"LongText", [](std::size_t n) { return only("T = '" + filled(n, 'x') + '\''); }, "accepted with 1", 8},
    {"QuotesInText", [](std::size_t n) { return only("T = '" + filled(n, '"') + '\''); }, "accepted with 1", 8},
    {"EscapesInText", [](std::size_t n) { return only("T = '" + filled(n / 2 * 2, '\\') + '\''); }, "accepted with 1",
     8},
    {"NoUtf8InText", [](std::size_t n) { return only("V = \"" + filled(n, '\xff') + '"'); }, "accepted with 1", 8},
    {"LineFeeds", [](std::size_t n) { return only(repeated(n, "\nI\r=\t1\v\f ")); }, "accepted", 8},
    {"Nul", [](std::size_t n) { return only("I = 1" + filled(n, '\0')); }, "accepted with 1", 8},
    {"LongSet",
     [](std::size_t n) {
         return only("S = [" + counted(n, [](std::size_t i) { return std::to_string(2 * i) + ','; }) + "0]");
     },
     "accepted with 1", 24},
    {"DeepSet", [](std::size_t n) { return only("S = " + filled(n, '[') + ']'); },
     "Error: Invalid Set syntax. for command option: S\n", 8},
    {"SetWithoutEnd", [](std::size_t n) { return only("S = [" + repeated(n, "5,")); },
     "Error: Invalid Set syntax.  Missing ending ] for command option: S\n", 8},
};

class HostileCommand : public testing::TestWithParam<Hostile> {};

TEST_P(HostileCommand, IsReadOrRefused) { expectBearable(GetParam(), answerOfProcessor); }

INSTANTIATE_TEST_SUITE_P(Every, HostileCommand, testing::ValuesIn(kCommands), load::NameOf());

// ---- Commands of the command model

class ModelCommand : public MacroCommandAbstract {
public:
    using MacroCommandAbstract::MacroCommandAbstract;
    void execute() override {}
};

// Reads the option at `current`. The first letter of its name decides the type.
std::shared_ptr<MacroOptionInterface> optionAt(MacroTokenIterator& current, const MacroTokenIterator& end) {
    switch (current->front()) {
        case 'B': return std::make_shared<BooleanMacroOption>(current, end, nullptr);
        case 'S': return std::make_shared<SetMacroOption>(current, end, false, nullptr);
        case 'T': return std::make_shared<StringMacroOption>(current, end, nullptr);
        default: return std::make_shared<UInt64MacroOption>(current, end, nullptr);
    }
}

std::string answerOfModel(const std::string& text) {
    return refusalOf([&] {
        const MacroTokenizer tokens = MacroCommandAbstract::tokenize(text);
        MacroTokenIterator current = tokens.begin();
        const MacroTokenIterator end = tokens.end();
        ModelCommand command(parseIdentifier(current, end));
        while (current != end) {
            if (*current == " ") {
                ++current;
            } else {
                command.addOption(optionAt(current, end));
            }
        }
        std::string rendered = command.toString();
        EXPECT_TRUE(command.options().size() < 2 || rendered == text)
            << "the options are given in the order of their names";
    });
}

std::string numbered(std::size_t i) {
    std::string digits = std::to_string(i);
    return std::string(8 - digits.size(), '0') + digits;
}

const Hostile kModelCommands[] = {
    {"Name", [](std::size_t n) { return filled(n, 'a'); }, "accepted", 16},
    {"Blanks", [](std::size_t n) { return only(filled(n, ' ')); }, "accepted", 8},
    {"Options",
     [](std::size_t n) { return "LOAD" + counted(n, [](std::size_t i) { return " I" + numbered(i) + "=1"; }); },
     "accepted", 48},
    {"Twins", [](std::size_t n) { return only(repeated(n, "I=1 ")); }, "Duplicate macro command option I", 8},
    {"OptionName", [](std::size_t n) { return only(filled(n, 'I') + "=1"); }, "accepted", 24},
    {"OptionNameAlone", [](std::size_t n) { return only(filled(n, 'I')); }, "Expected assignment operator", 24},
    {"Equals", [](std::size_t n) { return only("I" + filled(n, '=')); }, "Invalid integer value =", 8},
    {"LongInteger", [](std::size_t n) { return only("I=" + filled(n, '1')); }, "Invalid integer value 1111", 24},
    {"IntegerOfZeros", [](std::size_t n) { return only("I=" + filled(n, '0') + '1'); }, "accepted", 24},
    {"LongFlag", [](std::size_t n) { return only("B=" + filled(n, 'T')); },
     "Expected a Boolean operator, but found TTTT", 24},
    {"LongText", [](std::size_t n) { return only("T=\"" + filled(n, 'x') + '"'); }, "accepted", 24},
    {"TokensInText", [](std::size_t n) { return only("T=\"" + repeated(n, " ='-,[]") + '"'); }, "accepted", 16},
    {"NulsInText", [](std::size_t n) { return only("T=\"" + filled(n, '\0') + '"'); }, "accepted", 24},
    {"NoUtf8InText", [](std::size_t n) { return only("T='" + filled(n, '\xff') + '\''); }, "accepted", 24},
    {"TextWithoutEnd", [](std::size_t n) { return only("T=\"" + repeated(n, "a'")); },
     "Expected string to terminate with a double quotation mark", 8},
    {"LoneQuotes", [](std::size_t n) { return only("T=" + filled(n / 2 * 2 + 1, '"')); },
     "Invalid macro identifier, \"", 8},
    {"LongSet",
     [](std::size_t n) {
         return only("S=[" + counted(n, [](std::size_t i) { return std::to_string(2 * i) + ','; }) + "0]");
     },
     "accepted", 24},
    {"DeepSet", [](std::size_t n) { return only("S=" + filled(n, '[') + ']'); }, "Expected a number", 12},
    {"SetWithoutEnd", [](std::size_t n) { return only("S=[" + repeated(n, "5,")); },
     "Expected closing set character, ]", 12},
    {"NoUtf8", [](std::size_t n) { return filled(n, '\xff'); }, "Invalid macro identifier, \xff", 24},
};

class HostileModelCommand : public testing::TestWithParam<Hostile> {};

TEST_P(HostileModelCommand, IsReadOrRefused) { expectBearable(GetParam(), answerOfModel); }

INSTANTIATE_TEST_SUITE_P(Every, HostileModelCommand, testing::ValuesIn(kModelCommands), load::NameOf());

}  // namespace
}  // namespace vexa::vexautilutil
