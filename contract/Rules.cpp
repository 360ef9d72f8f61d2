// The table of rules. Checks, lists, explanations and reports all take their rules from here.

#include <algorithm>
#include <initializer_list>
#include <vector>

#include "contract/HostFunctionTable.h"
#include "vexastandin/Finding.h"

namespace vexa::standin {
namespace {

constexpr const char* kScopes = "Calls in pairs";
constexpr const char* kStatus = "The status line";
constexpr const char* kHandles = "Handles and addresses";
constexpr const char* kMutexes = "Mutexes";
constexpr const char* kStrings = "Strings";
constexpr const char* kArguments = "Argument lists";
constexpr const char* kEntries = "Threads and commands";

// A rule, and the event that makes the host check it.
struct Row {
    const char* name;
    const char* family;
    Severity_e severity;
    RuleTrigger trigger;
    const char* summary;
    const char* why;
    const char* hint;
    const char* unseen = "";  // in a host that is not the stand-in
};

RuleTrigger callOf(std::initializer_list<HostFunction> functions) {
    RuleTrigger trigger{RuleTrigger_e::Call, {}};
    for (const HostFunction function : functions) trigger.functions.push_back(nameOf(function));
    return trigger;
}

const std::vector<Row>& catalogue() {
    using F = HostFunction;
    constexpr Severity_e Error = Severity_e::Error;
    constexpr Severity_e Warning = Severity_e::Warning;
    static const RuleTrigger kFreesHandle = callOf(
        {F::VexaUtilThreadMutexDealloc, F::VexaUtilStringDealloc, F::VexaUtilArgListDealloc, F::VexaUtilSetDealloc});
    static const RuleTrigger kTakesHandle = callOf(
        {F::VexaUtilLockStart, F::VexaUtilThreadMutexDealloc, F::VexaUtilThreadMutexLock, F::VexaUtilThreadMutexUnlock,
         F::VexaUtilStringDealloc, F::VexaUtilArgListDealloc, F::VexaUtilArgListClear, F::VexaUtilArgListAppendString,
         F::VexaUtilArgListAppendInt, F::VexaUtilArgListAppendDoublePtr, F::VexaUtilArgListAppendArbParamPtr,
         F::VexaUtilStyleGetLowLevelX, F::VexaUtilSetDealloc, F::VexaUtilSetInsert, F::VexaUtilSetNextRange});
    static const RuleTrigger kTakesAddress =
        callOf({F::VexaUtilThreadMutexDealloc, F::VexaUtilMacroRecordExtCommand, F::VexaUtilDataSetAddJournalCommand,
                F::VexaUtilStringDealloc, F::VexaUtilArgListDealloc, F::VexaUtilArgListAppendString,
                F::VexaUtilArgListAppendInt, F::VexaUtilArgListAppendDoublePtr, F::VexaUtilArgListAppendArbParamPtr,
                F::VexaUtilDialogErrMsg, F::VexaUtilSetDealloc, F::VexaUtilSetNextRange});
    static const std::vector<Row> rows = {
        {"unbalanced-lock", kScopes, Error, callOf({F::VexaUtilLockStart, F::VexaUtilLockFinish}),
         "Every VexaUtilLockStart needs a VexaUtilLockFinish in the same command, and vice versa.",
         "If the lock stays taken, the host and all other add-ons wait forever. An extra VexaUtilLockFinish releases "
         "the lock of another add-on.",
         "Use an AddOnIdLock. It releases the lock on every return and on every exception."},
        {"lock-identity", kScopes, Error, callOf({F::VexaUtilLockFinish}),
         "VexaUtilLockFinish must get the same identity as VexaUtilLockStart.",
         "The host counts locks by identity. With another identity, the lock stays taken, and the lock of another "
         "add-on may be released.",
         "Store the identity that vexaAddOn() receives in one place, and pass it to both calls."},
        {"unbalanced-auxdata", kScopes, Error, callOf({F::VexaUtilAuxDataBeginAssign, F::VexaUtilAuxDataEndAssign}),
         "Every VexaUtilAuxDataBeginAssign needs a VexaUtilAuxDataEndAssign in the same command, and vice versa.",
         "Until the end call, the host sends no notifications. Dialogs and other add-ons keep showing old auxiliary "
         "data.",
         "Use an AuxDataSuspendBroadcast while you assign. It makes the end call on every return and on every "
         "exception."},
        {"unbalanced-marking", kScopes, Error, callOf({F::VexaUtilDataSetSuspendMarking}),
         "The marking of data sets must be resumed as often as it is suspended, in the same command.",
         "While marking is suspended, the host does not mark the data set as changed. The user's changes are lost when "
         "the data set is closed. An extra resume ends the suspension of another add-on.",
         "Use a DataSetSuspendMarking. It resumes marking exactly once, on every return and on every exception."},
        {"unbalanced-solution-time", kScopes, Error,
         callOf({F::VexaUtilZoneSolutionTimeModificationBegin, F::VexaUtilZoneSolutionTimeModificationEnd}),
         "Every VexaUtilZoneSolutionTimeModificationBegin needs a VexaUtilZoneSolutionTimeModificationEnd in the same "
         "command, and vice versa.",
         "Until the end call, the host sends no notifications. Animations keep using old solution times.",
         "Use a SolutionTimeNotificationDeferrer while you change solution times. It makes the end call on every "
         "return and on every exception."},
        {"unbalanced-status", kScopes, Error,
         callOf({F::VexaUtilStatusStartPercentDone, F::VexaUtilStatusFinishPercentDone}),
         "Every VexaUtilStatusStartPercentDone needs a VexaUtilStatusFinishPercentDone in the same command, and vice "
         "versa.",
         "Without the finish, the status line still shows a task that is over, and its stop button stops the next "
         "task.",
         "Use a task progress from createTaskProgressBar(). It starts the line, and its destructor finishes the line."},
        {"status-started-twice", kStatus, Error, callOf({F::VexaUtilStatusStartPercentDone}),
         "VexaUtilStatusStartPercentDone must not be called while the status line is shown.",
         "The host has only one status line. The second task overwrites the first, and its finish removes the line for "
         "both.",
         "Finish the line before the next task starts it, or use one progress for all parts of a task."},
        {"status-not-started", kStatus, Error,
         callOf({F::VexaUtilStatusCheckPercentDone, F::VexaUtilStatusSetPercentDoneText}),
         "Percentages and texts must be set between the start and the finish of the status line.",
         "If the status line is not shown, the host may draw them over something else.",
         "Start the line first. Do not advance a progress after its finish."},
        {"percent-out-of-range", kStatus, Warning, callOf({F::VexaUtilStatusCheckPercentDone}),
         "A percentage must be from 0 to 100.", "The bar is wrong, and the user cannot see how much work is left.",
         "Count the steps of the whole task first, and report the finished share. A TaskProgress does this."},
        {"percent-backwards", kStatus, Warning, callOf({F::VexaUtilStatusCheckPercentDone}),
         "The percentage of a task must not decrease.", "The user thinks that the task has started again.",
         "Give each part of the task its own share of the range from 0 to 100."},
        {"use-after-free", kHandles, Error, kFreesHandle, "A handle must not be used after it is freed.",
         "Its memory may already belong to something else. The host crashes or changes the wrong object.",
         "Let one object own the handle, and free the handle after its last use."},
        {"double-free", kHandles, Error, kFreesHandle, "A handle must be freed only once.",
         "The second call may free memory that already belongs to something else. The host then crashes later, in "
         "another place.",
         "Keep the handle in only one variable: the host sets that variable to null. Or let one object own the "
         "handle."},
        {"foreign-handle", kHandles, Error, kTakesHandle,
         "A handle must come from the host and have the right type. An add-on must not change or free an object of the "
         "host.",
         "The host treats the memory at the address as its own object, and crashes.",
         "Pass the result of the ...Alloc function. The result of a style query belongs to the host: copy it, and do "
         "not free it.",
         "Each value that a style query returns counts as a set of the host, because the host alone knows which of "
         "them are sets. Values that the host has replaced count, too."},
        {"null-handle", kHandles, Error, kTakesHandle, "A handle must not be null.",
         "No host function accepts a null handle. A null handle often means that the handle was already freed, or that "
         "an allocation failed.",
         "Check the result of each ...Alloc function. Free a handle only once: the host then sets it to null."},
        {"null-address", kHandles, Error, kTakesAddress,
         "The address of a text or a result must not be null, unless the description of the function allows it.",
         "The host reads or writes at that address, and crashes.",
         "Pass an empty text instead of null, and the address of a variable for a result."},
        {"leaked-arglist", kHandles, Error, callOf({F::VexaUtilArgListAlloc}),
         "An argument list must be freed before the command ends.",
         "Every command uses more of the host's memory, until the session ends.",
         "Call VexaUtilArgListDealloc() on every return and on every exception."},
        {"leaked-string", kHandles, Error, callOf({F::VexaUtilStringAlloc}),
         "A host string must be freed, or returned as the error message, before the command ends.",
         "Every command uses more of the host's memory, until the session ends.",
         "Allocate the string only after the command has failed, and store it in the errMsg of the command."},
        {"leaked-mutex", kHandles, Error, callOf({F::VexaUtilThreadMutexAlloc}),
         "A mutex must be freed before the add-on is unloaded.",
         "The host has few mutexes, and does not free them when it unloads the add-on.",
         "Use the class Mutex, or free the mutex in the add-on's shutdown.",
         "Leaks are reported when the add-on is unloaded or the program exits, and only if the host has called the "
         "add-on's shutdown, or if the add-on has none."},
        {"leaked-set", kHandles, Error, callOf({F::VexaUtilSetAlloc}),
         "A set must be freed before the add-on is unloaded.",
         "A set that is not freed uses the host's memory until the session ends.",
         "Call VexaUtilSetDealloc() after you have copied the set, or in the add-on's shutdown.",
         "Leaks are reported when the add-on is unloaded or the program exits, and only if the host has called the "
         "add-on's shutdown, or if the add-on has none."},
        {"mutex-not-held", kMutexes, Error, callOf({F::VexaUtilThreadMutexUnlock}),
         "A mutex must be unlocked once, by the thread that locked it.",
         "Otherwise two threads can run the code that the mutex protects at the same time.",
         "Use a std::lock_guard<Mutex>. It locks and unlocks in one function."},
        {"mutex-locked-twice", kMutexes, Error, callOf({F::VexaUtilThreadMutexLock}),
         "A thread must not lock a mutex that it already holds.",
         "The mutex does not count locks, so the thread waits for itself forever.",
         "Lock the mutex in the outermost function only, and call functions that expect it to be locked."},
        {"mutex-freed-locked", kMutexes, Error, callOf({F::VexaUtilThreadMutexDealloc}),
         "A mutex must not be freed while it is locked.",
         "A thread that waits for the mutex never wakes up. The thread that holds it unlocks freed memory.",
         "Unlock the mutex, and stop the threads that use it, before you free it."},
        {"mutex-left-locked", kMutexes, Error, callOf({F::VexaUtilThreadMutexLock}),
         "A thread on which the host called the add-on must unlock its mutexes before it returns.",
         "The next thread that locks the mutex waits forever.",
         "Use a std::lock_guard<Mutex>. It unlocks on every return and on every exception."},
        {"string-overrun", kStrings, Error, callOf({F::VexaUtilStringAlloc}),
         "An add-on must not write more bytes to a host string than it requested.",
         "The extra bytes overwrite other memory. The host crashes later, in another place.",
         "The size includes the terminating zero: request one byte more than the length of the text.",
         "Never reported: the bytes after a host string belong to the host. A string without a terminating zero is "
         "reported."},
        {"string-unterminated", kStrings, Error, callOf({F::VexaUtilStringAlloc}),
         "A string that is passed to the host must end with a zero.", "The host reads past the end of the string.",
         "Copy the zero too: std::memcpy(string, text, std::strlen(text) + 1)."},
        {"foreign-errmsg",
         kStrings,
         Error,
         {RuleTrigger_e::FailedCommand, {}},
         "An error message must be a string from VexaUtilStringAlloc.",
         "The host frees the message, and crashes if the memory is not its own.",
         "Copy the text into a string from VexaUtilStringAlloc(), and store that string in errMsg."},
        {"errmsg-on-success",
         kStrings,
         Error,
         {RuleTrigger_e::AcceptedCommand, {}},
         "A command that succeeds must not set an error message.",
         "The host may ignore the message, so that nobody frees it. Or it may treat the command as failed.",
         "Set errMsg only if the command fails, and return 0 in that case."},
        {"missing-errmsg",
         kStrings,
         Warning,
         {RuleTrigger_e::FailedCommand, {}},
         "A command that fails must set an error message.",
         "Without a reason, the user cannot correct the command.",
         "Before you return 0, store a text in errMsg that says what is wrong."},
        {"missing-argument", kArguments, Error, callOf({F::VexaUtilStyleGetLowLevelX}),
         "A style query needs a path that starts at P1 and has no gaps, and one address for the value: DValue or "
         "IValue.",
         "The host finds no value, or has no address to store it at.",
         "Append P1, P2 and so on, and either DValue or IValue. Check that each append succeeded."},
        {"duplicate-argument", kArguments, Error,
         callOf({F::VexaUtilArgListAppendString, F::VexaUtilArgListAppendInt, F::VexaUtilArgListAppendDoublePtr,
                 F::VexaUtilArgListAppendArbParamPtr, F::VexaUtilStyleGetLowLevelX}),
         "An argument list must contain each name only once, and a style query only one of DValue and IValue.",
         "The host may use either of the two values.", "Call VexaUtilArgListClear() before you fill a list again."},
        {"wrong-argument-kind", kArguments, Error,
         callOf({F::VexaUtilArgListAppendString, F::VexaUtilArgListAppendInt, F::VexaUtilArgListAppendDoublePtr,
                 F::VexaUtilArgListAppendArbParamPtr}),
         "A known argument must have its type: \"P1\" to \"P6\" are strings, \"Offset1\" and \"Offset2\" are integers, "
         "\"DValue\" is the address of a double, \"IValue\" is the address of an arbitrary value.",
         "The host reads a value of the wrong type. It crashes or returns a wrong result.",
         "Append the argument with the function for its type."},
        {"wrong-thread",
         kEntries,
         Error,
         {RuleTrigger_e::SecondThread, {}},
         "An add-on must call the host on the thread on which the host called the add-on. Only the mutex functions may "
         "be called on any thread.",
         "The host's functions are not thread-safe. A wrong call crashes the host only rarely, so the crash is hard to "
         "reproduce.",
         "Let other threads only compute. After that, call the host on the thread on which it called the add-on."},
        {"escaped-exception",
         kEntries,
         Error,
         {RuleTrigger_e::Entry, {}},
         "No exception may leave an add-on.",
         "The host is written in C. The exception ends the host, and the user's work is lost.",
         "Let execute() call executeCommand() from vexautilutil/ExecuteCommand.h. It catches all exceptions, stores "
         "the message in errMsg and returns 0. Catch all exceptions in shutdown() yourself.",
         "The text of the exception is not known, and a jump or the end of the thread counts as an exception. The "
         "finding comes later: at the next entry into an add-on, when the add-on is unloaded, or when the program "
         "exits. If the exception ends the program, there is no finding: the runner names the signal and the command."},
        {"command-timeout",
         kEntries,
         Error,
         {RuleTrigger_e::TimeLimit, {}},
         "A command must return.",
         "The host hangs until the command returns.",
         "Look at the last host call and at the text of the command. Usual causes are a missing closing quote, a loop "
         "that waits for more text, and a lock that is taken twice.",
         "Reported only with --timeout. The last host call is not named."},
        {"recording-not-replayable",
         kEntries,
         Error,
         {RuleTrigger_e::Replay, {}},
         "A recorded or journaled command must fit on one line of a macro file. A recorded command that is run again "
         "must succeed and record the same text.",
         "The user's macro fails, or does something else, when it is played back.",
         "Record the text that MacroCommandAbstract::toString() returns, or write all options yourself, quoted as the "
         "command reads them.",
         "Recorded commands are not run again. Commands that do not fit on one line of a macro file are reported."},
    };
    return rows;
}

}  // namespace

const std::vector<Rule>& rules() {
    static const std::vector<Rule> all = [] {
        std::vector<Rule> made;
        for (const Row& row : catalogue()) {
            made.push_back({row.name, row.family, row.severity, row.summary, row.why, row.hint, row.unseen});
        }
        return made;
    }();
    return all;
}

const RuleTrigger* findTrigger(std::string_view rule) {
    const std::vector<Row>& rows = catalogue();
    const auto found = std::find_if(rows.begin(), rows.end(), [&](const Row& row) { return rule == row.name; });
    return found == rows.end() ? nullptr : &found->trigger;
}

const Rule* findRule(std::string_view name) {
    const std::vector<Rule>& all = rules();
    const auto found = std::find_if(all.begin(), all.end(), [&](const Rule& rule) { return name == rule.name; });
    return found == all.end() ? nullptr : &*found;
}

const std::vector<const char*>& uncheckedMistakes() {
    static const std::vector<const char*> mistakes = {
        "Errors in the add-on's own memory: use the address sanitizer.",
        "Writes before the start of a host string, or past the guard bytes after its end.",
        "The use of a freed handle whose address the host has given out again: it counts as a use of the new object.",
        "Reads of a text or a set from a style query after the setting was changed.",
        ("The address of a result that is neither null nor valid, or that becomes invalid before the argument list is "
         "freed."),
        "A mutex that a thread of the add-on leaves locked. The stand-in notices it only if the mutex is freed.",
        "Data that threads of the add-on share without a mutex: use the thread sanitizer.",
        "Errors that appear only in a host that answers differently from the stand-in.",
    };
    return mistakes;
}

const std::vector<const char*>& uncheckedInOtherHosts() {
    static const std::vector<const char*> mistakes = {
        "Calls of the host's own parts: only add-ons are checked, and the libraries that they bring along or load.",
        "Add-ons that are linked to the program, instead of loaded by dlopen().",
        ("What a constructor of an add-on leaves open: it runs before the host calls the entry, so it belongs to no "
         "command. Its calls are checked."),
        "Calls of a signal handler that interrupts a check.",
        ("Calls in a process that the program forks after it has loaded an add-on, unless that process executes a "
         "program."),
        "Reads and writes of the host's objects without a call of the host.",
    };
    return mistakes;
}

}  // namespace vexa::standin
