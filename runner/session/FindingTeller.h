#pragma once

#include <cstddef>
#include <mutex>

#include "vexastandin/Host.h"

namespace vexa::runner {

/// Tells the user of the breaches of rules that a host finds.
///
/// Threads: safe from any.
class FindingTeller {
public:
    /// \param host must live longer.
    explicit FindingTeller(const standin::Host& host) : m_host(host) {}

    /// Tells of those that were not told yet.
    void tellNew();
    /// Tells how many more there were that the host only counted, and which rules were suppressed for nothing.
    void tellEnd() const;

private:
    const standin::Host& m_host;
    std::mutex m_guard;
    std::size_t m_told = 0;
};

/// Tells the user of \p finding.
void tellFinding(const standin::Finding& finding);

/// Whether \p host found a breach of a rule of severity error, or of any rule, if \p countsWarnings.
bool hasBreach(const standin::Host& host, bool countsWarnings);

}  // namespace vexa::runner
