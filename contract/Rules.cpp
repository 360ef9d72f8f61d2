// The catalogue: whoever checks, explains, lists or reports a rule has it from here.

#include <algorithm>

#include "vexastandin/Finding.h"

namespace vexa::standin {
namespace {

constexpr const char* kScopes = "Beginnings and ends";
constexpr const char* kStatus = "The status line";
constexpr const char* kHandles = "Handles and addresses";
constexpr const char* kMutexes = "Mutexes";
constexpr const char* kStrings = "Strings";
constexpr const char* kArguments = "Argument lists";
constexpr const char* kEntries = "Threads and commands";

}  // namespace

const std::vector<Rule>& rules() {
    constexpr Severity_e Error = Severity_e::Error;
    constexpr Severity_e Warning = Severity_e::Warning;
    static const std::vector<Rule> catalogue = {
        {"unbalanced-lock", kScopes, Error,
         "VexaUtilLockStart and VexaUtilLockFinish come in pairs within one command.",
         "A lock that stays taken keeps every other add-on, and the host, waiting for ever; one given back that was "
         "not taken is another's.",
         "Hold the lock by an AddOnIdLock, which gives it back on every way out, also when an exception passes."},
        {"lock-identity", kScopes, Error, "VexaUtilLockFinish is given the identity that VexaUtilLockStart was given.",
         "The host counts the lock by identity, so this one stays taken, and another's may be given back.",
         "Keep the identity that vexaAddOn() was given in one place, and hand the same to both calls."},
        {"unbalanced-auxdata", kScopes, Error,
         "VexaUtilAuxDataBeginAssign and VexaUtilAuxDataEndAssign come in pairs within one command.",
         "Until the end the host holds back its broadcasts, so dialogs and other add-ons go on showing old auxiliary "
         "data.",
         "Hold an AuxDataSuspendBroadcast while you assign; it ends on every way out."},
        {"unbalanced-marking", kScopes, Error,
         "The marking of data sets is resumed as often as it was suspended, within one command.",
         "While it is suspended the user's changes are not marked, and are lost when the data set is closed; resumed "
         "too often, it ends the suspension of somebody else.",
         "Hold a DataSetSuspendMarking; it resumes once, on every way out."},
        {"unbalanced-solution-time", kScopes, Error,
         "VexaUtilZoneSolutionTimeModificationBegin and VexaUtilZoneSolutionTimeModificationEnd come in pairs within "
         "one command.",
         "Until the end the host holds back its notifications, so animations go on using old solution times.",
         "Hold a SolutionTimeNotificationDeferrer while you change solution times; it ends on every way out."},
        {"unbalanced-status", kScopes, Error,
         "VexaUtilStatusStartPercentDone and VexaUtilStatusFinishPercentDone come in pairs within one command.",
         "A status line left up shows a task that is over, and its stop button stops whatever comes next.",
         "Let a task progress from createTaskProgressBar() start and finish the line; its destructor finishes it."},
        {"status-started-twice", kStatus, Error,
         "VexaUtilStatusStartPercentDone is not called while the status line is up.",
         "The host has one status line: the second task wipes out the first, and its finish takes both down.",
         "Finish the line before the next task starts it, or give the parts of a task one progress in common."},
        {"status-not-started", kStatus, Error,
         "Percentages and texts are shown between the start and the finish of the status line.",
         "There is no line to show them on; the host may draw them over something else.",
         "Start the line first, and do not advance a progress that was finished."},
        {"percent-out-of-range", kStatus, Warning, "A percentage is from 0 to 100.",
         "The bar is drawn wrongly, and the user cannot tell how much is left.",
         "Count the steps of the whole task first, and give the share that is done; a TaskProgress does so."},
        {"percent-backwards", kStatus, Warning, "The percentage of one task never runs backwards.",
         "The user takes it for a task that started again.",
         "Give the parts of a task their shares of one range, rather than a range of their own each."},
        {"use-after-free", kHandles, Error, "A handle is not used once it was freed.",
         "Its memory may belong to something else by then: the host crashes, or changes what is not meant.",
         "Free a handle where its last user is, and let one object own it."},
        {"double-free", kHandles, Error, "A handle is freed once.",
         "The second time frees memory that may be somebody else's; the host crashes later, elsewhere.",
         "Keep a handle in one variable only: the host clears that one. Or let one object own it."},
        {"foreign-handle", kHandles, Error,
         "A handle is one that the host gave out for this purpose, and that is the add-on's to use so.",
         "The host takes what is at that address for its own, and crashes over it.",
         "Hand over what the ...Alloc function returned. What a style query stored belongs to the host: copy it."},
        {"null-handle", kHandles, Error, "No function is given a null handle.",
         "The host does not expect one. It often stands for a handle freed before, or an allocation that failed.",
         "Check what an ...Alloc function returned, and free a handle once: the host clears it then."},
        {"null-address", kHandles, Error,
         "No function is given a null address for a text or a result, but where its description allows one.",
         "The host reads or writes there, and crashes.",
         "Hand over an empty text for no text, and the address of a variable for a result."},
        {"leaked-arglist", kHandles, Error, "An argument list is freed before the command ends.",
         "Every command takes more of the host's memory, until the session ends.",
         "Free it by VexaUtilArgListDealloc() on every way out, also when an exception passes."},
        {"leaked-string", kHandles, Error,
         "A host string is handed over as the error message, or freed, before the command ends.",
         "Every command takes more of the host's memory, until the session ends.",
         "Allocate the string last, when the command has failed, and store it in the errMsg of the command."},
        {"leaked-mutex", kHandles, Error, "A mutex is freed before the add-on is unloaded.",
         "The host's mutexes are few, and outlive the add-on.",
         "Own it by a Mutex, or free it in the add-on's shutdown."},
        {"leaked-set", kHandles, Error, "A set is freed before the add-on is unloaded.",
         "It takes the host's memory until the session ends.",
         "Free it by VexaUtilSetDealloc() when you have copied it, or in the add-on's shutdown."},
        {"mutex-not-held", kMutexes, Error, "A mutex is unlocked by the thread that locked it, and once.",
         "Another thread that relies on the mutex is no longer alone.",
         "Lock and unlock by a std::lock_guard<Mutex> in one function."},
        {"mutex-locked-twice", kMutexes, Error, "A thread does not lock a mutex that it has locked.",
         "The mutex does not count: the thread waits for itself, for ever.",
         "Lock it in the outermost function only, and call what expects it locked."},
        {"mutex-freed-locked", kMutexes, Error, "A mutex is not freed while it is locked.",
         "Whoever waits for it is never woken, and who holds it unlocks freed memory.",
         "Unlock it, and end the threads that use it, before you free it."},
        {"mutex-left-locked", kMutexes, Error, "A thread that the host entered unlocks its mutexes before it returns.",
         "Whoever locks the mutex next waits for ever.",
         "Lock by a std::lock_guard<Mutex>, which unlocks on every way out."},
        {"string-overrun", kStrings, Error, "No more bytes are written to a host string than were asked for.",
         "What lies behind it is overwritten, and the host crashes later, elsewhere.",
         "The size counts the terminating zero: ask for one byte more than the text has."},
        {"string-unterminated", kStrings, Error, "A string that is handed over to the host ends in a zero.",
         "The host reads on behind it.", "Copy the zero, too: std::memcpy(string, text, std::strlen(text) + 1)."},
        {"foreign-errmsg", kStrings, Error, "An error message is a string from VexaUtilStringAlloc.",
         "The host frees it, and crashes over memory that is not its own.",
         "Copy the text into a string from VexaUtilStringAlloc(), and store that in errMsg."},
        {"errmsg-on-success", kStrings, Error, "A command that succeeded leaves no error message.",
         "The host does not look at it, so that nobody frees it; or it takes the command for failed.",
         "Return 0 when the command failed, and set errMsg only then."},
        {"missing-errmsg", kStrings, Warning, "A command that failed leaves an error message.",
         "The user sees no reason, and cannot mend what was wrong.",
         "Store a text that names what was wrong in errMsg before you return 0."},
        {"missing-argument", kArguments, Error,
         "A style query names its path from P1 on without a gap, and one place for the value: DValue or IValue.",
         "The host finds no value, or stores it nowhere.",
         "Append P1, P2 and so on, and one of DValue and IValue; check that appending succeeded."},
        {"duplicate-argument", kArguments, Error,
         "An argument list has each name once, and a style query one place for the value.",
         "Which of the two the host takes is not settled.",
         "Clear a list by VexaUtilArgListClear() before you fill it again."},
        {"wrong-argument-kind", kArguments, Error,
         "A known argument has its kind: \"P1\" to \"P6\" are strings, \"Offset1\" and \"Offset2\" integers, "
         "\"DValue\" "
         "the address of a double, \"IValue\" the address of an arbitrary value.",
         "The host reads it as what it is not, and crashes or answers nonsense.",
         "Append it by the function of its kind."},
        {"wrong-thread", kEntries, Error,
         "The host is called from the thread on which it entered the add-on; mutexes from any.",
         "The host's functions are not made for several threads: it crashes now and then, never when you look.",
         "Let the other threads compute, and call the host when they are done, on the thread that it entered."},
        {"escaped-exception", kEntries, Error, "No exception leaves an add-on.",
         "The host is written in C: the exception ends it, and the user's work is lost.",
         "Catch everything in execute() and shutdown(), tell it in errMsg and return 0; a command processor does so."},
        {"command-timeout", kEntries, Error, "A command returns.", "The host hangs with it.",
         "Look at the last host call and at the command's text: a quote that is never closed, a loop that waits for "
         "more text, and a lock taken twice are the usual causes."},
        {"recording-not-replayable", kEntries, Error,
         "A command that is recorded or journaled fits one line of a macro file; a recorded one is accepted when it is "
         "run, and records the same text again.",
         "The user's macro fails, or does something else, when it is played back.",
         "Record what the command model writes of itself, all options with their values quoted as they are read."},
    };
    return catalogue;
}

const Rule* findRule(std::string_view name) {
    const std::vector<Rule>& all = rules();
    const auto found = std::find_if(all.begin(), all.end(), [&](const Rule& rule) { return name == rule.name; });
    return found == all.end() ? nullptr : &*found;
}

const std::vector<const char*>& uncheckedMistakes() {
    static const std::vector<const char*> mistakes = {
        "What an add-on does with its own memory: use the address sanitizer for that.",
        "Writing to a host string before its begin, or further behind its end than the guard bytes reach.",
        "Using a freed handle whose address the host has given out again: it is taken for the new one.",
        "Reading a host's text or set from a style query after its setting was changed.",
        "A result's address that is neither null nor valid, or that dies before the argument list.",
        "A mutex that a thread of the add-on's own leaves locked, until somebody frees it.",
        "Data that threads of the add-on share without a mutex: use the thread sanitizer for that.",
        "What an add-on does in a host that answers otherwise than it was told to here.",
    };
    return mistakes;
}

}  // namespace vexa::standin
