#include "session/FindingTeller.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "terminal/Console.h"

namespace vexa::runner {

void FindingTeller::tellNew() {
    const std::lock_guard<std::mutex> lock(m_guard);
    const std::vector<standin::Finding> findings = m_host.violations();
    for (; m_told < findings.size(); ++m_told) {
        standin::Finding finding = findings[m_told];
        finding.repeats = 0;  // there may be more to come
        tellFinding(finding);
    }
}

void FindingTeller::tellEnd() const {
    for (const standin::Finding& finding : m_host.violations()) {
        if (finding.repeats == 0) continue;
        const std::string addOn = finding.addOnId.empty() ? kProgramName : finding.addOnId;
        tell(addOn, "and " + std::to_string(finding.repeats) + " more [" + finding.rule + ']');
    }
    for (const std::string& rule : m_host.unusedSuppressions()) {
        tell(kProgramName, "warning: " + rule + " is suppressed, but was not broken");
    }
}

void tellFinding(const standin::Finding& finding) {
    const std::string text = textOf(finding);
    const std::string& line = finding.seen.macroLine;
    const std::string& addOn = finding.addOnId;
    const std::string place = line + (line.empty() || addOn.empty() ? "" : ": ") + addOn;
    tellLines(place, std::string_view(text).substr(place.empty() ? 0 : place.size() + 2));
}

bool hasBreach(const standin::Host& host, bool countsWarnings) {
    const std::vector<standin::Finding> findings = host.violations();
    return std::any_of(findings.begin(), findings.end(), [&](const standin::Finding& finding) {
        return countsWarnings || finding.severity == standin::Severity_e::Error;
    });
}

}  // namespace vexa::runner
