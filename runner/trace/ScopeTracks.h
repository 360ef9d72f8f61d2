#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "vexastandin/HostFunctions.h"
#include "vexastandin/Observer.h"

namespace vexa::runner {

/// The start or the end of a scope of the host: its lock, its status line, a mutex, and so on.
struct ScopeEdge {
    bool begins = false;
    std::size_t track = 0;  ///< scopes of one track nest; tracks are numbered from 1
    std::string trackName;  ///< the kind of scope; several mutexes locked at once have tracks "mutex 1", "mutex 2" ...
    std::string name;       ///< the kind of scope, or the mutex
    std::string arguments;  ///< of the call that started it; empty at the end
    std::chrono::steady_clock::time_point time;  ///< not before the previous one of its track
};

/// Finds the starts and ends of the scopes of the host in its calls.
///
/// A scope lasts from the end of the call that starts it to the start of the call that ends it, so that scopes of two
/// threads do not overlap. An end without a start is ignored. A scope that an add-on leaves open ends when the add-on
/// returns to the host, which corrects it; a mutex stays locked.
/// Threads: one at a time.
class ScopeTracks {
public:
    ScopeTracks();

    void entryBegan() { ++m_depth; }
    /// Ends the scopes that the entry left open, the last one first.
    std::vector<ScopeEdge> entryEnded(std::chrono::steady_clock::time_point time);
    /// Returns at most one edge.
    std::vector<ScopeEdge> callBegan(const standin::CallEvent& call);
    std::vector<ScopeEdge> callEnded(const standin::CallEvent& call);
    /// Ends all open scopes.
    std::vector<ScopeEdge> endAll(std::chrono::steady_clock::time_point time);

private:
    struct Scope {
        std::size_t depth = 0;  // the number of entries around its start
        std::string name;
    };
    struct Track {
        std::size_t number = 0;
        std::string name;
        const char* kind = "";
        std::vector<Scope> open;
        std::chrono::steady_clock::time_point last;
    };

    const standin::HostFunctionInfo* scopeFunction(const standin::CallEvent& call) const;
    Track* trackToBeginOn(const standin::HostFunctionInfo& function, const std::string& name);
    Track* trackToEndOn(const standin::HostFunctionInfo& function, const std::string& name);
    template <class Predicate>
    std::vector<ScopeEdge> endWhile(const Predicate& isOver, std::chrono::steady_clock::time_point time);
    static ScopeEdge end(Track& track, std::chrono::steady_clock::time_point time);

    std::unordered_map<std::string_view, const standin::HostFunctionInfo*>
        m_functions;  // the functions that start or end scopes
    std::vector<Track> m_tracks;
    std::size_t m_depth = 0;  // of entries
};

}  // namespace vexa::runner
