#include "commands/repl/LastCalls.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

class LastCallsTest : public ::testing::Test {
protected:
    void begin(standin::Entry_e kind, const std::string& command) {
        m_entry.kind = kind;
        m_entry.addOnId = "STATS";
        m_entry.command = command;
        m_entry.threadNumber = 1;
        calls.entryBegan(m_entry);
    }
    void call(const std::string& arguments) {
        standin::CallEvent event;
        event.function = "VexaUtilDialogErrMsg";
        event.arguments = arguments;
        event.threadNumber = 1;
        calls.callBegan(event);
        calls.callEnded(event);
    }
    void end() {
        m_entry.succeeded = true;
        calls.entryEnded(m_entry);
    }

    LastCalls calls;

private:
    standin::EntryEvent m_entry;
};

TEST_F(LastCallsTest, HaveOnlyTheLastCommand) {
    begin(standin::Entry_e::Command, "MEAN");
    call("\"a\"");
    end();
    begin(standin::Entry_e::Command, "SUM");
    call("\"b\"");
    end();
    EXPECT_EQ(calls.text(), "1  STATS SUM\n1    VexaUtilDialogErrMsg(\"b\")\n1    => accepted\n");
}

TEST_F(LastCallsTest, AreOfNoOtherWork) {
    begin(standin::Entry_e::Loading, "");
    call("\"loading\"");
    end();
    call("\"between\"");
    EXPECT_EQ(calls.text(), "");
}

TEST_F(LastCallsTest, AreCutIfThereAreMany) {
    begin(standin::Entry_e::Command, "MEAN");
    for (std::size_t i = 1; i != LastCalls::kMostLines; ++i) call("\"a\"");
    EXPECT_EQ(calls.text().find("more lines"), std::string::npos);
    call("\"left out\"");
    end();
    const std::string text = calls.text();
    EXPECT_NE(text.find("\nand 2 more lines; "), std::string::npos) << text;
    EXPECT_EQ(text.find("left out"), std::string::npos) << text;
    begin(standin::Entry_e::Command, "SUM");
    end();
    EXPECT_EQ(calls.text(), "1  STATS SUM\n1    => accepted\n");
}

}  // namespace
}  // namespace vexa::runner
