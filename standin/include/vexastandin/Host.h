#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "vexa/ExceptionBase.h"
#include "vexastandin/Export.h"
#include "vexastandin/Finding.h"
#include "vexastandin/StyleValue.h"

struct AddOnList_s;
struct VexaAddOn_s;

namespace vexa::standin {

struct HostState;
class ObserverInterface;
struct CallProgress;

/// One call of a function of the host's C API.
struct Call {
    std::string function;  ///< for example "VexaUtilStringAlloc"
    /// As in C, handles by number: `14, "error string"`, `mutex#1`, `null`. An add-on's identity is its id; a handle or
    /// an identity that is none of the host's is `unknown`; where a number is to be stored is `address`.
    std::string arguments;
    std::string result;      ///< as in C; empty when the function returns nothing, threw, or has not returned yet
    std::thread::id thread;  ///< who called
    std::size_t number = 0;  ///< counted from 1 over all calls of the host, also those that are not kept
};

/// A command that an add-on had the host record.
struct RecordedCommand {
    std::string addOnId;  ///< the add-on
    std::string command;  ///< the command's text, without the add-on
    Place recordedAt;     ///< the call that recorded it
};

/// A command that an add-on added to the data-set journal.
struct JournalEntry {
    std::string addOnId;                     ///< the add-on
    std::string command;                     ///< the command's text, without the add-on
    std::optional<std::string> journalData;  ///< the add-on's own data, if it gave any
};

/// The host's status line, on which an add-on shows the progress of a task.
struct StatusLine {
    std::string text;             ///< what the task is doing; empty when the add-on gave none
    int percent = 0;              ///< how much of it is done, 0 to 100; what is given beyond that counts as the limit
    bool showStopButton = false;  ///< whether the user is offered to stop it
    bool showBar = false;         ///< whether a progress bar is asked for
    bool active = false;          ///< whether the line is up; when it is taken down the rest stays as it was
};

/// Whether two status lines show the same.
VEXASTANDIN_API bool operator==(const StatusLine& left, const StatusLine& right);
/// Whether two status lines show different things.
VEXASTANDIN_API bool operator!=(const StatusLine& left, const StatusLine& right);

/// A loaded add-on.
struct AddOnInfo {
    std::string id;     ///< the name by which macros address it
    std::string title;  ///< its title for people, may be empty
    std::string path;   ///< the file it was loaded from; `(linked in)` when it is part of the program
};

/// The entry of an add-on: the function vexaAddOn() of `vexa/AddOn.h`, or one like it.
using AddOnEntry = const VexaAddOn_s* (*)(AddOnList_s* self);

/// What came of one command.
struct CommandResult {
    bool accepted = false;  ///< whether the add-on reported success
    std::string error;      ///< the add-on's message, or what escaped from it; empty on success
};

/// An add-on that cannot be loaded. The message is one line: the file, and why.
class VEXASTANDIN_API LoadError : public ExceptionBase {
public:
    /// Keeps \p message.
    explicit LoadError(const std::string& message);
    LoadError(const LoadError&) = default;
    ~LoadError() override;
};

/// A stand-in for the host application: it supplies the host's C functions to add-ons, and to the library.
///
///     vexa::standin::Host host;               // now the process's host
///     host.setRecording(true);
///     host.loadAddOn("./libprobe-stats.so");
///     const CommandResult result = host.run("PROBESTATS", "LOAD FILE = 'wake.txt'");
///     host.recordedCommands();                // what the add-on had recorded
///
/// Constructing a Host makes it the process's host; destroying it brings back the one before. With none alive the
/// C functions do nothing, answer false and allocate nothing.
///
/// The C functions compare handles before they use them: a handle that is null, freed or of another host, also of
/// the one before, is refused or ignored. So are a mutex locked twice, and one freed while it is locked. The lock
/// goes by its identity alone, which may be any: it is given back under an identity it was taken under.
///
/// Ownership: the host owns its add-ons; it shuts them down and unloads them when it is destroyed, the last loaded
///            first. What they allocated from it and did not release is released then. The code of an add-on stays
///            loaded while another thread that has called the host runs: it may be the add-on's.
/// Threads:   the C functions may be called from any thread, also while a host ends. Hosts are constructed, destroyed
///            and told to load, run and unload from one thread, and not from within a C function of the same host.
class VEXASTANDIN_API Host {
public:
    /// Becomes the process's host. Nothing is active: no recording, no playback, no batch mode.
    Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;
    /// Unloads the add-ons, brings back the host before, and waits for the calls that other threads still make of this
    /// one: what shows a dialog or the status line must return. A thread that waits for the lock or for a mutex of the
    /// host goes on without it.
    ~Host();

