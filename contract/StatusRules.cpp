#include "contract/StatusRules.h"

#include <string>
#include <utility>

namespace vexa::standin {
namespace {

const Moment* addressOf(const std::optional<Moment>& moment) { return moment ? &*moment : nullptr; }

}  // namespace

void StatusRules::started(const Moment& now, FindingLog& findings) {
    if (m_start) {
        findings.add("status-started-twice",
                     "VexaUtilStatusStartPercentDone was called while the status line was shown", now, &*m_start);
        ++m_needlessStarts;
    }
    m_start = now.withStack();
    m_lastPercent.reset();
    m_percent = 0;
}

void StatusRules::percentShown(int percent, const Moment& now, FindingLog& findings) {
    textShown(now, findings);
    if (percent < 0 || percent > kAllDone) {
        findings.add("percent-out-of-range", "the status line was given " + std::to_string(percent) + " percent", now,
                     addressOf(m_start));
        return;
    }
    if (percent < m_percent) {
        findings.add("percent-backwards",
                     "the status line went back from " + std::to_string(m_percent) + " to " + std::to_string(percent) +
                         " percent",
                     now, addressOf(m_lastPercent));
    }
    if (m_lastPercent && percent == m_percent) return;
    m_percent = percent;
    m_lastPercent = now.withStack();
}

void StatusRules::textShown(const Moment& now, FindingLog& findings) {
    if (m_start) return;
    findings.add("status-not-started",
                 std::string(nameOf(*now.function)) + " was called " +
                     (m_finish ? "after the status line was finished" : "before the status line was started"),
                 now, addressOf(m_finish));
}

void StatusRules::finished(const Moment& now, FindingLog& findings) {
    if (m_start) {
        m_start.reset();
        m_finish = now.withStack();
    } else if (m_needlessStarts != 0) {
        --m_needlessStarts;
    } else {
        findings.add("unbalanced-status",
                     "VexaUtilStatusFinishPercentDone has no matching VexaUtilStatusStartPercentDone", now,
                     addressOf(m_finish));
    }
    m_lastPercent.reset();
    m_percent = 0;
}

void StatusRules::endOfEntry(const Moment& now, FindingLog& findings) const {
    if (!m_start) return;
    findings.add(
        "unbalanced-status",
        "VexaUtilStatusStartPercentDone has no matching VexaUtilStatusFinishPercentDone in " + nameOf(*now.entry), now,
        &*m_start);
}

}  // namespace vexa::standin
