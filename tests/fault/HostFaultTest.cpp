// Tests what the library does if a host function fails, returns a wrong result, or throws. Each operation runs as the
// command of an add-on, so that the host detects what the operation did not release.
#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <mutex>
#include <new>
#include <regex>
#include <set>
#include <stdexcept>

#include "Child.h"
#include "library/processor/ScriptedProcessor.h"
#include "support/FailingAllocator.h"
#include "vexa/AddOn.h"
#include "vexa/toolbox/Set.h"
#include "vexa/ui/TaskProgress.h"
#include "vexastandin/Host.h"
#include "vexautilutil/AsciiFile.h"
#include "vexautilutil/HostGuards.h"
#include "vexautilutil/Mutex.h"
#include "vexautilutil/StyleValue.h"
#include "vexautilutil/TaskProgressBar.h"

namespace vexa::tests {
namespace {

using namespace vexautilutil;
using standin::Host;

// ---- The add-on, whose only command is the tested operation

using Operation = std::string (*)();

AddOnList_s* identity = nullptr;
Operation operation = nullptr;
std::string outcome;

VexaBoolean execute(const char* /*command*/, char** /*errMsg*/) {
    try {
        outcome = operation();
    } catch (const std::bad_alloc&) {
        outcome = "bad_alloc";
    } catch (const std::runtime_error&) {
        outcome = "the host's exception";
    }
    return 1;
}

const VexaAddOn_s* entry(AddOnList_s* self) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "FAULTS", nullptr, execute, nullptr};
    identity = self;
    return &description;
}

// ---- The operations

std::string locks() {
    const AddOnIdLock lock(identity);
    return "held";
}

template <class Guard>
std::string guards() {
    const Guard guard;
    return "held";
}

std::string locksMutex() {
    Mutex mutex;
    mutex.lock();
    mutex.unlock();
    return "locked";
}

std::string guardsMutex() {
    Mutex mutex;
    const std::lock_guard<Mutex> lock(mutex);
    return "locked";
}

std::string shown(const ui::TaskProgress& progress) {
    const bool isInterrupted = progress.isInterrupted();
    const standin::StatusLine line = Host::current()->statusLine();
    return (isInterrupted ? "interrupted, " : "goes on, ") + line.text + ' ' + std::to_string(line.percent);
}

std::string progresses() {
    const auto progress = createTaskProgressBar(2);
    progress->start("one");
    const std::string seen = shown(*progress);
    progress->finish();
    return seen;
}

std::string advances() {
    const auto progress = createTaskProgressBar(2);
    progress->start("one");
    progress->advance();
    return shown(*progress);  // the destructor finishes the task
}

std::string finishes() {
    const auto progress = createTaskProgressBar(2);
    progress->start("one");
    progress->finish();
    return "finished";
}

std::string changesText() {
    const auto progress = createTaskProgressBar(2);
    progress->start("one");
    progress->setStatusMessage("two");
    return shown(*progress);
}

std::string records() {
    const bool accepted = ScriptedProcessor(nullptr).recordMacroCommand("FAULTS");
    return (accepted ? "true, " : "false, ") + std::to_string(Host::current()->recordedCommands().size());
}

std::string journals() {
    const bool accepted = ScriptedProcessor(nullptr).journalMacroCommand("FAULTS", nullptr);
    return (accepted ? "true, " : "false, ") + std::to_string(Host::current()->journalEntries().size());
}

std::string refuses() {
    ScriptedProcessor processor([](MacroCommandProcessorAbstract& p) {
        p.depositErrorMessage("refused");
        return false;
    });
    char* message = nullptr;
    processor.parseCommandString("COMMAND", &message);
    if (message == nullptr) return "no message";
    const std::string text = message;
    VexaUtilStringDealloc(&message);
    return text;
}

std::string ask(const char* keyword) {
    std::vector<std::string> path = {"Group", keyword};
    ResultType_e type = ResultType_None;
    auto code = GetValueReturnCode_Ok;
    std::string text = "untouched";
    getValueAsString(path, 1, 2, type, code, text);
    return std::to_string(type) + ' ' + std::to_string(code) + ' ' + text;
}

std::string asksForADouble() { return ask("Thickness"); }
std::string asksForAnInteger() { return ask("Count"); }
std::string asksForAText() { return ask("Name"); }
std::string asksForASet() { return ask("ActiveFieldMaps"); }

std::string copiesASet() {
    struct Handle {
        Handle() {
            for (const int64_t member : {3, 5, 9}) VexaUtilSetInsert(set, member, member);
        }
        Handle(const Handle&) = delete;
        Handle& operator=(const Handle&) = delete;
        ~Handle() { VexaUtilSetDealloc(&set); }
        Set_s* set = VexaUtilSetAlloc();
    };
    const Handle handle;
    return toolbox::Set(handle.set).toString();
}