    /// The process's host; null when none is alive.
    static Host* current();
    /// Whether the calling thread runs code of an add-on: a host entered the add-on on it, and it is not inside of one
    /// of the host's C functions, nor in what these call to show or to observe something.
    static bool isInAddOn() noexcept;

    /// \name What the host answers
    /// @{
    void setBatchMode(bool active);          ///< whether a macro runs in batch mode
    void setRecording(bool active);          ///< whether macro commands are recorded
    void setProcessingJournal(bool active);  ///< whether a journal is played back
    void setProcessingLayout(bool active);   ///< whether a layout is played back

    /// Gives a style setting a value: what VexaUtilStyleGetLowLevelX() answers for every pair of offsets. A text or a
    /// set belongs to the host, and add-ons may use it until its path is given another value.
    /// \param path 1 to 6 keywords, outermost first, none empty; the case of ASCII letters does not matter.
    /// \throws vexa::InvalidArgumentException when \p path is none.
    void setStyle(const std::vector<std::string>& path, const StyleValue& value);
    /// Gives a style setting the value that it has for one pair of offsets, whatever it is for every pair.
    /// Parameters and errors as above.
    void setStyle(const std::vector<std::string>& path, long offset1, long offset2, const StyleValue& value);

    /// Presses the stop button of the status line: VexaUtilStatusCheckPercentDone() answers 0 from now on, whether or
    /// not the task offers the button. May be called from any thread, and from a signal handler.
    void pressStop() noexcept;
    /// Presses the stop button when VexaUtilStatusCheckPercentDone() is called for the \p nth time from now on, counted
    /// from 1: that call answers 0, and so do those after it. The last one asked for holds.
    /// \throws vexa::InvalidArgumentException for a \p nth of 0.
    void pressStopAtCheck(std::size_t nth);
    /// Presses the stop button when VexaUtilStatusCheckPercentDone() is told \p percent or more. The last one asked for
    /// holds.
    void pressStopAtPercent(int percent) noexcept;
    /// Lets go of the stop button, and forgets when it was to be pressed. May be called from where pressStop() may.
    void releaseStop() noexcept;
    /// Whether the stop button is pressed. May be called from where pressStop() may.
    bool isStopPressed() const noexcept;

    /// Lets a coming call of \p function fail: it does nothing and returns \p result (null for pointers).
    /// \param function the C function's name.
    /// \param nth      which call from now on, counted from 1.
    /// \param result   what it returns; ignored where it returns nothing or a pointer.
    /// \throws vexa::InvalidArgumentException when the host has no such function, or for a \p nth of 0.
    void failCall(const std::string& function, std::size_t nth = 1, int result = 0);
    /// Lets a coming call of \p function throw `std::runtime_error`. Parameters and errors as in failCall().
    void throwFromCall(const std::string& function, std::size_t nth = 1);
    /// Forgets the calls that were to fail or to throw and have not come.
    void forgetFaults();
    /// @}

    /// \name What the host saw
    /// @{

