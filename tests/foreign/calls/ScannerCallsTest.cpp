// Tests which operations of the scanner the getters of a processor call, and in which order. A getter checks that
// something is left before it reads; only the opening bracket of a set is read without a check.
#include "foreign/ScannerCalls.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "library/processor/ScriptedProcessor.h"
#include "support/FailingAllocator.h"
#include "support/Sets.h"
#include "vexastandin/Host.h"

namespace vexa::vexautilutil {
namespace {

using Processor = MacroCommandProcessorAbstract;
using foreign::ScannerCalls;

std::string joined(const std::vector<std::string>& calls) {
    std::string text;
    for (const std::string& call : calls) text += text.empty() ? call : ", " + call;
    return text;
}

struct Case {
    const char* why;
    const char* text;
    const char* calls;
    Outcome outcome;  // the message for the host
};

// Expects that `read` makes the calls and has the outcome of each case.
template <class Read>
void expectCalls(const std::vector<Case>& cases, Read read) {
    const standin::Host host;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        std::string calls;
        const Outcome outcome = outcomeOf(c.text, [&](Processor& processor) {
            const ScannerCalls recorded;
            const bool isRead = read(processor);
            calls = joined(recorded.all());
            return isRead;
        });
        EXPECT_EQ(calls, c.calls);
        EXPECT_EQ(outcome, c.outcome);
    }
}

// Sets the character for this thread until the end of the test.
class CharacterAtEnd {
public:
    explicit CharacterAtEnd(char c) { foreign::setCharacterAtEnd(c); }
    CharacterAtEnd(const CharacterAtEnd&) = delete;
    CharacterAtEnd& operator=(const CharacterAtEnd&) = delete;
    ~CharacterAtEnd() { foreign::setCharacterAtEnd('='); }
};

TEST(ScannerCalls, OfACommand) {
    const standin::Host host;
    std::string calls;
    ScriptedProcessor processor([](Processor&) { return true; });
    {
        const ScannerCalls recorded;
        outcomeOf(processor, "A");
        calls = joined(recorded.all());
    }
    EXPECT_EQ(calls, "reset");
}

TEST(ScannerCalls, OfGetCommand) {
    expectCalls({{"a word", " load x", "hasNextToken, nextToken", std::nullopt},
                 {"no word", "  ", "hasNextToken", ""},
                 {"an empty command", "", "hasNextToken", ""}},
                [](Processor& processor) {
                    std::string word;
                    return processor.getCommand(word);
                });
}

TEST(ScannerCalls, OfGetNextName) {
    expectCalls({{"a name", "A = 1", "hasNextToken, nextToken, skipWhitespace, hasNextChar, nextChar", std::nullopt},
                 {"a name at the end", "A  ", "hasNextToken, nextToken, skipWhitespace, hasNextChar", ""},
                 {"no equals sign", "A 1", "hasNextToken, nextToken, skipWhitespace, hasNextChar, nextChar",
                  "Error: Missing =  for command option: A\n"},
                 {"no name", " ", "hasNextToken", ""}},
                [](Processor& processor) {
                    std::string name;
                    return processor.getNextName(name);
                });
}

TEST(ScannerCalls, OfGetBooleanValue) {
    expectCalls({{"a Boolean", " T", "skipWhitespace, hasNextToken, nextToken", std::nullopt},
                 {"another word", " X", "skipWhitespace, hasNextToken, nextToken", "Error: Invalid Boolean value"},
                 {"no word", " ", "skipWhitespace, hasNextToken", ""}},
                [](Processor& processor) {
                    char value = 0;
                    return processor.getBooleanValue(value);
                });
}

TEST(ScannerCalls, OfGetDoubleValue) {
    expectCalls({{"a number", " 1.5", "hasNextDoubleToken, nextDoubleToken", std::nullopt},
                 {"another word", " x", "hasNextDoubleToken", "Error: Invalid Double value"},
                 {"no word", " ", "hasNextDoubleToken", "Error: Invalid Double value"}},
                [](Processor& processor) {
                    double value = 0;
                    return processor.getDoubleValue(value);
                });
}

TEST(ScannerCalls, OfGetInt32Value) {
    expectCalls({{"a number", " 4294967297", "hasNextInt64Token, nextInt64Token", std::nullopt},
                 {"another word", " 1.5", "hasNextInt64Token", "Error: Invalid Int32 value"},
                 {"no word", " ", "hasNextInt64Token", "Error: Invalid Int32 value"}},
                [](Processor& processor) {
                    int32_t value = 0;
                    return processor.getInt32Value(value);
                });
}

TEST(ScannerCalls, OfGetInt64Value) {
    expectCalls({{"a number", " -5", "hasNextInt64Token, nextInt64Token", std::nullopt},
                 {"another word", " 1.5", "hasNextInt64Token", "Error: Invalid Int64 value"},
                 {"no word", " ", "hasNextInt64Token", "Error: Invalid Int64 value"}},
                [](Processor& processor) {
                    int64_t value = 0;
                    return processor.getInt64Value(value);
                });
}

TEST(ScannerCalls, OfGetStringValue) {
    expectCalls(
        {{"a text", " 'a' ", "skipWhitespace, hasNextChar, nextChar, hasNextChar, nextChar, hasNextChar, nextChar",
          std::nullopt},
         {"an escaped quote", "'\\''",
          "skipWhitespace, hasNextChar, nextChar, hasNextChar, nextChar, hasNextChar, nextChar, hasNextChar, nextChar",
          std::nullopt},
         {"nothing after the escape", "'\\",
          "skipWhitespace, hasNextChar, nextChar, hasNextChar, nextChar, hasNextChar", ""},
         {"no quote", "a", "skipWhitespace, hasNextChar, nextChar", ""},
         {"nothing", " ", "skipWhitespace, hasNextChar", ""}},
        [](Processor& processor) {
            std::string value;
            return processor.getStringValue(value, true);
        });
}

TEST(ScannerCalls, OfGetSetValue) {
    expectCalls(
        {{"a set", " [1-3,5] ", "skipWhitespace, nextChar, hasNextChar ], hasNextToken ], nextToken ], nextChar",
          std::nullopt},
         {"an empty set", "[]", "skipWhitespace, nextChar, hasNextChar ]", std::nullopt},
         {"refused by the set", "[x]", "skipWhitespace, nextChar, hasNextChar ], hasNextToken ], nextToken ], nextChar",
          "Error: Invalid Set syntax."},
         {"no opening bracket", "1]", "skipWhitespace, nextChar", "Error: Invalid Set syntax.  Missing starting ["},
         {"no closing bracket", "[1-3,5", "skipWhitespace, nextChar, hasNextChar ], hasNextToken ]",
          "Error: Invalid Set syntax.  Missing ending ]"},
         {"nothing after the bracket", "[", "skipWhitespace, nextChar, hasNextChar ], hasNextToken ]",
          "Error: Invalid Set syntax.  Missing ending ]"},
         {"nothing", " ", "skipWhitespace, nextChar", "Error: Invalid Set syntax.  Missing starting ["}},
        [](Processor& processor) {
            toolbox::Set value;
            return processor.getSetValue(value);
        });
}

// The getter reads this character without a check. At the end of the text it must fail for any character.
TEST(ScannerCalls, OfGetSetValueAtTheEndFailWhateverCharacterIsReadThere) {
    const standin::Host host;
    for (int c = -128; c < 128; ++c) {
        const CharacterAtEnd characterAtEnd(static_cast<char>(c));
        toolbox::Set value = tests::setOf("[4]");
        const Outcome outcome = outcomeOf("", [&](Processor& processor) { return processor.getSetValue(value); });
        EXPECT_EQ(outcome, c == '[' ? "Error: Invalid Set syntax.  Missing ending ]"
                                    : "Error: Invalid Set syntax.  Missing starting [")
            << c;
        EXPECT_EQ(value.toString(), "[]") << c;
    }
}

// The other getters do not read at the end of the text, so any character there gives the same outcome.
TEST(ScannerCalls, AtTheEndDoNotDependOnTheCharacterReadThere) {
    const standin::Host host;
    for (int c = -128; c < 128; ++c) {
        const CharacterAtEnd characterAtEnd(static_cast<char>(c));
        std::string text;
        EXPECT_EQ(outcomeOf("Name", [&](Processor& processor) { return processor.getNextName(text); }), "") << c;
        EXPECT_EQ(outcomeOf("", [&](Processor& processor) { return processor.getStringValue(text, true); }), "") << c;
        EXPECT_EQ(outcomeOf("'a\\", [&](Processor& processor) { return processor.getStringValue(text, true); }), "")
            << c;
        EXPECT_EQ(text, "a") << c;
    }
}

// The scanner ends the endless loop by an exception. Allocations fail until then.
TEST(ScannerCalls, OfATextWithoutItsClosingQuoteAskForeverAndReadNothing) {
    const standin::Host host;
    std::string value;
    std::string calls;
    bool isWaiting = false;
    outcomeOf("'abc", [&](Processor& processor) {
        const ScannerCalls recorded(14);
        try {
            const tests::FailingAllocator allocator(0, tests::Failing::EverAfter);
            return processor.getStringValue(value, true);
        } catch (const foreign::TooManyCalls&) {
            isWaiting = true;
        }
        calls = joined(recorded.all());
        return true;
    });
    EXPECT_TRUE(isWaiting);
    EXPECT_EQ(value, "abc");
    EXPECT_EQ(calls,
              "skipWhitespace, hasNextChar, nextChar, hasNextChar, nextChar, hasNextChar, nextChar, hasNextChar, "
              "nextChar, hasNextChar, hasNextChar, hasNextChar, hasNextChar, hasNextChar");
}

}  // namespace
}  // namespace vexa::vexautilutil
