#include "commands/report/KeptEntries.h"

#include "text/ShortText.h"

namespace vexa::runner {
namespace {

constexpr std::size_t kMostFirst = 1500;
constexpr std::size_t kMostFailed = 800;
constexpr std::size_t kMostSlow = 500;
constexpr std::size_t kMostListed = 3500;
constexpr std::size_t kMostNames = 500;
constexpr std::size_t kTextBytes = 400000;
constexpr std::size_t kMostTextBytes = 1000;
constexpr const char* kOthers = "others";

}  // namespace

KeptEntries::KeptEntries() : m_texts(kTextBytes, kMostTextBytes) {}

bool KeptEntries::ended(const TracedSpan& span, const TracedEntry& entry) {
    const bool failed = !span.end || !entry.succeeded;
    count(span, entry, failed);
    if (!span.end && (!m_unfinished || m_unfinished->span < entry.span)) m_unfinished = entry;
    if (!isWanted(span.end ? *span.end - span.start : 0, failed) || m_list.size() == kMostListed) return false;
    TracedEntry& listed = m_list[entry.span] = entry;
    for (auto part : {&TracedEntry::kind, &TracedEntry::addOnId, &TracedEntry::command, &TracedEntry::macroLine,
                      &TracedEntry::error}) {
        listed.*part = m_texts.cut(entry.*part);
    }
    return true;
}

void KeptEntries::count(const TracedSpan& span, const TracedEntry& entry, bool failed) {
    ++m_count;
    if (entry.kind == "command") {
        ++m_commands;
        m_failedCommands += failed ? 1 : 0;
    }
    const std::string name = shortText(span.name);
    const bool isKnown = m_totals.count(name) != 0 || m_totals.size() < kMostNames;
    Totals& totals = m_totals[isKnown ? name : kOthers];
    ++totals.runs;
    totals.failed += failed ? 1 : 0;
    totals.calls += entry.calls;
    totals.time += span.end ? *span.end - span.start : 0;
}

bool KeptEntries::isWanted(std::int64_t duration, bool failed) {
    if (failed && m_failed++ < kMostFailed) return true;
    if (m_count <= kMostFirst) return true;
    if (m_longest.size() == kMostSlow) {
        if (duration <= m_longest.top()) return false;
        m_longest.pop();
    }
    m_longest.push(duration);
    return true;
}

}  // namespace vexa::runner