    /// Every call so far, in order. A copy, so that it can be read while others call.
    std::vector<Call> calls() const;
    /// The names of the functions called so far, in order.
    std::vector<std::string> calledFunctions() const;
    /// Forgets the calls so far.
    void clearCalls();
    /// Whether calls, and the history of the status line, are kept; they are, unless told otherwise. A program that
    /// runs for long keeps none.
    void setKeepsCalls(bool keeps);
    /// The commands recorded so far, while recording was on. What a macro file would not give back as the same command
    /// is refused, and a finding: a command that is blank, begins with a blank or has a line break in it; an add-on id
    /// that is empty, has white space in it or begins with `#`.
    std::vector<RecordedCommand> recordedCommands() const;
    /// Forgets the commands recorded so far.
    void clearRecordedCommands();
    /// Has \p keep called with each command as it is recorded, on the calling thread.
    void onRecorded(std::function<void(const RecordedCommand&)> keep);
    /// The journal so far. It refuses the commands that a recording refuses.
    std::vector<JournalEntry> journalEntries() const;
    /// Has \p keep called with each journal entry as it is added, on the calling thread.
    void onJournaled(std::function<void(const JournalEntry&)> keep);
    /// The texts of the error dialogs so far.
    std::vector<std::string> dialogs() const;
    /// Has \p show called with the text of each dialog as it comes up, on the calling thread.
    void onDialog(std::function<void(const std::string&)> show);
    /// The status line as it is now.
    StatusLine statusLine() const;
    /// The status line after each of its changes, in order, while calls are kept; setKeepsCalls() says whether.
    std::vector<StatusLine> statusHistory() const;
    /// Has \p show called with the status line after each of its changes, on the calling thread. A call that changes
    /// nothing is none: a percentage or a text shown already, and anything but a start while the line is down.
    void onStatus(std::function<void(const StatusLine&)> show);
    /// @}

    /// \name Add-ons
    /// @{

    /// Loads an add-on and calls its entry. The host's lock is taken from it when its entry leaves it open.
    /// \param path the shared object; a name without a slash is looked for in the current folder.
    /// \return what the add-on says of itself.
    /// \throws LoadError, "FILE: " and the reason; nothing stays loaded then, and shutdown is not called.
    AddOnInfo loadAddOn(const std::string& path);
    /// Takes an add-on that is part of the program, so that nothing is loaded and nothing will be unloaded: calls its
    /// entry, and from then on treats it like any other.
    /// \return what the add-on says of itself.
    /// \throws LoadError, "(linked in): " and the reason; shutdown is not called then.
    AddOnInfo linkAddOn(AddOnEntry entry);
    /// The loaded add-ons, in the order of their loading.
    std::vector<AddOnInfo> addOns() const;
    /// Shuts the add-ons down and unloads them, the last loaded first. The host's lock is taken from each that leaves
    /// it open, and an exception that escapes from its shutdown is a finding.
    void unloadAddOns();
    /// Runs one command of a loaded add-on. An exception that escapes from the add-on is its failure; the host's lock,
    /// when the add-on left it open, is taken from it, and a status line that it left up is taken down.
    /// \param macroLine `FILE:LINE` of the command when it comes from a macro file; findings name it.
    /// \throws vexa::InvalidArgumentException when no add-on \p addOnId is loaded.
    CommandResult run(const std::string& addOnId, const std::string& command, const std::string& macroLine = {});
    /// @}

    /// \name The contract
    /// @{

    /// Whether the rules of rules() are checked; they are, unless told otherwise. To be switched while no add-on is
    /// loaded, and before the C functions are called.
    void setChecking(bool active);
    /// The breaches of rules so far, in order. Of each rule and add-on the first ten are kept; the last of them counts
    /// the others. A copy, so that it can be read while others call.
    std::vector<Finding> violations() const;
    /// Lets breaches of a rule pass without a finding from now on.
    /// \throws vexa::InvalidArgumentException when there is no such rule.
    void suppress(const std::string& rule);
    /// The rules suppressed of which there was no breach so far, in the order of their suppression.
    std::vector<std::string> unusedSuppressions() const;
    /// Adds a finding that was made outside of the host. It gets the severity of its rule.
    /// \throws vexa::InvalidArgumentException when there is no such rule.
    void report(Finding finding);
    /// The host call made last, and the command that runs, or ran last. May be called from any thread, also while a
    /// command hangs.
    Place lastCall() const;
    /// Counts the calls in \p progress from now on, which takes over the count; null for the host's own place. To be
    /// set while no add-on is entered. It must live until it is replaced, or longer than the host. Costs nothing per
    /// call.
    void setCallProgress(CallProgress* progress);
    /// Has \p observer told of all that happens from now on; null for nobody. To be set while no add-on is entered. It
    /// must live until it is replaced, or longer than the host.
    void setObserver(ObserverInterface* observer);
    /// @}

private:
    std::unique_ptr<HostState> m_state;
};

}  // namespace vexa::standin
