#pragma once

#include <atomic>
#include <cstddef>
#include <mutex>
#include <optional>
#include <vector>

#include "contract/HostFunctionTable.h"

namespace vexa::standin {

/// How a call of a host function is to fail.
struct Fault {
    bool throws = false;  ///< by an exception
    int result = 0;       ///< or else by this result
};

/// The faults asked for. Threads: safe from any.
class FaultPlan {
public:
    /// Plans \p fault for the \p nth call of \p function from now on, counted from 1.
    /// \throws vexa::InvalidArgumentException for a \p nth of 0.
    void add(HostFunction function, std::size_t nth, Fault fault);
    /// Counts a call of \p function.
    /// \return how it is to fail; nothing when it is not. Of several faults due at once, the one asked for first.
    std::optional<Fault> next(HostFunction function);
    /// Whether any fault is planned: asked at every call, and not worth a lock then.
    bool isAnyPlanned() const { return m_isAnyPlanned.load(std::memory_order_acquire); }
    /// Forgets what was planned.
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
