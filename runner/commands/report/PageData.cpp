#include "commands/report/PageData.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "commands/report/PageJson.h"
#include "options/ExitStatus.h"
#include "vexastandin/HostFunctions.h"

namespace vexa::runner {
namespace {

using Json = nlohmann::ordered_json;
using Kind_e = TracedSpan::Kind_e;

constexpr const char* kDialogFunction = "VexaUtilDialogErrMsg";
constexpr std::size_t kMostTracks = 64;
constexpr std::size_t kMostDepth = 16;
constexpr std::size_t kMostPassed = 500;
constexpr std::size_t kPassedBytes = 100000;
constexpr std::size_t kMostPassedBytes = 1000;
constexpr std::size_t kFactBytes = 20000;

std::string shortened(const std::string& text) { return TextBudget(kMostPassedBytes, kMostPassedBytes).cut(text); }

// Returns the numbers of calls, and their texts under the given names.
template <class Passed>
Json passedJson(const Passed& passed, const std::vector<const char*>& names) {
    TextBudget texts(kPassedBytes, kMostPassedBytes);
    Json list = Json::array();
    for (const auto& [call, arguments] : passed.first) {
        Json one;
        for (std::size_t i = 0; i < names.size(); ++i) one[names[i]] = texts.cut(arguments[i]);
        one["call"] = call;
        list.push_back(std::move(one));
    }
    return list;
}

Json outcomeJson(const std::optional<TracedOutcome>& outcome) {
    if (!outcome) return nullptr;
    return {{"exitStatus", outcome->exitStatus}, {"text", shortened(outcome->text)}};
}

}  // namespace

PageData::PageData() {
    for (const standin::HostFunctionInfo& function : standin::hostFunctions()) m_tallies[function.name];
}

void PageData::runBegan(const TracedFacts& facts) {
    m_facts = facts;
    m_rules.runBegan(facts);
}

void PageData::trackChanged(std::size_t track, const TracedTrack& facts) {
    m_rules.trackChanged(track, facts);
    m_trackCount = std::max(m_trackCount, track + 1);
    if (track >= kMostTracks) return;
    m_tracks.resize(std::max(m_tracks.size(), track + 1));
    m_tracks[track] = {shortened(facts.name), facts.isScope};
}

void PageData::spanBegan(std::size_t index, const TracedSpan& span, const TracedEntry*) {
    noteTime(span.start);
    ++m_spanCount;
    m_flame.began(index, span, trackNameOf(span));
    if (isDrawn(span)) m_spans.began(index);
}

void PageData::spanEnded(std::size_t index, const TracedSpan& span, const TracedEntry* entry) {
    noteTime(span.end.value_or(span.start));
    const std::int64_t end = span.end.value_or(m_end);
    m_rules.spanEnded(span, entry);
    m_flame.ended(index, span, end);
    if (span.kind == Kind_e::Call) noteCall(span);
    const bool isListed = entry != nullptr && m_entries.ended(span, *entry);
    if (!isDrawn(span)) return;
    m_bins.add(span, end);
    ++m_rowCounts[{span.track, span.depth}];
    m_spans.ended(index, span);
    if (isListed) m_spans.keep(index, span);
}

void PageData::findingMade(const TracedFinding& finding) {
    noteTime(finding.time);
    m_rules.findingMade(finding.rule);
    m_findings.add(finding);
    m_spans.findingMade();
}

void PageData::crashed(const TracedCrash& crash) {
    if (!m_crash) m_crash = crash;
}

void PageData::percentChanged(std::int64_t time, std::int64_t percent) {
    noteTime(time);
    m_percents.add(time, percent);
}

void PageData::runEnded(std::int64_t end, const std::optional<TracedOutcome>& outcome) {
    m_end = end;
    m_outcome = outcome;
}

bool PageData::isDrawn(const TracedSpan& span) { return span.track < kMostTracks && span.depth < kMostDepth; }

const std::string& PageData::trackNameOf(const TracedSpan& span) const {
    static const std::string kOther = "other threads";
    return span.track < kMostTracks ? m_tracks[span.track].name : kOther;
}

void PageData::noteCall(const TracedSpan& call) {
    const auto tally = m_tallies.find(call.name);
    if (tally != m_tallies.end()) {
        ++tally->second.calls;
        if (call.end) tally->second.time += static_cast<double>(*call.end - call.start);
    }
    if (!call.end && (!m_unfinishedCall || m_unfinishedCall->start <= call.start)) m_unfinishedCall = call;
    if (isRecording(call)) notePassed(m_recorded, call, 2);
    if (call.name == kDialogFunction) notePassed(m_dialogs, call, 1);
}

void PageData::notePassed(Passed& passed, const TracedSpan& call, std::size_t texts) {
    if (passed.count++ >= kMostPassed) return;
    std::vector<std::string> arguments;
    for (std::size_t i = 0; i < texts; ++i) arguments.push_back(shortened(textArgument(call, i)));
    passed.first.emplace_back(call.number, std::move(arguments));
}

// The process of the add-ons ended before the run did.
bool PageData::isCutOff() const {
    return m_crash || !m_outcome || m_outcome->exitStatus == static_cast<std::int64_t>(ExitStatus_e::ProcessEnded);
}

// Adds what the process that watched the end knows of it.
void PageData::addCrash(Json& ending) const {
    const Json facts = TextBudget(kFactBytes, kMostPassedBytes).cutAll(Json::parse(m_crash->facts));
    ending["message"] = facts.at("message");
    if (facts.contains("source")) ending["seen"]["source"] = facts.at("source");
    for (const char* const name : {"fault", "stack", "problem"}) {
        const Json& fact = facts.at(name);
        const bool isEmptyText = fact.is_string() && fact.get_ref<const std::string&>().empty();
        if (!fact.empty() && !isEmptyText) ending[name] = fact;
    }
}

// Describes the place at which the process ended as a finding.
Json PageData::ending() const {
    const auto& entry = m_entries.unfinished();
    const auto& call = m_unfinishedCall;
    const std::string command =
        !entry ? "" : shortened(entry->command.empty() ? entry->kind : entry->addOnId + ' ' + entry->command);
    const std::string where = command.empty() ? "between two commands" : "in " + command;
    Json finding = {
        {"rule", "crash"},
        {"severity", "error"},
        {"message", "The process of the add-ons ended " + where + (call ? ", during " + shortened(call->name) : "")},
        {"addOn", entry ? shortened(entry->addOnId) : ""},
        {"opened", nullptr},
        {"seen",
         {{"call", call ? call->number : 0},
          {"function", call ? shortened(call->name) : ""},
          {"command", command},
          {"macroLine", entry ? shortened(entry->macroLine) : ""},
          {"thread", 0}}},
        {"count", 1},
        {"repeats", 0},
        {"hint",
         "The add-on crashed or ended its process, or the process was killed. The trace ends here. Run the "
         "command again in a debugger."},
        {"track", call ? call->track : 0},
        {"time", m_end}};
    if (m_crash) addCrash(finding);
    return finding;
}

Json PageData::findings() const {
    Json list = m_findings.json();
    for (Json& finding : list) {
        if (finding["track"].get<std::size_t>() >= m_tracks.size()) finding["track"] = 0;
    }
    if (isCutOff()) list.insert(list.begin(), ending());
    return list;
}

Json PageData::counts() const {
    std::size_t calls = 0;
    for (const auto& [name, tally] : m_tallies) calls += tally.calls;
    const std::size_t endings = isCutOff() ? 1 : 0;
    Json byRule = Json::object();
    if (endings != 0) byRule["crash"] = 1;
    TextBudget texts(kFactBytes, kMostPassedBytes);
    for (const auto& [rule, count] : m_findings.counts()) byRule[texts.cut(rule)] = count;
    return {{"spans", m_spanCount},
            {"calls", calls},
            {"tracks", m_trackCount},
            {"entries", m_entries.count()},
            {"commands", m_entries.commands()},
            {"failedCommands", m_entries.failedCommands()},
            {"errors", m_findings.errors() + endings},
            {"warnings", m_findings.warnings()},
            {"byRule", byRule},
            {"recorded", m_recorded.count},
            {"dialogs", m_dialogs.count}};
}

Json PageData::functions() const {
    Json list = Json::array();
    for (const standin::HostFunctionInfo& function : standin::hostFunctions()) {
        const Tally& tally = m_tallies.find(function.name)->second;
        list.push_back({{"name", function.name}, {"calls", tally.calls}, {"time", tally.time}});
    }
    return list;
}

Json PageData::take() {
    const NumberedSpans spans = m_spans.take();
    Json tracks = Json::array();
    for (const TracedTrack& track : m_tracks) tracks.push_back({{"name", track.name}, {"isScope", track.isScope}});
    Json data = summary();
    data["options"] = TextBudget(kFactBytes, kMostPassedBytes).cutAll(Json::parse(m_facts.options));
    data["tracks"] = std::move(tracks);
    data["spans"] = spansJson(spans);
    data["bins"] = binsJson(m_bins, spans, m_rowCounts);
    data["entries"] = entriesJson(m_entries, spans);
    data["findings"] = findings();
    data["percents"] = m_percents.steps();
    data["recorded"] = passedJson(m_recorded, {"addOn", "command"});
    data["dialogs"] = passedJson(m_dialogs, {"text"});
    data["rules"] = rulesJson(m_rules);
    return data;
}

Json PageData::summary() const {
    return {{"tool", shortened(m_facts.tool)},
            {"macroFile", shortened(m_facts.macroFile)},
            {"outcome", outcomeJson(m_outcome)},
            {"end", m_end},
            {"counts", counts()},
            {"totals", totalsJson(m_entries)},
            {"functions", functions()},
            {"flame", flameJson(m_flame)}};
}

}  // namespace vexa::runner
