#include "calls/FaultPlan.h"

#include <algorithm>

#include "vexa/InvalidArgumentException.h"

namespace vexa::standin {

void FaultPlan::add(HostFunction function, std::size_t nth, Fault fault) {
    if (nth == 0) throw InvalidArgumentException("Calls are counted from 1, but the call to fail is number 0");
    const std::lock_guard<std::mutex> lock(m_guard);
    m_planned.push_back({function, nth, fault});
    m_isAnyPlanned = true;
}

std::optional<Fault> FaultPlan::next(HostFunction function) {
    if (!isAnyPlanned()) return std::nullopt;
    const std::lock_guard<std::mutex> lock(m_guard);
    std::optional<Fault> due;
    for (Planned& planned : m_planned) {
        if (planned.function == function && --planned.callsLeft == 0 && !due) due = planned.fault;
    }
    m_planned.erase(std::remove_if(m_planned.begin(), m_planned.end(),
                                   [](const Planned& planned) { return planned.callsLeft == 0; }),
                    m_planned.end());
    m_isAnyPlanned = !m_planned.empty();
    return due;
}

void FaultPlan::clear() {
    const std::lock_guard<std::mutex> lock(m_guard);
    m_planned.clear();
    m_isAnyPlanned = false;
}

}  // namespace vexa::standin
