#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "trace/TracedRun.h"

namespace vexa::runner {

/// Sums the time of a run by commands, the scopes that they hold, and the calls in them.
///
/// Pass the events in their order. The threads' time between two events belongs to what is open between them, so the
/// sums add up to the time of all threads. Calls of a thread without a command are below the name of the thread. A call
/// that starts or ends a scope is outside it.
class FlameTree {
public:
    /// Spans of the same name at the same place.
    struct Node {
        std::size_t parent = 0;  ///< the index of its parent, which is lower; that of the root is 0
        std::size_t name = 0;    ///< its number in names()
        std::size_t count = 0;
        std::int64_t self = 0;  ///< nanoseconds without its children
        std::int64_t longest = 0;
    };

    FlameTree();
    void began(std::size_t index, const TracedSpan& span, const std::string& trackName);
    /// \param time the end of the span, or of the trace
    void ended(std::size_t index, const TracedSpan& span, std::int64_t time);

    const std::vector<Node>& nodes() const { return m_nodes; }
    const std::vector<std::string>& names() const { return m_names; }

private:
    struct Open {
        std::size_t index = 0;
        TracedSpan::Kind_e kind = TracedSpan::Kind_e::Call;
        std::size_t name = 0;
        std::size_t node = 0;
        std::int64_t start = 0;
    };
    struct Thread {
        std::size_t name = 0;
        std::vector<Open> open;  // entries, scopes and calls, the outermost first
        std::int64_t last = 0;   // the time up to which the sums are complete
    };

    void elapse(Thread& thread, std::int64_t time);
    void close(Thread& thread, std::size_t index, std::int64_t time);
    void place(Thread& thread);
    std::size_t nameOf(const std::string& text, std::size_t mostNames);
    std::size_t child(std::size_t parent, std::size_t name);

    std::vector<Node> m_nodes;
    std::vector<std::string> m_names;
    std::unordered_map<std::string, std::size_t> m_nameNumbers;
    std::map<std::pair<std::size_t, std::size_t>, std::size_t> m_children;  // by parent and name
    std::map<std::size_t, Thread> m_threads;                                // by track
    std::vector<Open> m_newScopes;  // the thread of a scope is known at the end of the call that started it
};

}  // namespace vexa::runner
