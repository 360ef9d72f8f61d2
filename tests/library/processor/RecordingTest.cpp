// Tests how a processor records and journals commands.
#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

#include "library/processor/ScriptedProcessor.h"
#include "vexastandin/Host.h"

namespace vexa::vexautilutil {
namespace {

using Functions = std::vector<std::string>;

class Recording : public testing::Test {
protected:
    Recording() { m_host.setRecording(true); }

    standin::Host m_host;
    ScriptedProcessor m_processor{[](MacroCommandProcessorAbstract&) { return true; }};
};

TEST_F(Recording, RecordsTheComposedCommand) {
    EXPECT_TRUE(m_processor.recordMacroCommand("PROBE"));
    ASSERT_EQ(m_host.recordedCommands().size(), 1u);
    EXPECT_EQ(m_host.recordedCommands()[0].addOnId, "PROBE");
    EXPECT_EQ(m_host.recordedCommands()[0].command, "COMPOSED");
}

TEST_F(Recording, AsksForTheStatesInOrder) {
    m_processor.recordMacroCommand("PROBE");
    EXPECT_EQ(m_host.calledFunctions(),
              (Functions{"VexaUtilMacroIsRecordingActive", "VexaUtilStateIsProcessingJournal",
                         "VexaUtilStateIsProcessingLayout", "VexaUtilMacroRecordExtCommand"}));
}

TEST_F(Recording, SucceedsWithoutComposingWhenTheRecorderIsOff) {
    m_host.setRecording(false);
    EXPECT_TRUE(m_processor.recordMacroCommand("PROBE"));
    EXPECT_EQ(m_processor.composed, 0);
    EXPECT_EQ(m_host.calledFunctions(), Functions{"VexaUtilMacroIsRecordingActive"});
}

TEST_F(Recording, SucceedsWithoutComposingDuringJournalPlayback) {
    m_host.setProcessingJournal(true);
    EXPECT_TRUE(m_processor.recordMacroCommand("PROBE"));
    EXPECT_EQ(m_processor.composed, 0);
    EXPECT_EQ(m_host.calledFunctions(),
              (Functions{"VexaUtilMacroIsRecordingActive", "VexaUtilStateIsProcessingJournal"}));
}

TEST_F(Recording, SucceedsWithoutComposingDuringLayoutPlayback) {
    m_host.setProcessingLayout(true);
    EXPECT_TRUE(m_processor.recordMacroCommand("PROBE"));
    EXPECT_EQ(m_processor.composed, 0);
    EXPECT_TRUE(m_host.recordedCommands().empty());
}

TEST_F(Recording, FailsWithoutTheHostWhenTheHookRefuses) {
    m_processor.composes = false;
    EXPECT_FALSE(m_processor.recordMacroCommand("PROBE"));
    EXPECT_TRUE(m_host.recordedCommands().empty());
}

TEST_F(Recording, SucceedsOnlyWhenTheHostAnswersExactlyOne) {
    for (const int answer : {0, 2, -1}) {
        m_host.failCall("VexaUtilMacroRecordExtCommand", 1, answer);
        EXPECT_FALSE(m_processor.recordMacroCommand("PROBE")) << answer;
    }
    m_host.failCall("VexaUtilMacroRecordExtCommand", 1, 1);
    EXPECT_TRUE(m_processor.recordMacroCommand("PROBE"));
}

TEST_F(Recording, TakesAnyOtherAnswerThanZeroForAState) {
    m_host.failCall("VexaUtilMacroIsRecordingActive", 1, 2);
    EXPECT_TRUE(m_processor.recordMacroCommand("PROBE"));
    EXPECT_EQ(m_processor.composed, 1);
    m_host.failCall("VexaUtilStateIsProcessingJournal", 1, 2);
    EXPECT_TRUE(m_processor.recordMacroCommand("PROBE"));
    EXPECT_EQ(m_processor.composed, 1);
    m_host.failCall("VexaUtilStateIsProcessingLayout", 1, 2);
    EXPECT_TRUE(m_processor.recordMacroCommand("PROBE"));
    EXPECT_EQ(m_processor.composed, 1);
}

TEST_F(Recording, LetsExceptionsOfTheHookThrough) {
    class Throwing : public ScriptedProcessor {
    public:
        Throwing() : ScriptedProcessor([](MacroCommandProcessorAbstract&) { return true; }) {}
        bool composeCommandString(std::string&) const override { throw std::runtime_error("compose"); }
    };
    const Throwing processor;
    EXPECT_THROW(processor.recordMacroCommand("PROBE"), std::runtime_error);
    EXPECT_THROW(processor.journalMacroCommand("PROBE", nullptr), std::runtime_error);
}

TEST_F(Recording, HandsTheHookAnEmptyText) {
    m_processor.recordMacroCommand("PROBE");
    m_processor.recordMacroCommand("PROBE");
    EXPECT_EQ(m_host.recordedCommands()[1].command, "COMPOSED");
}

class Journaling : public Recording {};

TEST_F(Journaling, AddsTheComposedCommandAndTheDataUnchanged) {
    EXPECT_TRUE(m_processor.journalMacroCommand("PROBE", "raw data"));
    EXPECT_TRUE(m_processor.journalMacroCommand("PROBE", nullptr));
    const auto entries = m_host.journalEntries();
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].addOnId, "PROBE");
    EXPECT_EQ(entries[0].command, "COMPOSED");
    EXPECT_EQ(entries[0].journalData, "raw data");
    EXPECT_EQ(entries[1].journalData, std::nullopt);
}

TEST_F(Journaling, AsksForNoState) {
    m_host.setRecording(false);
    m_host.setProcessingJournal(true);
    m_host.setProcessingLayout(true);
    EXPECT_TRUE(m_processor.journalMacroCommand("PROBE", nullptr));
    EXPECT_EQ(m_host.calledFunctions(), Functions{"VexaUtilDataSetAddJournalCommand"});
}

TEST_F(Journaling, FailsWithoutTheHostWhenTheHookRefuses) {
    m_processor.composes = false;
    EXPECT_FALSE(m_processor.journalMacroCommand("PROBE", nullptr));
    EXPECT_TRUE(m_host.calls().empty());
}

TEST_F(Journaling, SucceedsOnAnyAnswerButZero) {
    for (const int answer : {1, 2, -1}) {
        m_host.failCall("VexaUtilDataSetAddJournalCommand", 1, answer);
        EXPECT_TRUE(m_processor.journalMacroCommand("PROBE", nullptr)) << answer;
    }
    m_host.failCall("VexaUtilDataSetAddJournalCommand", 1, 0);
    EXPECT_FALSE(m_processor.journalMacroCommand("PROBE", nullptr));
}

}  // namespace
}  // namespace vexa::vexautilutil
