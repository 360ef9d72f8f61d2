#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "commands/report/BoundedText.h"
#include "trace/TracedRun.h"

namespace vexa::runner {

/// Counts the spans of a run in equal intervals of time, for each row of the timeline: a track and a depth.
///
/// The number of intervals with spans is bounded. When there are too many, their width doubles.
class TimeBins {
public:
    /// What happened in an interval.
    struct Bin {
        std::int64_t at = 0;       ///< the number of the interval
        std::size_t count = 0;     ///< spans that started in it
        std::int64_t busy = 0;     ///< the time that spans covered, in nanoseconds
        std::int64_t longest = 0;  ///< the longest duration of a span that started in it
        std::size_t name = 0;      ///< of that span; its number in names()
    };
    using Row = std::pair<std::size_t, std::size_t>;  ///< track and depth

    TimeBins();

    /// Adds a span of a row. The spans of a row come in the order of time and do not overlap. \p end is its end, or
    /// that of the trace.
    void add(const TracedSpan& span, std::int64_t end);

    std::int64_t width() const { return m_width; }
    const std::map<Row, std::vector<Bin>>& rows() const { return m_rows; }
    const std::vector<std::string>& names() const { return m_names.texts(); }

private:
    Bin& binAt(std::vector<Bin>& bins, std::int64_t at);
    void widen();

    std::int64_t m_width = 1024;
    std::size_t m_bins = 0;
    std::map<Row, std::vector<Bin>> m_rows;
    TextTable m_names;
};

}  // namespace vexa::runner
