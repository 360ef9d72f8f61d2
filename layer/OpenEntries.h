#pragma once

#include <cstddef>
#include <map>
#include <mutex>
#include <optional>
#include <vector>

#include "vexastandin/Observer.h"

namespace vexa::layer {

/// An entry that has not returned.
struct LeftEntry {
    long thread;  ///< the kernel's id of the thread
    standin::EntryEvent event;
};

/// The entries into add-ons that have not ended.
///
/// An entry may end by an exception or a jump, or with its thread, which nobody tells the layer.
/// Threads: safe from any.
class OpenEntries {
public:
    /// Adds an entry of the calling thread.
    /// \param frame the address of the frame that calls the add-on.
    /// \return its number, counted from 1.
    std::size_t add(const void* frame, long thread, const standin::EntryEvent& entry);
    /// Removes an entry.
    /// \return nothing if it was removed before.
    std::optional<standin::EntryEvent> take(std::size_t number);
    /// Removes an entry that has ended, and the thread's entries within it, the innermost first.
    std::vector<LeftEntry> takeEnded();

private:
    struct Open : LeftEntry {
        const void* frame;
        const void* returnAddress;  // of the frame
    };

    static bool hasEnded(const Open& entry);

    std::mutex m_guard;
    std::size_t m_last = 0;
    std::map<std::size_t, Open> m_entries;  // by number
};

}  // namespace vexa::layer
