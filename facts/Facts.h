/// \file
/// The table of facts about a host: every point that the host's interface leaves open, and on which the stand-in had to
/// choose. The probe asks a host about them, and the stand-in can answer as that host does.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

/// Each fact with its name, its risk, the kind of its answer, the stand-in's answer, what limits the imitation, and the
/// question. The limit of a Word has all words that the stand-in can answer, and the limit of a Fixed says why the
/// stand-in has no other answer. The probe and the stand-in take all facts from this table, so a new fact is added
/// here.
///
/// A name is never reused for another question: facts files are kept for years.
// clang-format off
#define VEXA_FACTS(FACT) \
    FACT(StyleUnknownPath, "style.unknownPath", None, Code, "UnknownPath", "", \
         "What does a style query answer for a path that does not exist?") \
    FACT(StyleUnknownPathKeepsValue, "style.unknownPath.keepsValue", None, Truth, "true", "", \
         "Does a style query that finds no setting leave the variable for the value unchanged?") \
    FACT(StyleUnknownPathWrongOffsets, "style.unknownPath.wrongOffsets", None, Code, "UnknownPath", "", \
         "What does a style query answer for a path that does not exist, with Offset1 = 1000000?") \
    FACT(StyleEmptyKeyword, "style.emptyKeyword", None, Code, "UnknownPath", "", \
         "What does a style query answer if P1 is an empty text?") \
    FACT(StyleSevenKeywords, "style.sevenKeywords", None, Code, "UnknownPath", "", \
         "What does a style query answer for a path that does not exist and has a seventh keyword, P7?") \
    FACT(StyleSettingRead, "style.setting.read", None, Fixed, "Ok", "the style file has the settings", \
         "What does a style query answer for the double at SETTING?") \
    FACT(StyleSettingLowerCase, "style.setting.lowerCase", None, Code, "Ok", "", \
         "What does a style query answer for SETTING if its keywords are in lower case?") \
    FACT(StyleSettingOtherType, "style.setting.otherType", None, Code, "OtherType", "", \
         "What does a style query answer if it asks for the double at SETTING through IValue?") \
    FACT(StyleSettingWrongOffsets, "style.setting.wrongOffsets", MayEndHost, Code, "NotAvailable", "", \
         "What does a style query answer for SETTING with offsets for which it has no value, Offset1 = 1000000?") \
    FACT(StyleSettingParent, "style.setting.parent", None, Code, "NotAvailable", "", \
         "What does a style query answer for SETTING without its last keyword?") \
    FACT(StyleSettingChild, "style.setting.child", None, Code, "UnknownPath", "", \
         "What does a style query answer for SETTING with a keyword after it that does not exist?") \
    FACT(StyleSettingAnyOrder, "style.setting.anyOrder", None, Code, "Ok", "", \
         "What does a style query for SETTING answer if its keywords were appended last to first, after the value?") \
    FACT(StyleSettingUnknownArgument, "style.setting.unknownArgument", None, Code, "Ok", "", \
         "What does a style query for SETTING answer if the list also has an argument with an unknown name?") \
    FACT(StyleSettingListIsKept, "style.setting.listIsKept", None, Truth, "true", "", \
         "Does a style query leave its argument list unchanged, so that a second query finds SETTING again?") \
    FACT(ListDeallocClearsHandle, "list.dealloc.clearsHandle", None, Truth, "true", "", \
         "Does VexaUtilArgListDealloc set the handle to null?") \
    FACT(ListAppendEmptyName, "list.append.emptyName", None, Truth, "true", "", \
         "Does an argument list take an argument whose name is empty?") \
    FACT(ListAppendEmptyText, "list.append.emptyText", None, Truth, "true", "", \
         "Does an argument list take an empty text as a value?") \
    FACT(ListAppendLongText, "list.append.longText", None, Truth, "true", "", \
         "Does an argument list take a text of 100000 characters as a value?") \
    FACT(ListAppendOtherCase, "list.append.otherCase", None, Truth, "true", "", \
         "Does an argument list take two names that differ in the case of a letter only?") \
    FACT(ListAppendMost, "list.append.most", None, Count, "1000", "", \
         "How many of 1000 arguments with different names does an argument list take?") \
    FACT(ListAppendSameNameTwice, "list.append.sameNameTwice", BreaksContract, Truth, "true", "", \
         "Does an argument list take a second argument with the same name?") \
    FACT(ListAppendSameNameTwiceCounts, "list.append.sameNameTwice.counts", BreaksContract, Word, "first", \
         "first|last", \
         "Which of two DValue arguments gets the value of SETTING: first, last, both or none?") \
    FACT(SetDeallocClearsHandle, "set.dealloc.clearsHandle", None, Truth, "true", "", \
         "Does VexaUtilSetDealloc set the handle to null?") \
    FACT(SetInsertTouching, "set.insert.touching", None, Word, "[1-6]", "[1-6]|[1-3,4-6]", \
         "What runs has a set after the ranges 1-3 and 4-6 were inserted?") \
    FACT(SetInsertOverlapping, "set.insert.overlapping", None, Fixed, "[1-8]", \
         "the stand-in stores each member once", \
         "What runs has a set after the ranges 1-5 and 3-8 were inserted?") \
    FACT(SetInsertTwice, "set.insert.twice", None, Truth, "true", "", \
         "Does VexaUtilSetInsert return 1 for members that the set already has?") \
    FACT(SetInsertReversed, "set.insert.reversed", MayEndHost, Word, "refused", "refused|ignored|swapped", \
         "What does VexaUtilSetInsert do with the range from 6 to 4: refused (it returns 0), ignored (it returns 1 " \
         "and inserts nothing), swapped (it returns 1 and inserts 4-6), or other runs?") \
    FACT(SetInsertNegative, "set.insert.negative", MayEndHost, Word, "refused", "refused|ignored|clipped", \
         "What does VexaUtilSetInsert do with the range from -3 to 2: refused (it returns 0), ignored (it returns 1 " \
         "and inserts nothing), clipped (it returns 1 and inserts 0-2), or other runs?") \
    FACT(SetInsertLargest, "set.insert.largest", MayEndHost, Truth, "true", "", \
         "Does a set take the largest 64-bit integer as a member?") \
    FACT(SetNextRangeInside, "set.nextRange.inside", None, Word, "whole", "whole|rest", \
         "What does VexaUtilSetNextRange find from inside a run: the whole run, or the rest of it?") \
    FACT(SetNextRangeNegativeFrom, "set.nextRange.negativeFrom", None, Truth, "true", "", \
         "Does VexaUtilSetNextRange find the first run from -1?") \
    FACT(SetNextRangeKeepsOutputs, "set.nextRange.keepsOutputs", None, Truth, "true", "", \
         "Does VexaUtilSetNextRange leave both outputs unchanged if there is no run?") \
    FACT(StringDeallocClearsHandle, "string.dealloc.clearsHandle", None, Truth, "true", "", \
         "Does VexaUtilStringDealloc set the handle to null?") \
    FACT(StringAllocNoBytes, "string.alloc.noBytes", None, Truth, "false", "", \
         "Does VexaUtilStringAlloc return a string for a size of 0?") \
    FACT(StringAllocNegative, "string.alloc.negative", MayEndHost, Truth, "false", "", \
         "Does VexaUtilStringAlloc return a string for a size of -1?") \
    FACT(StringAllocLarge, "string.alloc.large", None, Truth, "true", "", \
         "Does VexaUtilStringAlloc return a string of 1048576 bytes?") \
    FACT(StringAllocIsZeroed, "string.alloc.isZeroed", None, Fixed, "false", \
         "the stand-in fills a new string with a pattern, to find missing terminating zeros", \
         "Does a new host string consist of zeros?") \
    FACT(StringAllocNoPurpose, "string.alloc.noPurpose", MayEndHost, Truth, "true", "", \
         "Does VexaUtilStringAlloc return a string if the purpose is null?") \
    FACT(MutexDeallocClearsHandle, "mutex.dealloc.clearsHandle", None, Truth, "true", "", \
         "Does VexaUtilThreadMutexDealloc set the handle to null?") \
    FACT(MutexMost, "mutex.most", None, Count, "64", "", \
         "How many of 64 mutexes can exist at the same time?") \
    FACT(MutexExcludesOthers, "mutex.excludesOthers", None, Fixed, "true", \
         "without exclusion, every test with threads would fail at random", \
         "Does a mutex that one thread holds make another thread wait?") \
    FACT(LockNests, "lock.nests", MayEndHost, Fixed, "true", "a stand-in that hangs tests nothing", \
         "Does a second VexaUtilLockStart of the same add-on return?") \
    FACT(MarkingNests, "marking.nests", None, Fixed, "true", "a stand-in that hangs tests nothing", \
         "Do two nested suspensions of marking return?") \
    FACT(AuxDataNests, "auxData.nests", None, Fixed, "true", "a stand-in that hangs tests nothing", \
         "Do two nested assignments of auxiliary data return?") \
    FACT(SolutionTimeNests, "solutionTime.nests", None, Fixed, "true", "a stand-in that hangs tests nothing", \
         "Do two nested modifications of solution times return?") \
    FACT(StatusCheckBeforeStart, "status.check.beforeStart", BreaksContract, Truth, "true", "", \
         "What does VexaUtilStatusCheckPercentDone answer before a status line was shown?") \
    FACT(StatusCheckWhileShown, "status.check.whileShown", None, Fixed, "true", \
         "0 means that the user asked to stop, so add-ons would stop every task", \
         "What does VexaUtilStatusCheckPercentDone answer while the status line is shown: true for 1, false for 0?") \
    FACT(StatusCheckAfterFinish, "status.check.afterFinish", BreaksContract, Truth, "true", "", \
         "What does VexaUtilStatusCheckPercentDone answer after the status line was removed?") \
    FACT(StatusCheckOver100, "status.check.over100", BreaksContract, Truth, "true", "", \
         "What does VexaUtilStatusCheckPercentDone answer for 101 percent?") \
    FACT(StatusCheckNegative, "status.check.negative", BreaksContract, Truth, "true", "", \
         "What does VexaUtilStatusCheckPercentDone answer for -1 percent?") \
    FACT(StatusCheckBackwards, "status.check.backwards", BreaksContract, Truth, "true", "", \
         "What does VexaUtilStatusCheckPercentDone answer for 20 percent after 80 percent?") \
    FACT(StateBatch, "state.batch", None, Truth, "false", "", \
         "Is batch mode active when the probe runs?") \
    FACT(StateRecording, "state.recording", None, Truth, "false", "", \
         "Does the host record a macro when the probe runs?") \
    FACT(StateJournal, "state.journal", None, Truth, "false", "", \
         "Does the host play back a journal when the probe runs?") \
    FACT(StateLayout, "state.layout", None, Truth, "false", "", \
         "Does the host play back a layout when the probe runs?") \
    FACT(RecordWhileRecording, "record.whileRecording", None, Truth, "true", "", \
         "Does the host record a command of one line while it records?") \
    FACT(RecordWhileNotRecording, "record.whileNotRecording", None, Truth, "false", "", \
         "What does VexaUtilMacroRecordExtCommand answer while the host does not record: true for 1, false for 0?") \
    FACT(RecordLongText, "record.longText", None, Truth, "true", "", \
         "Does the host record a command of 10000 characters?") \
    FACT(RecordNonAscii, "record.nonAscii", None, Truth, "true", "", \
         "Does the host record a command with letters that are not ASCII, in UTF-8?") \
    FACT(RecordEmptyText, "record.emptyText", BreaksContract, Truth, "false", "", \
         "What does VexaUtilMacroRecordExtCommand answer for an empty command?") \
    FACT(RecordLineBreak, "record.lineBreak", BreaksContract, Truth, "false", "", \
         "What does VexaUtilMacroRecordExtCommand answer for a command with a line break?") \
    FACT(RecordLeadingBlank, "record.leadingBlank", BreaksContract, Truth, "false", "", \
         "What does VexaUtilMacroRecordExtCommand answer for a command that starts with a blank?") \
    FACT(RecordUnknownAddOn, "record.unknownAddOn", BreaksContract, Truth, "true", "", \
         "Does the host record a command under the id of an add-on that is not loaded?") \
    FACT(JournalAdd, "journal.add", None, Truth, "true", "", \
         "Does the host add a command with data of the add-on to the data-set journal?") \
    FACT(JournalAddWithoutData, "journal.addWithoutData", None, Truth, "true", "", \
         "Does the host add a command without data of the add-on to the data-set journal?") \
    FACT(JournalEmptyText, "journal.emptyText", BreaksContract, Truth, "false", "", \
         "What does VexaUtilDataSetAddJournalCommand answer for an empty command?") \
    FACT(ThreadCommandIsLoading, "thread.command.isLoadingThread", None, Fixed, "true", \
         "the program that uses the stand-in chooses the thread", \
         "Does a command run on the thread that loaded the add-on?") \
    FACT(ThreadCommandIsMain, "thread.command.isMainThread", None, Fixed, "true", \
         "the program that uses the stand-in chooses the thread", \
         "Does a command run on the first thread of the process?") \
    FACT(ThreadShutdownIsLoading, "thread.shutdown.isLoadingThread", None, Fixed, "true", \
         "the program that uses the stand-in chooses the thread", \
         "Does the shutdown run on the thread that loaded the add-on?") \
    FACT(CommandStartsWithBlank, "command.text.startsWithBlank", None, Truth, "false", "", \
         "Does the text of a command start with a blank?") \
    FACT(CommandEndsWithLineBreak, "command.text.endsWithLineBreak", None, Truth, "false", "", \
         "Does the text of a command end with a line break?") \
    FACT(MacroGoesOnAfterFailure, "macro.goesOnAfterFailure", None, Truth, "false", "", \
         "Does a macro go on after a command that failed?") \
    FACT(ShutdownIsCalled, "shutdown.isCalled", None, Truth, "true", "", \
         "Does the host call the shutdown of an add-on?") \
    FACT(ShutdownOrder, "shutdown.order", None, Word, "lastLoadedFirst", "lastLoadedFirst|firstLoadedFirst", \
         "Which of two add-ons is shut down first: lastLoadedFirst or firstLoadedFirst?")