std::string showsADialog() {
    AsciiFile().error("Wrong");
    return "shown " + std::to_string(Host::current()->dialogs().size());
}

// ---- The host's faults, and the expected outcomes

constexpr int kThrows = -1;

struct HostFault {
    const char* function;
    int answer;  ///< what it returns without doing anything (a pointer is null); or kThrows
    Operation operation;
    const char* outcome;
    const char* left = "";  ///< the rule that is then broken; empty if none
    std::size_t nth = 1;    ///< which call fails, counted from 1
};

constexpr char kException[] = "the host's exception";
constexpr char kEndsTheProgram[] = "ended by signal 6";

const HostFault kFaults[] = {
    {"VexaUtilLockStart", 0, locks, "held"},
    {"VexaUtilLockStart", kThrows, locks, kException},
    {"VexaUtilLockFinish", 0, locks, "held"},
    {"VexaUtilLockFinish", kThrows, locks, kEndsTheProgram},
    {"VexaUtilAuxDataBeginAssign", 0, guards<AuxDataSuspendBroadcast>, "held"},
    {"VexaUtilAuxDataBeginAssign", kThrows, guards<AuxDataSuspendBroadcast>, kException},
    {"VexaUtilAuxDataEndAssign", 0, guards<AuxDataSuspendBroadcast>, "held"},
    {"VexaUtilAuxDataEndAssign", kThrows, guards<AuxDataSuspendBroadcast>, kEndsTheProgram},
    {"VexaUtilDataSetSuspendMarking", 0, guards<DataSetSuspendMarking>, "held"},
    {"VexaUtilDataSetSuspendMarking", kThrows, guards<DataSetSuspendMarking>, kException},
    {"VexaUtilDataSetSuspendMarking", kThrows, guards<DataSetSuspendMarking>, kEndsTheProgram, "", 2},
    {"VexaUtilZoneSolutionTimeModificationBegin", 0, guards<SolutionTimeNotificationDeferrer>, "held"},
    {"VexaUtilZoneSolutionTimeModificationBegin", kThrows, guards<SolutionTimeNotificationDeferrer>, kException},
    {"VexaUtilZoneSolutionTimeModificationEnd", 0, guards<SolutionTimeNotificationDeferrer>, "held"},
    {"VexaUtilZoneSolutionTimeModificationEnd", kThrows, guards<SolutionTimeNotificationDeferrer>, kEndsTheProgram},

    {"VexaUtilThreadMutexAlloc", 0, locksMutex, "bad_alloc"},
    {"VexaUtilThreadMutexAlloc", kThrows, locksMutex, kException},
    {"VexaUtilThreadMutexLock", 0, locksMutex, "locked"},
    {"VexaUtilThreadMutexLock", kThrows, locksMutex, kException},
    {"VexaUtilThreadMutexLock", kThrows, guardsMutex, kException},
    {"VexaUtilThreadMutexUnlock", 0, locksMutex, "locked"},
    {"VexaUtilThreadMutexUnlock", kThrows, locksMutex, kException},
    {"VexaUtilThreadMutexUnlock", kThrows, guardsMutex, kEndsTheProgram},
    {"VexaUtilThreadMutexDealloc", 0, locksMutex, "locked"},
    {"VexaUtilThreadMutexDealloc", kThrows, locksMutex, kEndsTheProgram},

    {"VexaUtilMacroIsBatchModeActive", 0, advances, "goes on, one 50"},
    {"VexaUtilMacroIsBatchModeActive", 1, advances, "goes on,  0"},
    {"VexaUtilMacroIsBatchModeActive", 77, advances, "goes on, one 50"},
    {"VexaUtilMacroIsBatchModeActive", kThrows, advances, kException},
    {"VexaUtilStatusStartPercentDone", 0, progresses, "goes on,  0"},
    {"VexaUtilStatusStartPercentDone", kThrows, progresses, kException},
    {"VexaUtilStatusCheckPercentDone", 0, progresses, "interrupted, one 0"},
    {"VexaUtilStatusCheckPercentDone", 77, progresses, "goes on, one 0"},
    {"VexaUtilStatusCheckPercentDone", kThrows, progresses, kException},
    {"VexaUtilStatusCheckPercentDone", 0, advances, "goes on, one 50"},
    {"VexaUtilStatusCheckPercentDone", kThrows, advances, kException},
    {"VexaUtilStatusCheckPercentDone", kThrows, advances, "goes on, one 50", "", 3},
    {"VexaUtilStatusCheckPercentDone", 0, finishes, "finished"},
    {"VexaUtilStatusCheckPercentDone", kThrows, finishes, kException},
    {"VexaUtilStatusSetPercentDoneText", 0, changesText, "goes on, one 0"},
    {"VexaUtilStatusSetPercentDoneText", kThrows, changesText, kException},
    {"VexaUtilStatusFinishPercentDone", 0, finishes, "finished"},
    {"VexaUtilStatusFinishPercentDone", kThrows, finishes, kException},
    {"VexaUtilStatusFinishPercentDone", kThrows, advances, "goes on, one 50"},

    {"VexaUtilMacroIsRecordingActive", 0, records, "true, 0"},
    {"VexaUtilMacroIsRecordingActive", 77, records, "true, 1"},
    {"VexaUtilMacroIsRecordingActive", kThrows, records, kException},
    {"VexaUtilStateIsProcessingJournal", 1, records, "true, 0"},
    {"VexaUtilStateIsProcessingJournal", 77, records, "true, 0"},
    {"VexaUtilStateIsProcessingJournal", kThrows, records, kException},
    {"VexaUtilStateIsProcessingLayout", 1, records, "true, 0"},
    {"VexaUtilStateIsProcessingLayout", 77, records, "true, 0"},
    {"VexaUtilStateIsProcessingLayout", kThrows, records, kException},
    {"VexaUtilMacroRecordExtCommand", 0, records, "false, 0"},
    {"VexaUtilMacroRecordExtCommand", 77, records, "false, 0"},
    {"VexaUtilMacroRecordExtCommand", kThrows, records, kException},
    {"VexaUtilDataSetAddJournalCommand", 0, journals, "false, 0"},
    {"VexaUtilDataSetAddJournalCommand", 77, journals, "true, 0"},
    {"VexaUtilDataSetAddJournalCommand", kThrows, journals, kException},
    {"VexaUtilStringAlloc", 0, refuses, "no message"},
    {"VexaUtilStringAlloc", kThrows, refuses, kException},

    {"VexaUtilArgListAlloc", 0, asksForADouble, "4 3 untouched"},
    {"VexaUtilArgListAlloc", kThrows, asksForADouble, kException},
    {"VexaUtilArgListAppendString", 0, asksForADouble, "4 3 untouched"},
    {"VexaUtilArgListAppendString", 0, asksForAnInteger, "1 3 0", "", 3},
    {"VexaUtilArgListAppendString", 77, asksForADouble, "4 2 untouched"},
    {"VexaUtilArgListAppendString", kThrows, asksForADouble, kException, "leaked-arglist"},
    {"VexaUtilArgListAppendInt", 0, asksForADouble, "4 3 untouched"},
    {"VexaUtilArgListAppendInt", 0, asksForADouble, "4 3 untouched", "", 2},
    {"VexaUtilArgListAppendInt", kThrows, asksForADouble, kException, "leaked-arglist"},
    {"VexaUtilArgListAppendDoublePtr", 0, asksForADouble, "4 3 untouched"},
    {"VexaUtilArgListAppendDoublePtr", kThrows, asksForADouble, kException, "leaked-arglist"},
    {"VexaUtilArgListAppendArbParamPtr", 0, asksForAnInteger, "1 3 0"},
    {"VexaUtilArgListAppendArbParamPtr", 0, asksForAText, "3 3 "},
    {"VexaUtilArgListAppendArbParamPtr", 0, asksForASet, "2 3 []"},
    {"VexaUtilArgListAppendArbParamPtr", kThrows, asksForAnInteger, kException, "leaked-arglist"},
    {"VexaUtilArgListClear", kThrows, asksForAnInteger, kException, "leaked-arglist"},
    {"VexaUtilStyleGetLowLevelX", 0, asksForADouble, "0 0 0"},
    {"VexaUtilStyleGetLowLevelX", 2, asksForADouble, "4 2 untouched"},
    {"VexaUtilStyleGetLowLevelX", 3, asksForADouble, "4 3 untouched"},
    {"VexaUtilStyleGetLowLevelX", 77, asksForADouble, "4 77 untouched"},
    {"VexaUtilStyleGetLowLevelX", kThrows, asksForADouble, kException, "leaked-arglist"},
    {"VexaUtilStyleGetLowLevelX", 0, asksForAnInteger, "1 0 0", "", 2},
    {"VexaUtilStyleGetLowLevelX", 0, asksForAText, "3 0 ", "", 2},
    {"VexaUtilStyleGetLowLevelX", 0, asksForASet, "2 0 []", "", 2},
    {"VexaUtilStyleGetLowLevelX", 2, asksForAText, "3 2 ", "", 2},
    {"VexaUtilStyleGetLowLevelX", 77, asksForAnInteger, "1 77 0", "", 2},
    {"VexaUtilStyleGetLowLevelX", kThrows, asksForAnInteger, kException, "leaked-arglist", 2},
    {"VexaUtilArgListDealloc", 0, asksForADouble, "0 0 0.5"},
    {"VexaUtilArgListDealloc", kThrows, asksForADouble, kException},

    {"VexaUtilDialogErrMsg", 0, showsADialog, "shown 0"},
    {"VexaUtilDialogErrMsg", kThrows, showsADialog, kException},

    {"VexaUtilSetNextRange", 0, copiesASet, "[]"},
    {"VexaUtilSetNextRange", 0, copiesASet, "[3,5]", "", 3},
    {"VexaUtilSetNextRange", 77, copiesASet, "[]"},
    {"VexaUtilSetNextRange", 77, copiesASet, "[3,5]", "", 3},
    {"VexaUtilSetNextRange", kThrows, copiesASet, kException, "", 2},
    {"VexaUtilSetNextRange", kThrows, asksForASet, kException, "leaked-arglist"},
};

