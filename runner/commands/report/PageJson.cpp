#include "commands/report/PageJson.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <nlohmann/json.hpp>
#include <numeric>

#include "commands/report/BoundedText.h"

namespace vexa::runner {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kMostFlameNodes = 2000;
constexpr std::size_t kSpanTextBytes = 1000000;
constexpr std::size_t kMostSpanTextBytes = 2000;

const char* nameOf(Coverage_e coverage) {
    switch (coverage) {
        case Coverage_e::Broken: return "broken";
        case Coverage_e::Touched: return "touched";
        case Coverage_e::Untouched: return "untouched";
        case Coverage_e::Suppressed: return "suppressed";
    }
    return "";
}

// Returns \p part of each span; \p part is a function or a member.
template <class Part>
Json columnOf(const NumberedSpans& spans, const Part& part) {
    Json column = Json::array();
    for (const auto& [number, span] : spans) column.push_back(std::invoke(part, span));
    return column;
}

// Returns the duration; -1 for a span without an end.
std::int64_t durationOf(const TracedSpan& span) { return span.end ? *span.end - span.start : -1; }

std::vector<std::int64_t> totalsOf(const std::vector<FlameTree::Node>& nodes) {
    std::vector<std::int64_t> totals;
    totals.reserve(nodes.size());
    for (const FlameTree::Node& node : nodes) totals.push_back(node.self);
    for (std::size_t i = nodes.size(); i-- > 1;) totals[nodes[i].parent] += totals[i];
    return totals;
}

// Returns the indexes of the nodes with the greatest totals. A parent has a total at least as great, and comes first.
std::vector<std::size_t> largestOf(const std::vector<std::int64_t>& totals) {
    std::vector<std::size_t> order(totals.size());
    std::iota(order.begin(), order.end(), std::size_t(0));
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return totals[a] > totals[b]; });
    order.resize(std::min(order.size(), kMostFlameNodes));
    std::sort(order.begin(), order.end());
    return order;
}

// The host quotes texts as JSON does, but leaves other control characters as they are.
Json argumentsOf(const TracedSpan& call) {
    std::string json;
    for (const char c : call.arguments) {
        const bool isControl = c >= 0 && c < ' ';
        json +=
            isControl ? std::string("\\u00") + (c < 16 ? '0' : '1') + "0123456789abcdef"[c % 16] : std::string(1, c);
    }
    return Json::parse('[' + json + ']', nullptr, false);
}

Json rowJson(const TimeBins::Row& row, const std::vector<TimeBins::Bin>& bins) {
    Json json = {{"track", row.first}, {"depth", row.second}};
    const auto add = [&](const char* name, auto part) {
        Json& column = json[name] = Json::array();
        for (const TimeBins::Bin& bin : bins) column.push_back(bin.*part);
    };
    add("at", &TimeBins::Bin::at);
    add("count", &TimeBins::Bin::count);
    add("busy", &TimeBins::Bin::busy);
    add("longest", &TimeBins::Bin::longest);
    add("name", &TimeBins::Bin::name);
    return json;
}

}  // namespace

Json spansJson(const NumberedSpans& spans) {
    TextTable texts(TextBudget(kSpanTextBytes, kMostSpanTextBytes));
    const auto textColumn = [&](std::string TracedSpan::*text) {
        return columnOf(spans, [&texts, text](const TracedSpan& span) { return texts.numberOf(span.*text); });
    };
    Json json = {{"kind", columnOf(spans, [](const TracedSpan& span) { return static_cast<int>(span.kind); })},
                 {"track", columnOf(spans, &TracedSpan::track)},
                 {"depth", columnOf(spans, &TracedSpan::depth)},
                 {"start", columnOf(spans, &TracedSpan::start)},
                 {"duration", columnOf(spans, durationOf)},
                 {"number", columnOf(spans, &TracedSpan::number)}};
    json["name"] = textColumn(&TracedSpan::name);
    json["result"] = textColumn(&TracedSpan::result);
    json["arguments"] = textColumn(&TracedSpan::arguments);
    json["texts"] = texts.texts();
    return json;
}

Json binsJson(const TimeBins& bins, const NumberedSpans& spans, const std::map<TimeBins::Row, std::size_t>& counts) {
    std::map<TimeBins::Row, std::size_t> shown;
    for (const auto& [number, span] : spans) ++shown[{span.track, span.depth}];
    Json rows = Json::array();
    for (const auto& [row, list] : bins.rows()) {
        if (shown[row] < counts.at(row)) rows.push_back(rowJson(row, list));
    }
    return {{"width", bins.width()}, {"names", rows.empty() ? Json::array() : Json(bins.names())}, {"rows", rows}};
}

Json flameJson(const FlameTree& flame) {
    const std::vector<FlameTree::Node>& nodes = flame.nodes();
    const std::vector<std::int64_t> totals = totalsOf(nodes);
    const std::vector<std::size_t> kept = largestOf(totals);
    const auto rowOf = [&](std::size_t node) {
        return std::lower_bound(kept.begin(), kept.end(), node) - kept.begin();
    };
    Json json = {{"parent", Json::array()}, {"name", Json::array()},    {"count", Json::array()},
                 {"total", Json::array()},  {"longest", Json::array()}, {"names", flame.names()}};
    for (const std::size_t index : kept) {
        json["parent"].push_back(rowOf(nodes[index].parent));
        json["name"].push_back(nodes[index].name);
        json["count"].push_back(nodes[index].count);
        json["total"].push_back(totals[index]);
        json["longest"].push_back(nodes[index].longest);
    }
    json["left"] = nodes.size() - kept.size();
    return json;
}

Json entriesJson(const KeptEntries& entries, const NumberedSpans& spans) {
    Json list = Json::array();
    for (const auto& [number, entry] : entries.list()) {
        const auto span = spans.find(number);
        if (span == spans.end()) continue;  // its track is not drawn
        list.push_back({{"span", std::distance(spans.begin(), span)},
                        {"kind", entry.kind},
                        {"addOn", entry.addOnId},
                        {"command", entry.command},
                        {"macroLine", entry.macroLine},
                        {"succeeded", entry.succeeded},
                        {"error", entry.error},
                        {"calls", entry.calls}});
    }
    return list;
}

Json totalsJson(const KeptEntries& entries) {
    Json list = Json::array();
    for (const auto& [name, totals] : entries.totals()) {
        list.push_back({{"name", name},
                        {"runs", totals.runs},
                        {"failed", totals.failed},
                        {"calls", totals.calls},
                        {"time", totals.time}});
    }
    return list;
}

Json rulesJson(const RuleCoverageCollector& rules) {
    Json list = Json::array();
    for (const RuleCoverage& coverage : rules.coverage()) {
        list.push_back({{"name", coverage.rule->name},
                        {"summary", coverage.rule->summary},
                        {"coverage", nameOf(coverage.coverage)},
                        {"touchedBy", coverage.touchedBy},
                        {"findings", coverage.findings}});
    }
    return list;
}

std::string textArgument(const TracedSpan& call, std::size_t index) {
    const Json arguments = argumentsOf(call);
    const bool isText = arguments.is_array() && index < arguments.size() && arguments[index].is_string();
    return isText ? arguments[index].get<std::string>() : "";
}

}  // namespace vexa::runner
