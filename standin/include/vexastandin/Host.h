#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "vexa/ExceptionBase.h"
#include "vexastandin/Call.h"
#include "vexastandin/Export.h"
#include "vexastandin/Finding.h"
#include "vexastandin/HostFacts.h"
#include "vexastandin/Recording.h"
#include "vexastandin/StatusLine.h"
#include "vexastandin/StyleValue.h"

struct AddOnList_s;
struct VexaAddOn_s;

namespace vexa::standin {

struct HostState;
class ObserverInterface;
struct CallProgress;

/// A loaded add-on.
struct AddOnInfo {
    std::string id;     ///< the name that macros use for the add-on
    std::string title;  ///< the title shown to users; may be empty
    std::string path;   ///< the file of the add-on; `(linked in)` if it is part of the program
};

/// The entry of an add-on: the function vexaAddOn() of `vexa/AddOn.h`, or one like it.
using AddOnEntry = const VexaAddOn_s* (*)(AddOnList_s* self);

/// The result of a command.
struct CommandResult {
    bool accepted = false;  ///< true if the add-on reported success
    std::string error;      ///< the add-on's message, or the text of its exception; empty on success
    Place place = {};       ///< of a failure: the call that made the message, or the end of the command; else empty
};

/// Reports an add-on that cannot be loaded. The message is one line: the file and the reason.
class VEXASTANDIN_API LoadError : public ExceptionBase {
public:
    /// Copies \p message.
    explicit LoadError(const std::string& message);
    LoadError(const LoadError&) = default;
    ~LoadError() override;
};

/// A stand-in for the host application. It implements the host's C functions for add-ons and for the library.
///
///     vexa::standin::Host host;               // the process's host from here on
///     host.setRecording(true);
///     host.loadAddOn("./libprobe-stats.so");
///     const CommandResult result = host.run("PROBESTATS", "LOAD FILE = 'wake.txt'");
///     host.recordedCommands();                // the commands that the add-on recorded
///
/// A new Host becomes the process's host. When it is destroyed, the previous one becomes the process's host again. If
/// no Host exists, the C functions do nothing and return 0, null or GetValueReturnCode_UnknownPath.
///
/// The C functions check each handle before they use it. They refuse or ignore a handle that is null, freed, or from
/// another host, even from the previous one. They ignore a second lock of a mutex by the same thread, and do not free a
/// locked mutex. The lock accepts any identity. Release it with the identity with which it was taken.
///
/// Ownership: the host owns its add-ons. When it is destroyed, it shuts them down and unloads them, the last loaded
///            first, and frees everything that they allocated from it. While another thread that has called the host
///            still runs, the code of an add-on stays loaded, because that thread may be running it.
/// Threads:   any thread may call the C functions, even while a host is being destroyed. Use a single thread to
///            construct and destroy hosts, and to load, run and unload add-ons. Do not do this inside a C function of
///            the same host.
class VEXASTANDIN_API Host {
public:
    /// Becomes the process's host. Recording, playback and batch mode are off.
    Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;
    /// Unloads the add-ons, makes the previous host the process's host, and waits until other threads have returned
    /// from their calls of this host. If a function passed to onDialog() or onStatus() does not return, the destructor
    /// waits forever. A thread that waits for the lock or for a mutex of this host returns without it.
    ~Host();

    /// Returns the process's host; null if no Host exists.
    static Host* current();
    /// Returns true if the calling thread runs code of an add-on that a host called on this thread. Returns false
    /// inside a C function of the host, inside an observer, and inside a function such as the one passed to onDialog().
    static bool isInAddOn() noexcept;

    /// Notes that the calling thread is about to throw \p exception, so that the host can tell where a command failed:
    /// CommandResult::place then has the calls that threw the exception, not those that made the message from it. A
    /// program may call this from a `__cxa_throw` of its own. The notes of a thread end with the command.
    static void noteThrow(const void* exception) noexcept;

    /// \name The host's answers
    /// @{
    void setBatchMode(bool active);          ///< true: the host runs a macro in batch mode
    void setRecording(bool active);          ///< true: the host records macro commands
    void setProcessingJournal(bool active);  ///< true: the host plays back a journal
    void setProcessingLayout(bool active);   ///< true: the host plays back a layout

