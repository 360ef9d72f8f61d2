#include "commands/report/PageData.h"

#include <map>
#include <nlohmann/json.hpp>
#include <unordered_map>

#include "commands/report/CallArguments.h"
#include "commands/report/RuleCoverage.h"
#include "vexastandin/HostFunctions.h"

namespace vexa::runner {
namespace {

using Json = nlohmann::ordered_json;
using Kind_e = TracedSpan::Kind_e;

constexpr const char* kDialogFunction = "VexaUtilDialogErrMsg";

// Numbers texts and keeps each of them once.
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

Json optionsOf(const TracedRun& run) {
    Json options = Json::object();
    for (const TracedOption& option : run.options) options[option.name] = option.values;
    return options;
}

Json tracksOf(const TracedRun& run) {
    Json tracks = Json::array();
    for (const TracedTrack& track : run.tracks) tracks.push_back({{"name", track.name}, {"isScope", track.isScope}});
    return tracks;
}

// The duration of a span without end is -1.
Json spansOf(const TracedRun& run) {
    TextTable texts;
    std::vector<int> kinds;
    std::vector<std::size_t> tracks;
    std::vector<std::size_t> depths;
    std::vector<std::size_t> numbers;
    std::vector<std::size_t> names;
    std::vector<std::size_t> arguments;
    std::vector<std::size_t> results;
    std::vector<std::int64_t> starts;
    std::vector<std::int64_t> durations;
    for (const TracedSpan& span : run.spans) {
        kinds.push_back(static_cast<int>(span.kind));
        tracks.push_back(span.track);
        depths.push_back(span.depth);
        starts.push_back(span.start);
        durations.push_back(span.end ? *span.end - span.start : -1);
        numbers.push_back(span.number);
        names.push_back(texts.numberOf(span.name));
        arguments.push_back(texts.numberOf(span.arguments));
        results.push_back(texts.numberOf(span.result));
    }
    return {{"kind", kinds},         {"track", tracks},       {"depth", depths},        {"start", starts},
            {"duration", durations}, {"number", numbers},     {"arguments", arguments}, {"result", results},
            {"name", names},         {"texts", texts.texts()}};
}

Json entriesOf(const TracedRun& run) {
    Json entries = Json::array();
    for (const TracedEntry& entry : run.entries) {
        entries.push_back({{"span", entry.span},
                           {"kind", entry.kind},
                           {"addOn", entry.addOnId},
                           {"command", entry.command},
                           {"macroLine", entry.macroLine},
                           {"succeeded", entry.succeeded},
                           {"error", entry.error},
                           {"calls", entry.calls}});
    }
    return entries;
}

Json findingsOf(const TracedRun& run) {
    Json findings = Json::array();
    for (const TracedFinding& finding : run.findings) {
        Json facts = Json::parse(finding.facts);
        facts["track"] = finding.track;
        facts["time"] = finding.time;
        findings.push_back(std::move(facts));
    }
    return findings;
}

Json percentsOf(const TracedRun& run) {
    Json percents = Json::array();
    for (const TracedPercent& percent : run.percents) percents.push_back({percent.time, percent.percent});
    return percents;
}

std::string textAt(const std::vector<std::optional<std::string>>& texts, std::size_t index) {
    return index < texts.size() && texts[index] ? *texts[index] : "";
}

Json recordedOf(const TracedRun& run) {
    Json commands = Json::array();
    for (const TracedSpan& span : run.spans) {
        if (!isRecording(span)) continue;
        const auto texts = textArguments(span.arguments);
        commands.push_back({{"addOn", textAt(texts, 0)}, {"command", textAt(texts, 1)}, {"call", span.number}});
    }
    return commands;
}

Json dialogsOf(const TracedRun& run) {
    Json dialogs = Json::array();
    for (const TracedSpan& span : run.spans) {
        if (span.name != kDialogFunction || span.kind != Kind_e::Call) continue;
        dialogs.push_back({{"text", textAt(textArguments(span.arguments), 0)}, {"call", span.number}});
    }
    return dialogs;
}

Json functionsOf(const TracedRun& run) {
    struct Tally {
        std::size_t calls = 0;
        double time = 0;  // the sum over all threads may not fit an integer
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

const char* nameOf(Coverage_e coverage) {
    switch (coverage) {
        case Coverage_e::Broken: return "broken";
        case Coverage_e::Touched: return "touched";
        case Coverage_e::Untouched: return "untouched";
        case Coverage_e::Suppressed: return "suppressed";
    }
    return "";
}

Json rulesOf(const TracedRun& run) {
    Json rules = Json::array();
    for (const RuleCoverage& coverage : coverageOf(run)) {
        rules.push_back({{"name", coverage.rule->name},
                         {"summary", coverage.rule->summary},
                         {"coverage", nameOf(coverage.coverage)},
                         {"touchedBy", coverage.touchedBy},
                         {"findings", coverage.findings}});
    }
    return rules;
}

Json outcomeOf(const TracedRun& run) {
    if (!run.outcome) return nullptr;
    return {{"exitStatus", run.outcome->exitStatus}, {"text", run.outcome->text}};
}

}  // namespace

nlohmann::ordered_json pageData(const TracedRun& run) {
    return {{"tool", run.tool},
            {"macroFile", run.macroFile},
            {"options", optionsOf(run)},
            {"outcome", outcomeOf(run)},
            {"end", run.end},
            {"tracks", tracksOf(run)},
            {"spans", spansOf(run)},
            {"entries", entriesOf(run)},
            {"findings", findingsOf(run)},
            {"percents", percentsOf(run)},
            {"recorded", recordedOf(run)},
            {"dialogs", dialogsOf(run)},
            {"functions", functionsOf(run)},
            {"rules", rulesOf(run)}};
}

}  // namespace vexa::runner