// clang-format on

namespace vexa::facts {

/// Why a question is asked only if the user takes the risk.
enum class Risk_e {
    None,           ///< every host must answer the question
    MayEndHost,     ///< the question keeps the contract, but a careless host may crash or hang
    BreaksContract  ///< the question breaks a rule of the contract
};

/// What an answer looks like.
enum class Kind_e {
    Truth,  ///< `true` or `false`
    Code,   ///< `Ok`, `OtherType`, `UnknownPath` or `NotAvailable`
    Count,  ///< a number from 0 to the stand-in's answer
    Word,   ///< a word, of which the stand-in knows some
    Fixed   ///< any of these; the stand-in has only its own answer
};

/// A fact about a host.
enum class Fact {
#define VEXA_FACT_ENUMERATOR(fact, name, risk, kind, standIn, limit, question) fact,
    VEXA_FACTS(VEXA_FACT_ENUMERATOR)
#undef VEXA_FACT_ENUMERATOR
};

/// A row of the table.
struct FactInfo {
    const char* name;      ///< for example "list.append.sameNameTwice"
    Risk_e risk;           ///< whether the probe asks without being told to take risks
    Kind_e kind;           ///< what answers look like
    const char* standIn;   ///< the answer of the stand-in
    const char* limit;     ///< of a Word the known words, separated by `|`; of a Fixed the reason
    const char* question;  ///< the question in words
};

/// All facts, in the order of the enumeration.
inline constexpr FactInfo kFacts[] = {
#define VEXA_FACT_INFO(fact, name, risk, kind, standIn, limit, question) \
    {name, Risk_e::risk, Kind_e::kind, standIn, limit, question},
    VEXA_FACTS(VEXA_FACT_INFO)
#undef VEXA_FACT_INFO
};

inline constexpr std::size_t kFactCount = sizeof(kFacts) / sizeof(kFacts[0]);

/// The row of \p fact.
constexpr const FactInfo& infoOf(Fact fact) { return kFacts[static_cast<std::size_t>(fact)]; }

/// The fact with \p name; nothing if there is none.
constexpr std::optional<Fact> findFact(std::string_view name) {
    for (std::size_t i = 0; i != kFactCount; ++i) {
        if (name == kFacts[i].name) return static_cast<Fact>(i);
    }
    return std::nullopt;
}

}  // namespace vexa::facts