    /// From now on the host answers like another host, which is described by \p facts:
    ///
    ///     host.answerLike({{"list.append.most", "64"}, {"state.batch", "true"}});
    ///
    /// A new call replaces the facts of an earlier one. Where \p facts has no answer, the host answers as usual. Facts
    /// about the four states above set these states; without such a fact a state stays as it is. The rules of the
    /// contract stay the same. Call this while the host is not in an add-on.
    /// \return the facts that the host cannot imitate, as from unlikeFacts(). For these, the host answers as usual.
    std::vector<UnlikeFact> answerLike(const HostFacts& facts);
    /// Returns true if the facts passed to answerLike() say that a macro continues after a failed command. Programs
    /// that run macros ask for this; run() does not use it.
    bool goesOnAfterFailure() const;

    /// Sets the value of a style setting, which VexaUtilStyleGetLowLevelX() returns for every pair of offsets. The host
    /// owns a text or set; add-ons may use it until the path gets another value.
    /// \param path 1 to 6 keywords, outermost first, none empty. ASCII letters match in any case.
    /// \throws vexa::InvalidArgumentException if \p path has no keyword, more than 6 keywords, or an empty keyword.
    void setStyle(const std::vector<std::string>& path, const StyleValue& value);
    /// Sets the value of a style setting for one pair of offsets. It takes precedence over the value for every pair.
    /// \param path as in the other overload.
    /// \throws vexa::InvalidArgumentException as the other overload does.
    void setStyle(const std::vector<std::string>& path, long offset1, long offset2, const StyleValue& value);

    /// Presses the stop button of the status line. From now on VexaUtilStatusCheckPercentDone() returns 0, even if the
    /// task shows no stop button. Any thread and any signal handler may call it.
    void pressStop() noexcept;
    /// Presses the stop button at a later call of VexaUtilStatusCheckPercentDone(). That call and all later ones return
    /// 0. A second call of this function replaces the first.
    /// \param nth which call from now on, counted from 1.
    /// \throws vexa::InvalidArgumentException if \p nth is 0.
    void pressStopAtCheck(std::size_t nth);
    /// Presses the stop button when an add-on calls VexaUtilStatusCheckPercentDone() with \p percent or more. A second
    /// call of this function replaces the first.
    void pressStopAtPercent(int percent) noexcept;
    /// Releases the stop button, and cancels pressStopAtCheck() and pressStopAtPercent(). Any thread and any signal
    /// handler may call it.
    void releaseStop() noexcept;
    /// Returns true if the stop button is pressed. Any thread and any signal handler may call it.
    bool isStopPressed() const noexcept;

    /// Makes a later call of \p function fail. The call does nothing and returns \p result, or null if the function
    /// returns a pointer.
    /// \param function the name of the C function.
    /// \param nth      which call from now on, counted from 1.
    /// \param result   the result; ignored if the function returns nothing or a pointer.
    /// \throws vexa::InvalidArgumentException if the host has no such function, or if \p nth is 0.
    void failCall(const std::string& function, std::size_t nth = 1, int result = 0);
    /// Makes a later call of \p function throw `std::runtime_error`. Parameters and errors are those of failCall().
    void throwFromCall(const std::string& function, std::size_t nth = 1);
    /// Cancels failCall() and throwFromCall() for all calls that have not happened yet.
    void forgetFaults();
    /// @}

    /// \name What the host recorded
    /// @{

    /// Returns a copy of all calls so far, in order. Other threads may go on calling.
    std::vector<Call> calls() const;
    /// Returns the names of the functions called so far, in order.
    std::vector<std::string> calledFunctions() const;
    /// Deletes the calls so far.
    void clearCalls();
    /// If \p keeps is false, the host stops keeping calls and the history of the status line. By default it keeps them.
    /// Turn it off in a long-running program to limit the memory used.
    void setKeepsCalls(bool keeps);
    /// Returns the commands that add-ons recorded so far, while recording was on. The host refuses a command that it
    /// could not read back from a macro file, and reports a finding: a command that is blank, starts with a blank or
    /// has a line break, and a command of an add-on whose id is empty, has white space or starts with `#`.
    std::vector<RecordedCommand> recordedCommands() const;
    /// Deletes the commands recorded so far.
    void clearRecordedCommands();
    /// Makes the host call \p keep with each command that an add-on records, on the thread of the add-on.
    void onRecorded(std::function<void(const RecordedCommand&)> keep);
    /// Returns the journal so far. The host refuses the same commands as when it records.
    std::vector<JournalEntry> journalEntries() const;
    /// Makes the host call \p keep with each entry that an add-on adds to the journal, on the thread of the add-on.
    void onJournaled(std::function<void(const JournalEntry&)> keep);
    /// Returns the texts of the error dialogs so far.
    std::vector<std::string> dialogs() const;
    /// Makes the host call \p show with the text of each error dialog, on the thread of the add-on.
    void onDialog(std::function<void(const std::string&)> show);
    /// Returns the current status line.
    StatusLine statusLine() const;
    /// Returns the status line after each change, in order. It has only the changes made while the host keeps calls;
    /// see setKeepsCalls().
    std::vector<StatusLine> statusHistory() const;
    /// Makes the host call \p show with the status line after each change, on the thread of the add-on. A call with the
    /// current percentage or text changes nothing. While the line is not shown, only a start changes it.
    void onStatus(std::function<void(const StatusLine&)> show);
    /// @}

