#pragma once

#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "stacks/SourceFinder.h"
#include "vexastandin/Host.h"

namespace vexa::runner {

/// Returns the findings of \p host after the first \p known ones, and sets \p known to their total. There are few: the
/// host keeps ten for each rule and add-on.
std::vector<standin::Finding> newFindings(const standin::Host& host, std::size_t& known);

/// Prints how many findings \p host only counted, and which suppressed rules had no finding.
void printRestOfFindings(const standin::Host& host);

/// Tells the user once how to see lines of the source, if a place that \p sources completed has none.
void hintAtLines(SourceFinder& sources);

/// Prints a finding for the user. \p ending is empty or has more lines of its text.
void printFinding(const standin::Finding& finding, const std::string& ending = "");

/// Prints the findings of a host for the user, each one once.
/// Threads: any thread may call the functions.
class FindingPrinter {
public:
    using Ending = std::function<std::string(const standin::Finding&)>;

    /// From now on appends what \p ending returns to the text of each finding. Call it before other threads print.
    void endBy(Ending ending) { m_ending = std::move(ending); }
    /// Prints the findings since the last call.
    void printNew(const standin::Host& host);

private:
    Ending m_ending;
    std::mutex m_guard;
    std::size_t m_printed = 0;
};

}  // namespace vexa::runner
