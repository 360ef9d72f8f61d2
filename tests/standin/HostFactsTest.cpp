#include "vexastandin/HostFacts.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "vexa/VexaUtil.h"
#include "vexastandin/Host.h"

namespace vexa::standin {
namespace {

// "NAME = ANSWER: REASON" of each.
std::vector<std::string> linesOf(const std::vector<UnlikeFact>& facts) {
    std::vector<std::string> lines;
    for (const UnlikeFact& fact : facts) lines.push_back(fact.name + " = " + fact.answer + ": " + fact.reason);
    return lines;
}

using Lines = std::vector<std::string>;

TEST(HostFacts, NameWhatTheStandInCannotImitate) {
    const Lines expected = {
        "list.append.most = 2000: expected a number from 0 to 1000",
        "list.dealloc.clearsHandle = perhaps: expected true or false",
        "set.insert.reversed = [5]: the stand-in can answer refused|ignored|swapped",
        ("string.alloc.isZeroed = true: the stand-in answers false: the stand-in fills a new string with a pattern, to "
         "find missing terminating zeros"),
        "style.unknownPath = 7: expected Ok, OtherType, UnknownPath or NotAvailable",
        "weather = fine: this version of the stand-in does not know it"};
    EXPECT_EQ(linesOf(unlikeFacts({{"weather", "fine"},
                                   {"style.unknownPath", "7"},
                                   {"string.alloc.isZeroed", "true"},
                                   {"set.insert.reversed", "[5]"},
                                   {"list.dealloc.clearsHandle", "perhaps"},
                                   {"list.append.most", "2000"}})),
              expected);
}

TEST(HostFacts, AreAlikeIfTheStandInAnswersSoAnyway) {
    EXPECT_EQ(linesOf(unlikeFacts({{"string.alloc.isZeroed", "false"}, {"list.append.most", "1000"}})), Lines());
}

TEST(HostFacts, AreReturnedByAHostThatCannotImitateThem) {
    Host host;
    const auto unlike = host.answerLike({{"list.dealloc.clearsHandle", "false"}, {"lock.nests", "false"}});
    EXPECT_EQ(linesOf(unlike),
              Lines{"lock.nests = false: the stand-in answers true: a stand-in that hangs tests nothing"});
}

TEST(HostFacts, ChangeTheAnswersOfAHost) {
    Host host;
    host.answerLike({{"list.dealloc.clearsHandle", "false"}});
    ArgList_s* list = VexaUtilArgListAlloc();
    VexaUtilArgListDealloc(&list);
    EXPECT_NE(list, nullptr);
}

TEST(HostFacts, ReplaceEarlierOnes) {
    Host host;
    host.answerLike({{"list.dealloc.clearsHandle", "false"}});
    host.answerLike({});
    ArgList_s* list = VexaUtilArgListAlloc();
    VexaUtilArgListDealloc(&list);
    EXPECT_EQ(list, nullptr);
}

TEST(HostFacts, SetTheStatesOfAHost) {
    Host host;
    host.answerLike({{"state.batch", "true"}, {"state.journal", "true"}});
    EXPECT_EQ(VexaUtilMacroIsBatchModeActive(), 1);
    EXPECT_EQ(VexaUtilStateIsProcessingJournal(), 1);
    EXPECT_EQ(VexaUtilStateIsProcessingLayout(), 0);
}

TEST(HostFacts, LeaveStatesAloneThatTheyDoNotName) {
    Host host;
    host.setRecording(true);
    host.answerLike({{"state.batch", "true"}});
    EXPECT_EQ(VexaUtilMacroIsRecordingActive(), 1);
    host.answerLike({{"state.recording", "false"}});
    EXPECT_EQ(VexaUtilMacroIsRecordingActive(), 0);
}

TEST(HostFacts, LeaveTheContractAsItIs) {
    Host host;
    host.answerLike({{"list.append.sameNameTwice", "false"}, {"status.check.over100", "false"}});
    VexaUtilStatusStartPercentDone("Task", 0, 1);
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(101), 0);
    VexaUtilStatusFinishPercentDone();
    ASSERT_EQ(host.violations().size(), 1U);
    EXPECT_EQ(host.violations()[0].rule, "percent-out-of-range");
}

TEST(HostFacts, DoNotMakeAHostKeepWhatItCouldNotReadBack) {
    Host host;
    host.answerLike({{"record.lineBreak", "true"}, {"journal.emptyText", "true"}, {"state.recording", "true"}});
    EXPECT_EQ(VexaUtilMacroRecordExtCommand("ONE", "two\nlines"), 1);
    EXPECT_EQ(VexaUtilDataSetAddJournalCommand("ONE", "", nullptr), 1);
    EXPECT_TRUE(host.recordedCommands().empty());
    EXPECT_TRUE(host.journalEntries().empty());
}

TEST(HostFacts, KeepTheStopButtonWorking) {
    Host host;
    host.answerLike({{"status.check.over100", "true"}});
    VexaUtilStatusStartPercentDone("Task", 1, 1);
    host.pressStop();
    EXPECT_EQ(VexaUtilStatusCheckPercentDone(101), 0);
    VexaUtilStatusFinishPercentDone();
}

TEST(HostFacts, AreCountsUpToThatOfTheStandIn) {
    Host host;
    for (const char* const count : {"", "x", "7x", "-1", "1001", "99999999999999999999"}) {
        const auto unlike = host.answerLike({{"list.append.most", count}});
        ASSERT_EQ(unlike.size(), 1U) << count;
        EXPECT_EQ(unlike[0].reason, "expected a number from 0 to 1000") << count;
    }
    EXPECT_TRUE(host.answerLike({{"list.append.most", "0"}}).empty());
    EXPECT_TRUE(host.answerLike({{"list.append.most", "1000"}}).empty());
}

TEST(HostFacts, OfUnknownNamesAreReturnedByAHost) {
    Host host;
    const auto unlike = host.answerLike({{"no.such.fact", "true"}});
    ASSERT_EQ(unlike.size(), 1U);
    EXPECT_EQ(unlike[0].name, "no.such.fact");
}

TEST(HostFacts, LetAHostRefuseNamesThatDifferInCaseOnly) {
    Host host;
    host.answerLike({{"list.append.otherCase", "false"}});
    ArgList_s* list = VexaUtilArgListAlloc();
    EXPECT_EQ(VexaUtilArgListAppendInt(list, "Va_1z", 1), 1);
    EXPECT_EQ(VexaUtilArgListAppendInt(list, "vA_1Z", 1), 0);
    EXPECT_EQ(VexaUtilArgListAppendInt(list, "Va_2z", 1), 1);
    EXPECT_EQ(VexaUtilArgListAppendInt(list, "Va_1z", 1), 1);
    VexaUtilArgListDealloc(&list);
}

// The members of a set as ranges, for example "1-3,5-5,".
std::string rangesOf(const Set_s* set) {
    std::string text;
    int64_t first = 0;
    int64_t last = -1;
    while (VexaUtilSetNextRange(set, last + 1, &first, &last) == 1) {
        text += std::to_string(first) + '-' + std::to_string(last) + ',';
    }
    return text;
}

TEST(HostFacts, LetAHostClipNegativeMembers) {
    Host host;
    host.answerLike({{"set.insert.negative", "clipped"}});
    Set_s* set = VexaUtilSetAlloc();
    int64_t first = 0;
    int64_t last = 0;
    EXPECT_EQ(VexaUtilSetInsert(set, -5, -2), 1);
    EXPECT_EQ(VexaUtilSetNextRange(set, -5, &first, &last), 0) << first << " to " << last;
    EXPECT_EQ(VexaUtilSetInsert(set, -5, 2), 1);
    EXPECT_EQ(rangesOf(set), "0-2,");
    VexaUtilSetDealloc(&set);
}

TEST(HostFacts, LetAHostRefuseMembersThatASetHas) {
    Host host;
    host.answerLike({{"set.insert.twice", "false"}});
    Set_s* set = VexaUtilSetAlloc();
    EXPECT_EQ(VexaUtilSetInsert(set, 1, 5), 1);
    EXPECT_EQ(VexaUtilSetInsert(set, 2, 3), 0);
    EXPECT_EQ(VexaUtilSetInsert(set, 4, 7), 1) << "6 and 7 are new";
    EXPECT_EQ(rangesOf(set), "1-7,");
    VexaUtilSetDealloc(&set);
}

TEST(HostFacts, LetAHostRecordOnlyForAddOnsThatAreLoaded) {
    Host host;
    host.answerLike({{"record.unknownAddOn", "false"}, {"state.recording", "true"}});
    host.loadAddOn(VEXA_TEST_ADDONS "/probe.so");
    EXPECT_EQ(VexaUtilMacroRecordExtCommand("PROBE", "go"), 1);
    EXPECT_EQ(VexaUtilMacroRecordExtCommand("OTHER", "go"), 0);
}

TEST(HostFacts, LetAHostClearTheResultOfAnUnknownPath) {
    Host host;
    host.answerLike({{"style.unknownPath.keepsValue", "false"}});
    double number = 7;
    VexaArbParam param = 7;
    for (const bool isNumber : {true, false}) {
        ArgList_s* list = VexaUtilArgListAlloc();
        VexaUtilArgListAppendString(list, "P1", "NOWHERE");
        if (isNumber) VexaUtilArgListAppendDoublePtr(list, "DValue", &number);
        if (!isNumber) VexaUtilArgListAppendArbParamPtr(list, "IValue", &param);
        EXPECT_EQ(VexaUtilStyleGetLowLevelX(list), GetValueReturnCode_UnknownPath);
        VexaUtilArgListDealloc(&list);
    }
    EXPECT_EQ(number, 0.0);
    EXPECT_EQ(param, 0);
}

}  // namespace
}  // namespace vexa::standin
