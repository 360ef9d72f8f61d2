#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <thread>

#include "vexastandin/Export.h"
#include "vexastandin/Finding.h"
#include "vexastandin/StatusLine.h"

namespace vexa::standin {

/// The start or the end of a host call.
struct CallEvent {
    std::size_t number = 0;                      ///< the number of the call, counted from 1 over all calls of the host
    const char* function = "";                   ///< for example "VexaUtilStringAlloc"
    std::string arguments;                       ///< as in Call: handles by number, no addresses
    std::string result;                          ///< as in Call; empty at the start of the call
    bool threw = false;                          ///< true if the call ended by an injected exception
    std::size_t threadNumber = 0;                ///< the calling thread, numbered as in Place
    std::thread::id thread;                      ///< the calling thread
    std::chrono::steady_clock::time_point time;  ///< the time of this event
};

/// Why the host calls an add-on.
enum class Entry_e {
    Loading,   ///< to load its shared object and call its entry
    Command,   ///< to run a command
    Unloading  ///< to call its shutdown and unload its shared object
};

/// The host calls an add-on, or the add-on returns to the host.
struct EntryEvent {
    Entry_e kind = Entry_e::Command;  ///< why the host calls the add-on
    std::string addOnId;              ///< the add-on's id, or its file while the host does not know the id yet
    std::string command;              ///< the command's text; empty if the host runs no command
    std::string macroLine;            ///< `FILE:LINE` of the command, if it came from a macro file
    bool succeeded = false;           ///< at the end: true if the add-on succeeded
    std::string error;                ///< at the end: the add-on's message, or that of the exception that left it
    std::size_t threadNumber = 0;     ///< the thread, numbered as in Place
    std::thread::id thread;           ///< the thread
    std::chrono::steady_clock::time_point time;  ///< the time of this event
    /// At the end of a command that failed, in a host that is not the stand-in: as CommandResult::place.
    Place failure = {};
    const void* function = nullptr;  ///< the add-on's function that runs the command; null for other entries, and in a
                                     ///< host that is not the stand-in
};

/// Receives the events between a host and its add-ons as they happen. Install an observer with Host::setObserver().
///
/// A call starts and ends on the same thread. The events on that thread between its start and its end belong to the
/// call. Different threads may send events at the same time, and not in the order of the call numbers.
///
/// Errors:  the host ignores an exception that an operation throws.
/// Threads: the host calls an observer on the thread of the event, and holds no lock of its own.
class VEXASTANDIN_API ObserverInterface {
public:
    ObserverInterface() = default;
    ObserverInterface(const ObserverInterface&) = delete;
    ObserverInterface& operator=(const ObserverInterface&) = delete;
    virtual ~ObserverInterface();

    /// The host calls an add-on.
    virtual void entryBegan(const EntryEvent& entry) = 0;
    /// The add-on returned to the host. The host reports the findings of this return first, by findingMade().
    virtual void entryEnded(const EntryEvent& entry) = 0;
    /// An add-on calls the host.
    virtual void callBegan(const CallEvent& call) = 0;
    /// The call returned or threw. The host reports the findings about it first, by findingMade().
    virtual void callEnded(const CallEvent& call) = 0;
    /// An add-on broke a rule. The host reports every violation, including those that Host::violations() only counts.
    virtual void findingMade(const Finding& finding) = 0;
    /// The status line changed.
    virtual void statusChanged(const StatusLine& line) = 0;
};

}  // namespace vexa::standin
