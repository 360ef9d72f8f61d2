#include "commands/report/TimeBins.h"

#include <algorithm>

namespace vexa::runner {
namespace {

constexpr std::size_t kMostBins = 30000;
constexpr std::size_t kNameBytes = 100000;
constexpr std::size_t kMostNameBytes = 60;

void merge(TimeBins::Bin& bin, const TimeBins::Bin& other) {
    bin.count += other.count;
    bin.busy += other.busy;
    if (other.longest <= bin.longest) return;
    bin.longest = other.longest;
    bin.name = other.name;
}

}  // namespace

TimeBins::TimeBins() : m_names(TextBudget(kNameBytes, kMostNameBytes)) {}

void TimeBins::add(const TracedSpan& span, std::int64_t end) {
    const std::int64_t start = std::max<std::int64_t>(span.start, 0);
    end = std::max(end, start);
    while ((end - start) / m_width >= static_cast<std::int64_t>(kMostBins) / 4) widen();
    auto& bins = m_rows[{span.track, span.depth}];
    for (std::int64_t at = start / m_width; at <= end / m_width; ++at) {
        const std::int64_t from = std::max(start, at * m_width);
        const std::int64_t to = std::min(end, (at + 1) * m_width);
        if (from == to && at != start / m_width) break;  // it ends where the interval starts
        Bin& bin = binAt(bins, at);
        bin.busy += to - from;
        if (at != start / m_width) continue;
        ++bin.count;
        if (bin.count > 1 && end - start <= bin.longest) continue;
        bin.longest = end - start;
        bin.name = m_names.numberOf(span.name);
    }
    while (m_bins > kMostBins) widen();
}

// An earlier interval than the last one is possible only in a damaged trace.
TimeBins::Bin& TimeBins::binAt(std::vector<Bin>& bins, std::int64_t at) {
    if (bins.empty() || bins.back().at < at) {
        bins.push_back({at, 0, 0, 0, 0});
        ++m_bins;
    }
    return bins.back();
}

void TimeBins::widen() {
    m_width *= 2;
    m_bins = 0;
    for (auto& [row, bins] : m_rows) {
        std::vector<Bin> wide;
        for (Bin bin : bins) {
            bin.at /= 2;
            if (wide.empty() || wide.back().at != bin.at) {
                wide.push_back(bin);
            } else {
                merge(wide.back(), bin);
            }
        }
        bins = std::move(wide);
        m_bins += bins.size();
    }
}

}  // namespace vexa::runner
