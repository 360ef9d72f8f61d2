#include "coverage/TraceCoverage.h"

#include <vector>

#include "coverage/CoverageCollector.h"

namespace vexa::runner {
namespace {

using Kind_e = TracedSpan::Kind_e;

// Gives the events of a trace to a collector, in the order in which they happened.
class Player {
public:
    explicit Player(const TracedRun& run)
        : m_run(run), m_collector({run.isStrict, run.hasTimeLimit, run.suppressed, {}}) {}

    Coverage play() {
        for (const TracedSpan& span : m_run.spans) {
            leaveBefore(span.start);
            if (span.kind == Kind_e::Entry) enter(span);
            if (span.kind == Kind_e::Call) call(span);
        }
        leaveBefore(m_run.end);
        return m_collector.takeNews();
    }

private:
    // The entries of a trace have the order of their spans.
    void enter(const TracedSpan& span) {
        const TracedEntry& entry = m_run.entries[m_nextEntry++];
        m_collector.enter(entry.kind, entry.addOnId, entry.command, span.track);
        m_open.push_back(&entry);
    }

    void call(const TracedSpan& span) {
        m_collector.call(span.name, span.track);
        if (span.end && span.result != kThrew) m_collector.answer(span.name, span.result);
    }

    void leaveBefore(std::int64_t time) {
        while (!m_open.empty()) {
            const TracedEntry& entry = *m_open.back();
            const auto& end = m_run.spans[entry.span].end;
            if (!end || *end > time) return;
            m_collector.leave(entry.succeeded);
            m_open.pop_back();
        }
    }

    const TracedRun& m_run;
    CoverageCollector m_collector;
    std::size_t m_nextEntry = 0;
    std::vector<const TracedEntry*> m_open;
};

}  // namespace

Coverage coverageOfTrace(const TracedRun& run) { return Player(run).play(); }

}  // namespace vexa::runner
