#include "commands/report/KeptSpans.h"

#include <algorithm>

#include "commands/report/BoundedText.h"

namespace vexa::runner {
namespace {

constexpr std::size_t kMostFirst = 10000;
constexpr std::size_t kMostSlow = 3000;
constexpr std::size_t kMostAround = 10;     // on each side of a finding
constexpr std::size_t kMostFindings = 250;  // with spans around them
constexpr std::size_t kMostTextBytes = 2000;

std::string shortened(const std::string& text) { return TextBudget(kMostTextBytes, kMostTextBytes).cut(text); }

TracedSpan shortened(const TracedSpan& span) {
    TracedSpan copy = span;
    copy.name = shortened(span.name);
    copy.arguments = shortened(span.arguments);
    copy.result = shortened(span.result);
    return copy;
}

std::int64_t durationOf(const TracedSpan& span) { return span.end ? *span.end - span.start : 0; }

}  // namespace

void KeptSpans::ended(std::size_t index, const TracedSpan& span) {
    m_open.erase(std::remove(m_open.begin(), m_open.end(), index), m_open.end());
    const bool isWanted = !m_wanted.empty() && m_wanted.erase(index) != 0;
    const bool isFollower = m_followers != 0 && m_followers-- != 0;
    if (index < kMostFirst || isWanted || isFollower) {
        keep(index, span);
    } else {
        noteSlow(index, span);
    }
    noteRecent(index, span);
}

void KeptSpans::findingMade() {
    if (m_findings == kMostFindings) return;
    ++m_findings;
    for (const auto& [index, span] : m_recent) keep(index, span);
    m_wanted.insert(m_open.begin(), m_open.end());
    m_followers = kMostAround;
}

void KeptSpans::keep(std::size_t index, const TracedSpan& span) {
    const auto [kept, isNew] = m_kept.try_emplace(index);
    if (isNew) kept->second = shortened(span);
}

std::map<std::size_t, TracedSpan> KeptSpans::take() {
    m_kept.merge(m_slow);
    return std::move(m_kept);
}

void KeptSpans::noteSlow(std::size_t index, const TracedSpan& span) {
    const std::int64_t duration = durationOf(span);
    if (m_durations.size() == kMostSlow) {
        if (duration <= m_durations.top().first) return;
        m_slow.erase(m_durations.top().second);
        m_durations.pop();
    }
    m_durations.emplace(duration, index);
    m_slow.emplace(index, shortened(span));
}

// Assigns to the members, whose texts keep their memory.
void KeptSpans::noteRecent(std::size_t index, const TracedSpan& span) {
    if (m_recent.size() < kMostAround) {
        m_recent.emplace_back(index, shortened(span));
        return;
    }
    auto& [oldIndex, old] = m_recent[m_nextRecent++ % kMostAround];
    oldIndex = index;
    const bool isLong = std::max({span.name.size(), span.arguments.size(), span.result.size()}) > kMostTextBytes / 8;
    old = isLong ? shortened(span) : span;
}

}  // namespace vexa::runner