    /// \name Add-ons
    /// @{

    /// Loads an add-on and calls its entry. If the entry returns without releasing the host's lock, the host releases
    /// it.
    /// \param path the shared object. A name without a slash is a file in the current folder.
    /// \return the add-on's description of itself.
    /// \throws LoadError "FILE: " and the reason. The host then unloads the file and does not call shutdown.
    AddOnInfo loadAddOn(const std::string& path);
    /// Calls the entry of an add-on that is part of the program, and then treats it like a loaded add-on. The host
    /// neither loads nor unloads a file.
    /// \return the add-on's description of itself.
    /// \throws LoadError "(linked in): " and the reason. The host then does not call shutdown.
    AddOnInfo linkAddOn(AddOnEntry entry);
    /// Returns the loaded add-ons, in the order in which they were loaded.
    std::vector<AddOnInfo> addOns() const;
    /// Shuts down and unloads all add-ons, the last loaded first. If an add-on holds the host's lock after its
    /// shutdown, the host releases it. If an exception leaves the shutdown, the host reports a finding.
    void unloadAddOns();
    /// Runs one command of a loaded add-on. If an exception leaves the add-on, the command fails. If the add-on returns
    /// without releasing the host's lock or finishing its status line, the host does so.
    /// \param macroLine `FILE:LINE` of the command if it comes from a macro file, for findings.
    /// \throws vexa::InvalidArgumentException if no add-on \p addOnId is loaded.
    CommandResult run(const std::string& addOnId, const std::string& command, const std::string& macroLine = {});
    /// @}

    /// \name The contract
    /// @{

    /// Turns the checks of all rules() on or off. By default they are on. Call it while no add-on is loaded, and before
    /// the first call of a C function.
    void setChecking(bool active);
    /// Returns a copy of the findings so far, in order. Other threads may go on calling. The host keeps the first ten
    /// findings per rule and add-on; the tenth counts the later ones.
    std::vector<Finding> violations() const;
    /// From now on the host makes no findings about \p rule.
    /// \throws vexa::InvalidArgumentException if there is no such rule.
    void suppress(const std::string& rule);
    /// Returns the suppressed rules that no add-on has broken so far, in the order of their suppression.
    std::vector<std::string> unusedSuppressions() const;
    /// Adds a finding that another part of the program made. It gets the severity of its rule.
    /// \throws vexa::InvalidArgumentException if there is no such rule.
    void report(Finding finding);
    /// Returns the last host call, and the running or last command. Any thread may call it, even while a command hangs.
    Place lastCall() const;
    /// From now on the host counts its calls in \p progress, starting from the current count. Null makes it count in
    /// its own object again. Call this while the host is not in an add-on. The object must live until it is replaced or
    /// the host is destroyed. This adds no cost per call.
    void setCallProgress(CallProgress* progress);
    /// From now on the host passes all events to \p observer; null for no observer. Call this while the host is not in
    /// an add-on. The observer must live until it is replaced or the host is destroyed.
    void setObserver(ObserverInterface* observer);
    /// From now on the host passes each finding to \p complete before it keeps or reports the finding, so that the
    /// function can add the lines of the source; null for no function. It is called while the code of the add-on is
    /// loaded or has just been unloaded, on the thread of the finding, on one thread at a time. It must not call the
    /// host.
    void onFinding(std::function<void(Finding&)> complete);
    /// @}

private:
    std::unique_ptr<HostState> m_state;
};

}  // namespace vexa::standin
