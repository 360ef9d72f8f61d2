#include "commands/report/PageData.h"

#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <unordered_map>

#include "coverage/RuleCoverage.h"
#include "vexastandin/HostFunctions.h"

namespace vexa::runner {
namespace {

using Json = nlohmann::ordered_json;
using Kind_e = TracedSpan::Kind_e;

constexpr const char* kDialogFunction = "VexaUtilDialogErrMsg";

// Gives each text a number, and stores each text once.
class TextTable {
public:
    std::size_t numberOf(const std::string& text) {
        const auto [place, isNew] = m_numbers.try_emplace(text, m_numbers.size());
        if (isNew) m_texts.push_back(text);
        return place->second;
    }
    const Json& texts() const { return m_texts; }

private:
    std::unordered_map<std::string, std::size_t> m_numbers;
    Json m_texts = Json::array();
};

// Returns \p part of each of \p items; \p part is a function or a member.
template <class Items, class Part>
Json listOf(const Items& items, const Part& part) {
    Json list = Json::array();
    for (const auto& item : items) list.push_back(std::invoke(part, item));
    return list;
}

Json jsonOf(const TracedTrack& track) { return {{"name", track.name}, {"isScope", track.isScope}}; }

Json jsonOf(const TracedEntry& entry) {
    return {{"span", entry.span},       {"kind", entry.kind},           {"addOn", entry.addOnId},
            {"command", entry.command}, {"macroLine", entry.macroLine}, {"succeeded", entry.succeeded},
            {"error", entry.error},     {"calls", entry.calls}};
}

Json jsonOf(const TracedFinding& finding) {
    Json facts = Json::parse(finding.facts);
    facts["track"] = finding.track;
    facts["time"] = finding.time;
    return facts;
}

const char* nameOf(Coverage_e coverage) {
    switch (coverage) {
        case Coverage_e::Broken: return "broken";
        case Coverage_e::Touched: return "touched";
        case Coverage_e::Untouched: return "untouched";
        case Coverage_e::Suppressed: return "suppressed";
    }
    return "";
}

Json jsonOf(const RuleCoverage& coverage) {
    return {{"name", coverage.rule->name},
            {"summary", coverage.rule->summary},
            {"coverage", nameOf(coverage.coverage)},
            {"touchedBy", coverage.touchedBy},
            {"findings", coverage.findings}};
}

template <class Items>
Json listOf(const Items& items) {
    return listOf(items, [](const auto& item) { return jsonOf(item); });
}

// Returns the duration; -1 for a span without an end.
std::int64_t durationOf(const TracedSpan& span) { return span.end ? *span.end - span.start : -1; }

Json spansOf(const TracedRun& run) {
    TextTable texts;
    const auto column = [&](auto part) { return listOf(run.spans, part); };
    const auto textColumn = [&](std::string TracedSpan::*text) {
        return column([&texts, text](const TracedSpan& span) { return texts.numberOf(span.*text); });
    };
    return {{"kind", column([](const TracedSpan& span) { return static_cast<int>(span.kind); })},
            {"track", column(&TracedSpan::track)},
            {"depth", column(&TracedSpan::depth)},
            {"start", column(&TracedSpan::start)},
            {"duration", column(durationOf)},
            {"number", column(&TracedSpan::number)},
            {"name", textColumn(&TracedSpan::name)},
            {"arguments", textColumn(&TracedSpan::arguments)},
            {"result", textColumn(&TracedSpan::result)},
            {"texts", texts.texts()}};
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

// Returns the text at `index`; empty for a null pointer.
std::string textAt(const Json& arguments, std::size_t index) {
    const bool isText = arguments.is_array() && index < arguments.size() && arguments[index].is_string();
    return isText ? arguments[index].get<std::string>() : "";
}

bool isDialog(const TracedSpan& span) { return span.kind == Kind_e::Call && span.name == kDialogFunction; }

// Returns the numbers of the wanted calls, and their arguments under the given names.
Json callsOf(const TracedRun& run, bool (*isWanted)(const TracedSpan&), const std::vector<const char*>& names) {
    Json calls = Json::array();
    for (const TracedSpan& span : run.spans) {
        if (!isWanted(span)) continue;
        const Json arguments = argumentsOf(span);
        Json call;
        for (std::size_t i = 0; i < names.size(); ++i) call[names[i]] = textAt(arguments, i);
        call["call"] = span.number;
        calls.push_back(std::move(call));
    }
    return calls;
}

Json functionsOf(const TracedRun& run) {
    struct Tally {
        std::size_t calls = 0;
        double time = 0;  // a double, because the sum over all threads may not fit into an integer
    };
    std::map<std::string, Tally> tallies;
    for (const TracedSpan& span : run.spans) {
        if (span.kind != Kind_e::Call) continue;
        Tally& tally = tallies[span.name];
        ++tally.calls;
        if (span.end) tally.time += static_cast<double>(*span.end - span.start);
    }
    Json functions = Json::array();
    for (const standin::HostFunctionInfo& function : standin::hostFunctions()) {
        const Tally tally = tallies[function.name];
        functions.push_back({{"name", function.name}, {"calls", tally.calls}, {"time", tally.time}});
    }
    return functions;
}

Json outcomeOf(const TracedRun& run) {
    if (!run.outcome) return nullptr;
    return {{"exitStatus", run.outcome->exitStatus}, {"text", run.outcome->text}};
}

}  // namespace

nlohmann::ordered_json pageData(const TracedRun& run) {
    return {{"tool", run.tool},
            {"macroFile", run.macroFile},
            {"options", Json::parse(run.options)},
            {"outcome", outcomeOf(run)},
            {"end", run.end},
            {"tracks", listOf(run.tracks)},
            {"spans", spansOf(run)},
            {"entries", listOf(run.entries)},
            {"findings", listOf(run.findings)},
            {"percents", run.percents},
            {"recorded", callsOf(run, isRecording, {"addOn", "command"})},
            {"dialogs", callsOf(run, isDialog, {"text"})},
            {"functions", functionsOf(run)},
            {"rules", listOf(coverageOf(run))}};
}

}  // namespace vexa::runner
