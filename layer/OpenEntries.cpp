#include "layer/OpenEntries.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iterator>

#include "layer/ForeignMemory.h"

namespace vexa::layer {
namespace {

// On x86-64 the frame starts with the caller's frame address, and the return address follows.
const void* const* returnAddressOf(const void* frame) { return static_cast<const void* const*>(frame) + 1; }

bool isThreadGone(long thread) { return syscall(SYS_tgkill, getpid(), thread, 0) != 0 && errno == ESRCH; }

}  // namespace

std::size_t OpenEntries::add(const void* frame, long thread, const standin::EntryEvent& entry) {
    const std::lock_guard<std::mutex> lock(m_guard);
    m_entries.insert({++m_last, Open{{thread, entry}, frame, *returnAddressOf(frame)}});
    return m_last;
}

std::optional<standin::EntryEvent> OpenEntries::take(std::size_t number) {
    const std::lock_guard<std::mutex> lock(m_guard);
    const auto node = m_entries.extract(number);
    return node.empty() ? std::nullopt : std::optional(std::move(node.mapped().event));
}

std::vector<LeftEntry> OpenEntries::takeEnded() {
    const std::lock_guard<std::mutex> lock(m_guard);
    std::vector<LeftEntry> ended;
    const auto outermost =
        std::find_if(m_entries.begin(), m_entries.end(), [](const auto& entry) { return hasEnded(entry.second); });
    if (outermost == m_entries.end()) return ended;
    const long thread = outermost->second.thread;
    for (auto entry = outermost; entry != m_entries.end();) {
        const auto next = std::next(entry);
        if (entry->second.thread == thread) ended.push_back(std::move(m_entries.extract(entry).mapped()));
        entry = next;
    }
    std::reverse(ended.begin(), ended.end());
    return ended;
}

// A frame that was left is overwritten sooner or later. A thread that has ended left all of its frames.
bool OpenEntries::hasEnded(const Open& entry) {
    if (isThreadGone(entry.thread)) return true;
    const void* word = nullptr;
    const bool isRead = readMemory(returnAddressOf(entry.frame), &word, sizeof word);
    return isRead && word != entry.returnAddress;
}

}  // namespace vexa::layer
