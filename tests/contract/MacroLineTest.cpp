// Tests which commands are recorded and journaled: only those that come back unchanged from a macro file.

#include <gtest/gtest.h>

#include <string>

#include "vexa/VexaUtil.h"
#include "vexastandin/Finding.h"
#include "vexastandin/Host.h"

namespace vexa::standin {
namespace {

struct Case {
    const char* why;
    const char* addOnId;
    const char* command;
    const char* reason;  // as the finding has it
};

constexpr Case kRefused[] = {
    {"an add-on without a name", "", "GO", "the add-on's id is empty"},
    {"a blank in the add-on's name", "A B", "GO", "the add-on's id has white space in it"},
    {"a tab at its end", "AB\t", "GO", "the add-on's id has white space in it"},
    {"a line break in it", "A\nB", "GO", "the add-on's id has white space in it"},
    {"a form feed in it", "A\fB", "GO", "the add-on's id has white space in it"},
    {"a comment", "#A", "GO", "the add-on's id begins with '#', as a comment does"},
    {"an empty command", "PROBE", "", "its text is blank"},
    {"a command of blanks", "PROBE", " \t", "its text is blank"},
    {"a command of other white space", "PROBE", "\v\f", "its text is blank"},
    {"a blank before the command", "PROBE", " GO", "its text begins with a blank"},
    {"a tab before it", "PROBE", "\tGO", "its text begins with a blank"},
    {"a line feed in it", "PROBE", "GO\nON", "its text has a line break in it"},
    {"a carriage return in it", "PROBE", "GO\rON", "its text has a line break in it"},
    {"a line feed at its end", "PROBE", "GO\n", "its text has a line break in it"},
    {"a carriage return at its end", "PROBE", "GO\r", "its text has a line break in it"},
};

constexpr Case kTaken[] = {
    {"a number sign in the add-on's name", "A#", "GO", ""},
    {"a blank behind the command", "PROBE", "GO ", ""},
    {"a command like a comment", "PROBE", "# GO", ""},
    {"a vertical tab before the command", "PROBE", "\vGO", ""},
};

VexaBoolean record(const Case& c) { return VexaUtilMacroRecordExtCommand(c.addOnId, c.command); }

VexaBoolean addToJournal(const Case& c) { return VexaUtilDataSetAddJournalCommand(c.addOnId, c.command, "its data"); }

void expectRefusals(VexaBoolean (*call)(const Case&), const std::string& function) {
    for (const Case& c : kRefused) {
        SCOPED_TRACE(c.why);
        Host host;
        host.setRecording(true);
        EXPECT_EQ(call(c), 0);
        EXPECT_TRUE(host.recordedCommands().empty());
        EXPECT_TRUE(host.journalEntries().empty());
        ASSERT_EQ(host.violations().size(), 1U);
        EXPECT_EQ(host.violations()[0].rule, "recording-not-replayable");
        EXPECT_EQ(host.violations()[0].message,
                  function + " was given a command that does not fit on one line of a macro file: " + c.reason);
    }
}

void expectNoRefusal(VexaBoolean (*call)(const Case&)) {
    for (const Case& c : kTaken) {
        SCOPED_TRACE(c.why);
        Host host;
        host.setRecording(true);
        EXPECT_EQ(call(c), 1);
        EXPECT_TRUE(host.violations().empty());
    }
}

TEST(MacroLine, IsRefusedByTheRecordingWhenItWouldReadBackOtherwise) {
    expectRefusals(record, "VexaUtilMacroRecordExtCommand");
}

TEST(MacroLine, IsRefusedByTheJournalWhenItWouldReadBackOtherwise) {
    expectRefusals(addToJournal, "VexaUtilDataSetAddJournalCommand");
}

TEST(MacroLine, IsRecordedWhenItReadsBack) { expectNoRefusal(record); }

TEST(MacroLine, IsAddedToTheJournalWhenItReadsBack) { expectNoRefusal(addToJournal); }

TEST(MacroLine, IsRefusedWithoutItsAddOnOrItsText) {
    Host host;
    host.setRecording(true);
    EXPECT_EQ(VexaUtilMacroRecordExtCommand(nullptr, "GO"), 0);
    EXPECT_EQ(VexaUtilMacroRecordExtCommand("PROBE", nullptr), 0);
    EXPECT_EQ(VexaUtilDataSetAddJournalCommand(nullptr, "GO", "data"), 0);
    EXPECT_EQ(VexaUtilDataSetAddJournalCommand("PROBE", nullptr, "data"), 0);
    EXPECT_TRUE(host.recordedCommands().empty());
    EXPECT_TRUE(host.journalEntries().empty());
}

}  // namespace
}  // namespace vexa::standin