void PrintTo(const HostFault& fault, std::ostream* out) {
    *out << fault.function << (fault.answer == kThrows ? " throws" : " returns " + std::to_string(fault.answer));
}

// Runs the operation in a host with the fault. Returns the outcome and the broken rules.
std::string outcomeOf(const HostFault& fault) {
    Host host;
    host.setRecording(true);
    host.setStyle({"Group", "Thickness"}, 0.5);
    host.setStyle({"Group", "Count"}, int64_t{12});
    host.setStyle({"Group", "Name"}, std::string("a name"));
    host.setStyle({"Group", "ActiveFieldMaps"}, toolbox::Set());
    host.linkAddOn(entry);
    operation = fault.operation;
    if (fault.answer == kThrows) host.throwFromCall(fault.function, fault.nth);
    if (fault.answer != kThrows) host.failCall(fault.function, fault.nth, fault.answer);
    const standin::CommandResult result = host.run("FAULTS", "RUN");
    host.unloadAddOns();
    std::string text = result.accepted ? outcome : "escaped: " + result.error;
    for (const standin::Finding& finding : host.violations()) text += ", " + finding.rule;
    return text;
}

class HostFaults : public testing::TestWithParam<HostFault> {};

TEST_P(HostFaults, AreTakenAsTheDescriptionsSay) {
    const HostFault& fault = GetParam();
    const bool isNoCode = fault.answer == 77 && fault.function == std::string("VexaUtilStyleGetLowLevelX");
    if (VEXA_CHECKS_UNDEFINED && isNoCode) GTEST_SKIP() << "the sanitizer ends what is handed such a code";
    const std::string expected = fault.outcome + (*fault.left == '\0' ? "" : std::string(", ") + fault.left);
    EXPECT_EQ(inChild([&] { return outcomeOf(fault); }), expected);
    if (fault.outcome == std::string(kEndsTheProgram)) return;
    EXPECT_EQ(outcomeOf(fault), expected);
    outcome = {};
    const long before = FailingAllocator::liveBlocks();
    outcomeOf(fault);
    outcome = {};
    EXPECT_EQ(FailingAllocator::liveBlocks(), before);
}

