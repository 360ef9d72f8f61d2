#pragma once

#include <atomic>
#include <cstddef>
#include <mutex>
#include <optional>
#include <vector>

#include "contract/HostFunctionTable.h"

namespace vexa::standin {

/// How a call of a host function fails.
struct Fault {
    bool throws = false;  ///< with an exception
    int result = 0;       ///< otherwise with this result
};

/// The planned faults. Any thread may call the functions.
class FaultPlan {
public:
    /// Plans \p fault for the \p nth call of \p function from now on, counted from 1.
    /// \throws vexa::InvalidArgumentException for a \p nth of 0.
    void add(HostFunction function, std::size_t nth, Fault fault);
    /// Counts a call of \p function.
    /// \return the fault of this call; nothing if the call does not fail. If several faults are due, the one planned
    /// first.
    std::optional<Fault> next(HostFunction function);
    /// Returns true if any fault is planned. Takes no lock, because every call asks this.
    bool isAnyPlanned() const { return m_isAnyPlanned.load(std::memory_order_acquire); }
    /// Deletes all planned faults.
    void clear();

private:
    struct Planned {
        HostFunction function;
        std::size_t callsLeft;
        Fault fault;
    };

    std::mutex m_guard;
    std::vector<Planned> m_planned;
    std::atomic<bool> m_isAnyPlanned{false};
};

}  // namespace vexa::standin
