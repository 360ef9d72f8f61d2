// What the host gets from a command that succeeds, fails or throws.
#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <vector>

#include "library/processor/ScriptedProcessor.h"
#include "vexa/AddOn.h"
#include "vexastandin/Host.h"
#include "vexautilutil/ExecuteCommand.h"
#include "vexautilutil/MacroCommandError.h"

namespace vexa::vexautilutil {
namespace {

using Processor = MacroCommandProcessorAbstract;

// As the host calls an add-on; it frees what it is given.
class ExecuteCommand : public testing::Test {
protected:
    ~ExecuteCommand() override { VexaUtilStringDealloc(&m_errMsg); }

    std::string message() const { return m_errMsg == nullptr ? "no host string" : m_errMsg; }
    std::vector<std::string> calls() const { return m_host.calledFunctions(); }

    standin::Host m_host;
    char* m_errMsg = nullptr;
};

class RefusingProcessor : public Processor {
public:
    bool processCommand() override {
        std::string word;
        getCommand(word);
        depositErrorMessage("Unknown command " + word);
        return false;
    }
    bool composeCommandString(std::string&) const override { return true; }
};

class AcceptingProcessor : public RefusingProcessor {
public:
    bool processCommand() override { return true; }
};

class UnmakableProcessor : public AcceptingProcessor {
public:
    UnmakableProcessor() { throw std::runtime_error("The processor cannot be made"); }
};

TEST_F(ExecuteCommand, SucceedsWhenWorkWithoutAResultReturns) {
    bool called = false;
    EXPECT_EQ(executeCommand([&] { called = true; }, &m_errMsg), 1);
    EXPECT_TRUE(called);
    EXPECT_EQ(m_errMsg, nullptr);
    EXPECT_TRUE(calls().empty());
}

TEST_F(ExecuteCommand, ReturnsWhatWorkReturns) {
    EXPECT_EQ(executeCommand([] { return true; }, &m_errMsg), 1);
    EXPECT_EQ(executeCommand([] { return 7; }, &m_errMsg), 1);
    EXPECT_EQ(executeCommand([] { return false; }, &m_errMsg), 0);
    EXPECT_EQ(m_errMsg, nullptr);
    EXPECT_TRUE(calls().empty());
}

TEST_F(ExecuteCommand, CallsWorkThatCanBeCalledOnceOnly) {
    struct Once {
        void operator()() && { called = true; }
        bool& called;
    };
    bool called = false;
    EXPECT_EQ(executeCommand(Once{called}, &m_errMsg), 1);
    EXPECT_TRUE(called);
}

TEST_F(ExecuteCommand, GivesTheHostTheMessageOfAnException) {
    EXPECT_EQ(executeCommand([] { throw MacroCommandError("COUNT must be 1 or more"); }, &m_errMsg), 0);
    EXPECT_EQ(message(), "COUNT must be 1 or more");
    ASSERT_EQ(m_host.calls().size(), 1u);
    EXPECT_EQ(m_host.calls()[0].function, "VexaUtilStringAlloc");
    EXPECT_EQ(m_host.calls()[0].arguments, R"(24, "error message")");
}

TEST_F(ExecuteCommand, GivesTheHostAnEmptyMessageOfAnException) {
    EXPECT_EQ(executeCommand([] { throw std::runtime_error(""); }, &m_errMsg), 0);
    EXPECT_EQ(message(), "");
}

TEST_F(ExecuteCommand, NamesAnExceptionThatHasNoMessage) {
    EXPECT_EQ(executeCommand([] { throw 42; }, &m_errMsg), 0);
    EXPECT_EQ(message(), "Unknown failure");
}

TEST_F(ExecuteCommand, LeavesNoMessageWhenTheHostHasNoMemory) {
    m_host.failCall("VexaUtilStringAlloc");
    EXPECT_EQ(executeCommand([] { throw std::bad_alloc(); }, &m_errMsg), 0);
    EXPECT_EQ(m_errMsg, nullptr);
}

TEST_F(ExecuteCommand, LeavesNoMessageWhenTheHostThrows) {
    m_host.throwFromCall("VexaUtilStringAlloc");
    EXPECT_EQ(executeCommand([] { throw std::bad_alloc(); }, &m_errMsg), 0);
    EXPECT_EQ(m_errMsg, nullptr);
}

TEST_F(ExecuteCommand, KeepsTheMessageThatWasStoredBeforeAnException) {
    const auto refuseAndThrow = [&] {
        RefusingProcessor().parseCommandString("TURN", &m_errMsg);
        throw std::runtime_error("This came later");
    };
    EXPECT_EQ(executeCommand(refuseAndThrow, &m_errMsg), 0);
    EXPECT_EQ(message(), "Unknown command TURN");
    EXPECT_EQ(calls(), std::vector<std::string>{"VexaUtilStringAlloc"}) << "a second string would be a leak";
}

TEST_F(ExecuteCommand, TakesNothingThatStoodInErrMsgForAMessage) {
    char* errMsg = reinterpret_cast<char*>(&m_host);  // a host that does not clear it
    EXPECT_EQ(executeCommand([] { return true; }, &errMsg), 1);
    EXPECT_EQ(errMsg, nullptr);
}

TEST_F(ExecuteCommand, DoesNothingWithoutAPlaceForTheMessage) {
    bool called = false;
    EXPECT_EQ(executeCommand([&] { called = true; }, nullptr), 0);
    EXPECT_EQ(executeCommand<RefusingProcessor>("TURN", nullptr), 0);
    EXPECT_FALSE(called);
    EXPECT_TRUE(calls().empty());
}

TEST_F(ExecuteCommand, LetsAKeptProcessorProcessTheCommand) {
    std::string word;
    ScriptedProcessor processor([&](Processor& p) { return p.getCommand(word); });
    EXPECT_EQ(executeCommand(processor, "turn", &m_errMsg), 1);
    EXPECT_EQ(word, "TURN");
    EXPECT_EQ(m_errMsg, nullptr);
}

TEST_F(ExecuteCommand, GivesTheHostTheMessageOfAKeptProcessor) {
    RefusingProcessor processor;
    EXPECT_EQ(executeCommand(processor, "turn", &m_errMsg), 0);
    EXPECT_EQ(message(), "Unknown command TURN");
}

TEST_F(ExecuteCommand, GivesTheHostTheMessageOfWhatAKeptProcessorThrows) {
    ScriptedProcessor processor([](Processor&) -> bool { throw std::out_of_range("No zone 7"); });
    EXPECT_EQ(executeCommand(processor, "TURN", &m_errMsg), 0);
    EXPECT_EQ(message(), "No zone 7");
}

TEST_F(ExecuteCommand, RefusesANullCommandWithAMessage) {
    EXPECT_EQ(executeCommand<AcceptingProcessor>(nullptr, &m_errMsg), 0);
    EXPECT_NE(message(), "no host string");
}

TEST_F(ExecuteCommand, MakesAProcessorForTheCommand) {
    EXPECT_EQ(executeCommand<AcceptingProcessor>("TURN", &m_errMsg), 1);
    EXPECT_EQ(m_errMsg, nullptr);
}

TEST_F(ExecuteCommand, GivesTheHostTheMessageOfAProcessorMadeForTheCommand) {
    EXPECT_EQ(executeCommand<RefusingProcessor>("TURN", &m_errMsg), 0);
    EXPECT_EQ(message(), "Unknown command TURN");
}

TEST_F(ExecuteCommand, IsTheExecuteFunctionOfAnAddOn) {
    static constexpr VexaAddOn_s kAddOn = {VEXA_ADDON_API_VERSION, "TURNER", nullptr, executeCommand<RefusingProcessor>,
                                           nullptr};
    m_host.linkAddOn([](AddOnList_s*) { return &kAddOn; });
    EXPECT_EQ(m_host.run("TURNER", "turn").error, "Unknown command TURN");
    EXPECT_TRUE(m_host.violations().empty());
}

TEST_F(ExecuteCommand, GivesTheHostTheMessageOfAProcessorThatCannotBeMade) {
    EXPECT_EQ(executeCommand<UnmakableProcessor>("TURN", &m_errMsg), 0);
    EXPECT_EQ(message(), "The processor cannot be made");
}

}  // namespace
}  // namespace vexa::vexautilutil