// Returns a test name such as "VexaUtilLockStart_throws_2", with the position in the table.
std::string testName(const testing::TestParamInfo<HostFault>& info) {
    const HostFault& fault = info.param;
    const std::string does = fault.answer == kThrows ? "Throws" : "Returns" + std::to_string(fault.answer);
    return std::string(fault.function) + does + "_" + std::to_string(info.index);
}
INSTANTIATE_TEST_SUITE_P(Of, HostFaults, testing::ValuesIn(kFaults), testName);

// Uses the list of functions that the tests of the binary interface check, too.
TEST(HostFaultTable, HasEveryFunctionThatTheLibrariesCall) {
    std::set<std::string> tried;
    for (const HostFault& fault : kFaults) {
        if (fault.answer == kThrows) tried.insert(fault.function);
    }
    std::ifstream list(VEXA_SOURCE_DIR "/tests/abi/CMakeLists.txt");
    const std::string text(std::istreambuf_iterator<char>(list), {});
    const std::regex name("VexaUtil\\w+");
    std::set<std::string> called;
    for (std::sregex_iterator at(text.begin(), text.end(), name), end; at != end; ++at) called.insert(at->str());
    EXPECT_GT(called.size(), 30u);
    EXPECT_EQ(tried, called);
}

}  // namespace
}  // namespace vexa::tests
