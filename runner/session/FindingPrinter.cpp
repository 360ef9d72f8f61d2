#include "session/FindingPrinter.h"

#include <string>
#include <string_view>
#include <utility>

#include "terminal/Console.h"

namespace vexa::runner {

std::vector<standin::Finding> newFindings(const standin::Host& host, std::size_t& known) {
    std::vector<standin::Finding> findings = host.violations();
    const std::size_t first = std::exchange(known, findings.size());
    findings.erase(findings.begin(), findings.begin() + static_cast<std::ptrdiff_t>(first));
    return findings;
}

void printFinding(const standin::Finding& finding, const std::string& ending) {
    const std::string text = textOf(finding) + ending;
    const std::string& line = finding.seen.macroLine;
    const std::string& addOn = finding.addOnId;
    const std::string place = line + (line.empty() || addOn.empty() ? "" : ": ") + addOn;
    tellLines(place, std::string_view(text).substr(place.empty() ? 0 : place.size() + 2));
}

void hintAtLines(SourceFinder& sources) {
    if (!sources.lacksLines()) return;
    tell(kProgramName, "compile the add-on with -g to see the lines of its source");
}

void FindingPrinter::printNew(const standin::Host& host) {
    const std::lock_guard<std::mutex> lock(m_guard);
    for (standin::Finding& finding : newFindings(host, m_printed)) {
        finding.repeats = 0;  // more may follow, so the count is not final
        printFinding(finding, m_ending ? m_ending(finding) : "");
    }
}

void printRestOfFindings(const standin::Host& host) {
    for (const standin::Finding& finding : host.violations()) {
        if (finding.repeats == 0) continue;
        const std::string addOn = finding.addOnId.empty() ? kProgramName : finding.addOnId;
        tell(addOn, "and " + std::to_string(finding.repeats) + " more [" + finding.rule + ']');
    }
    for (const std::string& rule : host.unusedSuppressions()) {
        tell(kProgramName, "warning: " + rule + " is suppressed, but was not broken");
    }
}

}  // namespace vexa::runner
