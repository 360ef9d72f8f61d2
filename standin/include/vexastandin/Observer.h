#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <thread>

#include "vexastandin/Export.h"
#include "vexastandin/Finding.h"

namespace vexa::standin {

struct StatusLine;

/// A host call, as an observer sees it.
struct CallEvent {
    std::size_t number = 0;                      ///< counted from 1 over all calls of the host
    const char* function = "";                   ///< for example "VexaUtilStringAlloc"
    std::string arguments;                       ///< as in Call: handles by number, no addresses
    std::string result;                          ///< as in Call; empty while the call has not returned
    bool threw = false;                          ///< whether it ended by an exception, which the host was told to throw
    std::size_t threadNumber = 0;                ///< numbered from 1 in the order in which the host met them
    std::thread::id thread;                      ///< who called
    std::chrono::steady_clock::time_point time;  ///< when this was
};

/// What the host has an add-on do.
enum class Entry_e {
    Loading,   ///< load its shared object and call its entry
    Command,   ///< run a command
    Unloading  ///< call its shutdown, and unload its shared object
};

/// The beginning or the end of the time that the host spends in an add-on.
struct EntryEvent {
    Entry_e kind = Entry_e::Command;  ///< what the add-on has to do
    std::string addOnId;              ///< the add-on; its file when its loading begins, for the id is not known yet
    std::string command;              ///< the command's text; empty when it is none
    std::string macroLine;            ///< `FILE:LINE` of the command, when it came from a macro file
    bool succeeded = false;           ///< at the end: whether the add-on did what it was to do
    std::string error;                ///< at the end: what it reported, or what escaped from it
    std::size_t threadNumber = 0;     ///< numbered from 1 in the order in which the host met them
    std::thread::id thread;           ///< which thread does it
    std::chrono::steady_clock::time_point time;  ///< when this was
};

/// Sees what happens between a host and its add-ons while it happens; Host::setObserver() tells it to.
///
/// A call begins and ends on one thread, and what happens in between on that thread lies within it. Calls of several
/// threads arrive by several threads at once, not necessarily in the order of their numbers.
///
/// Errors:  what an operation throws is ignored.
/// Threads: called on the thread it tells of, with nothing of the host locked.
class VEXASTANDIN_API ObserverInterface {
public:
    ObserverInterface() = default;
    ObserverInterface(const ObserverInterface&) = delete;
    ObserverInterface& operator=(const ObserverInterface&) = delete;
    virtual ~ObserverInterface();

    /// The host enters an add-on.
    virtual void entryBegan(const EntryEvent& entry) = 0;
    /// The host is back. Findings that come to light at the end were told before.
    virtual void entryEnded(const EntryEvent& entry) = 0;
    /// An add-on calls the host.
    virtual void callBegan(const CallEvent& call) = 0;
    /// The call ends. Findings about it were told before.
    virtual void callEnded(const CallEvent& call) = 0;
    /// A rule was broken. Every breach is told, also those that Host::violations() only counts.
    virtual void findingMade(const Finding& finding) = 0;
    /// The status line has changed.
    virtual void statusChanged(const StatusLine& line) = 0;
};

}  // namespace vexa::standin
