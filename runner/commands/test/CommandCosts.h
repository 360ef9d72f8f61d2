#pragma once

#include <mutex>
#include <optional>
#include <vector>

#include "commands/test/AllocationCounter.h"
#include "commands/test/Budget.h"
#include "vexastandin/Observer.h"

namespace vexa::runner {

/// An observer that counts what each command costs on the thread that runs it. Threads that an add-on has started do
/// not count, because their number often depends on the machine. Threads: as an observer.
class CommandCosts : public standin::ObserverInterface {
public:
    void entryBegan(const standin::EntryEvent& entry) override;
    void entryEnded(const standin::EntryEvent& entry) override;
    void callBegan(const standin::CallEvent& call) override;
    void callEnded(const standin::CallEvent&) override {}
    void findingMade(const standin::Finding&) override {}
    void statusChanged(const standin::StatusLine&) override {}

    /// Returns the costs so far, in the order of the commands. Call it while no command runs.
    const std::vector<CommandCost>& all() const { return m_all; }

private:
    std::mutex m_guard;
    std::size_t m_thread = 0;  // that runs the command; 0 for none
    std::vector<CommandCost> m_all;
    std::optional<AllocationCounter> m_allocations;
};

}  // namespace vexa::runner
