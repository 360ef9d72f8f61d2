#pragma once

#include <cstddef>
#include <mutex>
#include <vector>

#include "vexastandin/Host.h"

namespace vexa::runner {

/// The findings of \p host after the first \p known ones; then all of them are known. There are few: the host keeps ten
/// for each rule and add-on.
std::vector<standin::Finding> newFindings(const standin::Host& host, std::size_t& known);

/// Prints how many findings \p host only counted, and which rules were suppressed without need.
void printRestOfFindings(const standin::Host& host);

/// Prints a finding for the user.
void printFinding(const standin::Finding& finding);

/// Prints the findings of a host for the user, each one once.
/// Threads: safe from any.
class FindingPrinter {
public:
    /// Prints the findings since the last call.
    void printNew(const standin::Host& host);

private:
    std::mutex m_guard;
    std::size_t m_printed = 0;
};

}  // namespace vexa::runner
