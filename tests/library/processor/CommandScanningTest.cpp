// Tests how a processor reads a command's word and names, and passes errors to the host.
#include <gtest/gtest.h>

#include <cctype>
#include <stdexcept>
#include <string>
#include <vector>

#include "library/processor/ScriptedProcessor.h"
#include "vexastandin/Host.h"

namespace vexa::vexautilutil {
namespace {

using Processor = MacroCommandProcessorAbstract;

class CommandScanning : public testing::Test {
protected:
    standin::Host m_host;
};

TEST_F(CommandScanning, ReturnsTrueAndLeavesTheErrorUntouchedOnSuccess) {
    ScriptedProcessor processor([](Processor&) { return true; });
    char sentinel = 'x';
    char* errMsg = &sentinel;
    EXPECT_TRUE(processor.parseCommandString("CMD", &errMsg));
    EXPECT_EQ(errMsg, &sentinel);
    EXPECT_TRUE(m_host.calls().empty());
}

TEST_F(CommandScanning, HandsTheMessageToTheHostOnFailure) {
    EXPECT_EQ(outcomeOf("CMD",
                        [](Processor& p) {
                            p.depositErrorMessage("no such zone");
                            return false;
                        }),
              "no such zone");
}

TEST_F(CommandScanning, AllocatesTwoBytesMoreThanTheMessage) {
    outcomeOf("CMD", [](Processor& p) {
        p.depositErrorMessage("12345");
        return false;
    });
    ASSERT_FALSE(m_host.calls().empty());
    EXPECT_EQ(m_host.calls().front().function, "VexaUtilStringAlloc");
    EXPECT_EQ(m_host.calls().front().arguments, "7, \"error string\"");
}

TEST_F(CommandScanning, HandsAnEmptyStringOfSizeTwoWhenNoMessageWasStored) {
    EXPECT_EQ(outcomeOf("", [](Processor&) { return false; }), "");
    EXPECT_EQ(m_host.calls().front().arguments, "2, \"error string\"");
}

TEST_F(CommandScanning, SetsTheErrorToNullWhenTheHostHasNoMemory) {
    m_host.failCall("VexaUtilStringAlloc");
    ScriptedProcessor processor([](Processor&) { return false; });
    char sentinel = 'x';
    char* errMsg = &sentinel;
    EXPECT_FALSE(processor.parseCommandString("CMD", &errMsg));
    EXPECT_EQ(errMsg, nullptr);
}

TEST_F(CommandScanning, LetsExceptionsOfTheHookThroughWithTheErrorUntouched) {
    ScriptedProcessor processor([](Processor&) -> bool { throw std::runtime_error("hook"); });
    char sentinel = 'x';
    char* errMsg = &sentinel;
    EXPECT_THROW(processor.parseCommandString("CMD", &errMsg), std::runtime_error);
    EXPECT_EQ(errMsg, &sentinel);
}

// What the standard library says, which differs between its versions.
std::string errorOfANullText() {
    const char* volatile none = nullptr;
    try {
        return std::string(none);
    } catch (const std::logic_error& error) {
        return error.what();
    }
}

TEST_F(CommandScanning, RefusesANullCommandBeforeAnythingIsReset) {
    std::string word;
    ScriptedProcessor processor([&](Processor& p) { return p.getCommand(word); });
    char* errMsg = nullptr;
    ASSERT_TRUE(processor.parseCommandString("FIRST SECOND", &errMsg));
    try {
        processor.parseCommandString(nullptr, &errMsg);
        FAIL() << "accepted";
    } catch (const std::logic_error& error) {
        EXPECT_EQ(error.what(), errorOfANullText());
    }
    EXPECT_TRUE(processor.getCommand(word));
    EXPECT_EQ(word, "SECOND") << "the command before is still being read";
}

TEST_F(CommandScanning, ForgetsTheMessageAndOptionOfTheCommandBefore) {
    bool first = true;
    ScriptedProcessor processor([&](Processor& p) {
        std::string name;
        int64_t value = 0;
        if (first) p.getNextName(name);
        first = false;
        return p.getInt64Value(value);
    });
    EXPECT_EQ(outcomeOf(processor, "Count = x"), "Error: Invalid Int64 value for command option: Count\n");
    EXPECT_EQ(outcomeOf(processor, "x"), "Error: Invalid Int64 value");
}

TEST_F(CommandScanning, ForgetsTheMessageOfTheCommandBefore) {
    bool deposits = true;
    ScriptedProcessor processor([&](Processor& p) {
        if (deposits) p.depositErrorMessage("first");
        deposits = false;
        return false;
    });
    EXPECT_EQ(outcomeOf(processor, "A"), "first");
    EXPECT_EQ(outcomeOf(processor, "B"), "");
}

TEST_F(CommandScanning, StartsEachCommandAtItsFirstCharacter) {
    std::string word;
    ScriptedProcessor processor([&](Processor& p) { return p.getCommand(word); });
    outcomeOf(processor, "ONE two");
    outcomeOf(processor, "three");
    EXPECT_EQ(word, "THREE");
}

TEST_F(CommandScanning, KeepsItsOwnCopyOfTheCommand) {
    std::string command = "ONE TWO";
    std::string word;
    ScriptedProcessor processor([](Processor&) { return true; });
    outcomeOf(processor, command.c_str());
    command = "TWO ONE";
    ASSERT_TRUE(processor.getCommand(word));
    EXPECT_EQ(word, "ONE");
}

TEST_F(CommandScanning, EndsTheCommandAtTheFirstNul) {
    std::string word;
    EXPECT_EQ(outcomeOf("ONE\0TWO", [&](Processor& p) { return p.getCommand(word) && !p.getCommand(word); }),
              std::nullopt);
    EXPECT_EQ(word, "ONE");
}

TEST_F(CommandScanning, DeliversTheCommandWordInUpperCase) {
    std::string word;
    EXPECT_EQ(outcomeOf(" \t\r\n load x", [&](Processor& p) { return p.getCommand(word); }), std::nullopt);
    EXPECT_EQ(word, "LOAD");
}

TEST_F(CommandScanning, FindsNoCommandWordInAnEmptyCommandAndStoresNothing) {
    for (const char* command : {"", "  ", "\t\r\n\v\f"}) {
        std::string word = "before";
        EXPECT_EQ(outcomeOf(command, [&](Processor& p) { return p.getCommand(word); }), "") << command;
        EXPECT_EQ(word, "before");
    }
}

TEST_F(CommandScanning, DoesNotTakeTheCommandWordForAnOptionName) {
    EXPECT_EQ(outcomeOf("LOAD x",
                        [](Processor& p) {
                            std::string word;
                            int64_t value = 0;
                            return p.getCommand(word) && p.getInt64Value(value);
                        }),
              "Error: Invalid Int64 value");
}

TEST_F(CommandScanning, ReadsANameAndStopsJustAfterTheEqualsSign) {
    std::string word;
    std::string name;
    std::string value;
    EXPECT_EQ(outcomeOf("load file = 'a b'",
                        [&](Processor& p) {
                            return p.getCommand(word) && p.getNextName(name) && p.getStringValue(value, false);
                        }),
              std::nullopt);
    EXPECT_EQ(word, "LOAD");
    EXPECT_EQ(name, "FILE");
    EXPECT_EQ(value, "a b");
}

TEST_F(CommandScanning, AcceptsAValueRightAfterTheEqualsSign) {
    std::string name;
    int64_t value = 0;
    EXPECT_EQ(outcomeOf("COUNT =12", [&](Processor& p) { return p.getNextName(name) && p.getInt64Value(value); }),
              std::nullopt);
    EXPECT_EQ(value, 12);
}

TEST_F(CommandScanning, ReadsNamesUntilTheEnd) {
    std::vector<std::string> names;
    EXPECT_EQ(outcomeOf("a = 1 B = 2 ",
                        [&](Processor& p) {
                            std::string name;
                            int64_t value = 0;
                            while (p.getNextName(name)) {
                                names.push_back(name);
                                p.getInt64Value(value);
                            }
                            return false;
                        }),
              "");
    EXPECT_EQ(names, (std::vector<std::string>{"A", "B"}));
}

TEST_F(CommandScanning, RefusesANameFollowedByAnotherWordAndQuotesItAsWritten) {
    std::string name;
    EXPECT_EQ(outcomeOf("Mode fast", [&](Processor& p) { return p.getNextName(name); }),
              "Error: Missing =  for command option: Mode\n");
    EXPECT_EQ(name, "MODE");
}

TEST_F(CommandScanning, ConsumesTheCharacterThatIsNoEqualsSign) {
    std::string rest;
    outcomeOf("Mode fast", [&](Processor& p) {
        std::string name;
        p.getNextName(name);
        return p.getCommand(rest);
    });
    EXPECT_EQ(rest, "AST");
}

TEST_F(CommandScanning, TakesANameWithAnAttachedEqualsSignForOneWord) {
    EXPECT_EQ(outcomeOf("COUNT=12 x",
                        [](Processor& p) {
                            std::string name;
                            return p.getNextName(name);
                        }),
              "Error: Missing =  for command option: COUNT=12\n");
}

TEST_F(CommandScanning, StoresNothingWhenTheNameEndsTheCommand) {
    for (const char* command : {"Mode", "Mode  "}) {
        std::string name;
        EXPECT_EQ(outcomeOf(command, [&](Processor& p) { return p.getNextName(name); }), "");
        EXPECT_EQ(name, "MODE");
    }
}

TEST_F(CommandScanning, LeavesTheNameAloneAtTheEndOfTheCommand) {
    std::string name = "before";
    EXPECT_EQ(outcomeOf(" ", [&](Processor& p) { return p.getNextName(name); }), "");
    EXPECT_EQ(name, "before");
}

TEST_F(CommandScanning, KeepsOnlyTheLastMessage) {
    EXPECT_EQ(outcomeOf("Count = x",
                        [](Processor& p) {
                            std::string name;
                            int64_t integer = 0;
                            double number = 0;
                            p.getNextName(name);
                            p.getInt64Value(integer);
                            return p.getDoubleValue(number);
                        }),
              "Error: Invalid Double value for command option: Count\n");
}

TEST_F(CommandScanning, LetsADepositedMessageReplaceAGettersVerbatim) {
    EXPECT_EQ(outcomeOf("x",
                        [](Processor& p) {
                            int64_t value = 0;
                            p.getInt64Value(value);
                            p.depositErrorMessage("mine");
                            return false;
                        }),
              "mine");
}

TEST_F(CommandScanning, DoesNotPassGettersMessagesThroughAnOverriddenDeposit) {
    class Deaf : public ScriptedProcessor {
    public:
        using ScriptedProcessor::ScriptedProcessor;
        void depositErrorMessage(const std::string&) override { ++deposits; }
        int deposits = 0;
    };
    Deaf processor([](Processor& p) {
        int64_t value = 0;
        return p.getInt64Value(value);
    });
    EXPECT_EQ(outcomeOf(processor, "x"), "Error: Invalid Int64 value");
    EXPECT_EQ(processor.deposits, 0);
}

TEST_F(CommandScanning, KeepsItsPlaceAfterTheHookReturned) {
    ScriptedProcessor processor([](Processor&) { return true; });
    outcomeOf(processor, "ONE");
    std::string word;
    EXPECT_TRUE(processor.getCommand(word));
    EXPECT_EQ(word, "ONE");
    EXPECT_FALSE(processor.getCommand(word));
}

TEST_F(CommandScanning, MakesEveryCharacterUpperCaseAsTheRuntimeLibraryDoes) {
    std::string written;
    std::string upper;
    for (int c = 1; c < 256; ++c) {
        if (std::isspace(c) != 0) continue;
        written += static_cast<char>(c);
        upper += static_cast<char>(std::toupper(c));
    }
    std::string word;
    std::string name;
    const std::string text = written + ' ' + written + " =";
    outcomeOf(text.c_str(), [&](Processor& p) { return p.getCommand(word) && p.getNextName(name); });
    EXPECT_EQ(word, upper);
    EXPECT_EQ(name, upper);
}

TEST_F(CommandScanning, LeavesTheHostStringToTheCaller) {
    char* errMsg = nullptr;
    {
        ScriptedProcessor processor([](Processor& p) {
            p.depositErrorMessage("kept");
            return false;
        });
        processor.parseCommandString("CMD", &errMsg);
    }
    EXPECT_STREQ(errMsg, "kept");
    VexaUtilStringDealloc(&errMsg);
    EXPECT_EQ(m_host.calledFunctions(), (std::vector<std::string>{"VexaUtilStringAlloc", "VexaUtilStringDealloc"}));
}

}  // namespace
}  // namespace vexa::vexautilutil
