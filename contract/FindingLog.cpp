#include "contract/FindingLog.h"

#include <algorithm>

namespace vexa::standin {
namespace {

constexpr std::size_t kMostKept = 10;

}  // namespace

void FindingLog::add(Finding finding) {
    if (isSuppressed(finding.rule)) return;
    if (m_complete) m_complete(finding);
    m_new.push_back(finding);
    keep(std::move(finding));
}

void FindingLog::keep(Finding finding) {
    Tally& tally = m_tallies[{finding.rule, finding.addOnId}];
    if (tally.kept == kMostKept) {
        m_kept[tally.last].repeats += 1 + finding.repeats;
        return;
    }
    m_kept.push_back(std::move(finding));
    tally = {tally.kept + 1, m_kept.size() - 1};
}

void FindingLog::add(const char* rule, std::string message, const Moment& seen, const Moment* opened,
                     std::size_t count) {
    Finding finding;
    finding.rule = rule;
    finding.severity = findRule(rule)->severity;
    finding.message = std::move(message);
    finding.addOnId = seen.entry->addOnId;
    if (opened != nullptr) finding.opened = placeOf(*opened);
    finding.seen = placeOf(seen.withStack());
    finding.count = count;
    add(std::move(finding));
}

void FindingLog::rename(const std::string& before, const std::string& addOnId) {
    m_tallies.clear();
    for (Finding& finding : std::exchange(m_kept, {})) {
        if (finding.addOnId == before) finding.addOnId = addOnId;
        keep(std::move(finding));
    }
}

void FindingLog::suppress(const Rule& rule) {
    const auto same = [&](const Suppression& suppression) { return suppression.rule == rule.name; };
    if (std::none_of(m_suppressions.begin(), m_suppressions.end(), same)) m_suppressions.push_back({rule.name});
}

std::vector<std::string> FindingLog::unusedSuppressions() const {
    std::vector<std::string> unused;
    for (const Suppression& suppression : m_suppressions) {
        if (!suppression.isUsed) unused.push_back(suppression.rule);
    }
    return unused;
}

bool FindingLog::isSuppressed(const std::string& rule) {
    for (Suppression& suppression : m_suppressions) {
        if (suppression.rule == rule) return suppression.isUsed = true;
    }
    return false;
}

}  // namespace vexa::standin
