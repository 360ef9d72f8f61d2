#include "commands/test/CommandCosts.h"

#include "text/Printable.h"

namespace vexa::runner {

void CommandCosts::entryBegan(const standin::EntryEvent& entry) {
    if (entry.kind != standin::Entry_e::Command) return;
    const std::lock_guard<std::mutex> lock(m_guard);
    m_thread = entry.threadNumber;
    m_all.push_back({printableLine(entry.addOnId + ' ' + entry.command), 0, 0, 0});
    m_allocations.emplace();
}

void CommandCosts::entryEnded(const standin::EntryEvent& entry) {
    if (entry.kind != standin::Entry_e::Command) return;
    const std::lock_guard<std::mutex> lock(m_guard);
    const AllocationCount count = AllocationCounter::count();
    m_all.back().allocations = count.allocations;
    m_all.back().peakBytes = count.peakBytes;
    m_allocations.reset();
    m_thread = 0;
}

void CommandCosts::callBegan(const standin::CallEvent& call) {
    const std::lock_guard<std::mutex> lock(m_guard);
    if (m_thread != 0 && call.threadNumber == m_thread) ++m_all.back().calls;
}

}  // namespace vexa::runner
