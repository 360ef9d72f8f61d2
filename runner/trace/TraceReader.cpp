#include "trace/TraceReader.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "system/files/StandardStreams.h"
#include "text/ShortText.h"
#include "trace/SpanLine.h"
#include "trace/TracedRunBuilder.h"

namespace vexa::runner {
namespace {

using Json = nlohmann::ordered_json;
using Kind_e = TracedSpan::Kind_e;

constexpr const char* kNoTrace = "this is not a trace of 'vexa-standin run --trace'";
constexpr const char* kNoEvent = "not an event of a trace";
constexpr const char* kWrongPart = "an event with a missing part, or with a part of the wrong type";
constexpr double kNanosecondsPerMicrosecond = 1000;
constexpr double kMostNanoseconds = 1LL << 53;  // the largest integer that JavaScript counts exactly: 104 days
constexpr int kMostNested = 8;
constexpr std::size_t kMostParts = 1000;

[[noreturn]] void refuse(const std::string& path, std::size_t line, const std::string& why) {
    throw TraceError(path + ':' + std::to_string(line) + ": " + why);
}

// Parses the event of a line; the result is discarded if the line is no JSON. Refuses deep nesting, which the JSON
// library copies by recursion until the stack overflows, and many members, which it searches in quadratic time.
Json eventIn(std::string_view line) {
    if (line.find('\0') != std::string_view::npos) throw std::invalid_argument(kNoEvent);  // would end the JSON
    std::size_t parts = 0;
    const auto isBounded = [&](int depth, Json::parse_event_t token, const Json&) {
        if (depth > kMostNested) throw std::invalid_argument("an event that is nested too deeply");
        if (token == Json::parse_event_t::key && ++parts > kMostParts) {
            throw std::invalid_argument("an event with too many parts");
        }
        return true;
    };
    return Json::parse(line, isBounded, false);
}

// A conversion by the JSON library would accept Booleans and fractions, too.
std::int64_t integerIn(const Json& part) { return part.get_ref<const Json::number_integer_t&>(); }

std::size_t countIn(const Json& part) {
    const std::int64_t value = integerIn(part);
    if (value < 0) throw std::invalid_argument(kWrongPart);
    return static_cast<std::size_t>(value);
}

// The page uses the options unchecked.
std::string optionsIn(const Json& part) {
    for (const auto& option : part.get_ref<const Json::object_t&>()) {
        (void)option.second.get<std::vector<std::string>>();
    }
    return part.dump();
}

void checkPlace(const Json& place) {
    for (const char* name : {"function", "command", "macroLine"}) (void)place.at(name).get<std::string>();
    for (const char* name : {"call", "thread"}) countIn(place.at(name));
}

// The page uses the facts of a finding unchecked.
void checkFinding(const Json& facts) {
    for (const char* name : {"rule", "severity", "message", "addOn", "hint"}) (void)facts.at(name).get<std::string>();
    for (const char* name : {"count", "repeats"}) countIn(facts.at(name));
    if (!facts.at("opened").is_null()) checkPlace(facts.at("opened"));
    checkPlace(facts.at("seen"));
}

// The page uses the facts of a crash unchecked.
void checkCrash(const Json& facts) {
    for (const char* name : {"message", "fault", "problem"}) (void)facts.at(name).get<std::string>();
    integerIn(facts.at("signal"));
    (void)facts.at("stack").get_ref<const Json::array_t&>();
    (void)facts.at("stack").get<std::vector<std::string>>();
    if (!facts.contains("source")) return;
    for (const char* name : {"function", "file", "text"}) (void)facts.at("source").at(name).get<std::string>();
    countIn(facts.at("source").at("line"));
}

// Reads an event that starts a call or a scope.
SpanEdge startIn(const Json& event, Kind_e kind) {
    const Json& facts = event.at("args");
    SpanEdge edge;
    edge.kind = kind;
    edge.begins = true;
    edge.name = event.at("name");
    edge.thread = integerIn(event.at("tid"));
    edge.time = event.at("ts");
    if (kind == Kind_e::Call) edge.number = countIn(facts.at("number"));
    edge.text = facts.at("arguments");
    return edge;
}

std::string resultIn(const Json& facts) {
    return facts.value("threw", false) ? kThrew : std::string(facts.at("result"));
}

// Turns the events of a trace into calls of a visitor.
class EventReader {
public:
    explicit EventReader(TraceVisitorInterface& visitor) : m_visitor(visitor) {}

    // Adds the event of a line that scanSpanEdge() can read. Returns false if it cannot, or if the event needs a closer
    // look: then nothing has changed.
    bool addScanned(std::string_view line) {
        if (!m_hasHeader || !scanSpanEdge(line, m_edge)) return false;
        if (m_edge.begins) {
            begin(m_edge, passTime(m_edge.time));
            return true;
        }
        const auto track = m_trackIndexes.find(m_edge.thread);
        if (track == m_trackIndexes.end()) return false;
        std::vector<OpenSpan>& open = m_openSpans[track->second];
        if (open.empty() || open.back().span.kind != m_edge.kind) return false;
        open.back().span.end = passTime(m_edge.time);
        if (m_edge.kind == Kind_e::Call) open.back().span.result = m_edge.text;
        passEnd(open);
        return true;
    }

    // Throws an exception of the JSON library if a part of the event is missing or has the wrong type, and
    // std::invalid_argument if the event does not fit those before it.
    void add(const Json& event) {
        const std::string phase = event.at("ph");
        if (!m_hasHeader) return readHeader(event);
        if (phase == "M") return readName(event);
        const std::int64_t time = passTime(event.at("ts"));
        if (phase == "B") return begin(event, time);
        if (phase == "E") return end(event, time);
        if (phase == "i") return readInstant(event, time);
        if (phase != "C") throw std::invalid_argument("an event of unknown type " + Json(shortText(phase)).dump());
        m_visitor.percentChanged(time, integerIn(event.at("args").at("percent")));
    }

    bool hasHeader() const { return m_hasHeader; }

    // Call it after the last event.
    void finish() {
        for (auto& [track, spans] : m_openSpans) {
            while (!spans.empty()) passEnd(spans);
        }
        m_visitor.runEnded(m_end, m_outcome);
    }

private:
    struct OpenSpan {
        std::size_t index = 0;
        TracedSpan span;
    };

    void readHeader(const Json& event) {
        if (event.at("cat") != "run" || event.at("name") != "run") throw std::invalid_argument(kNoTrace);
        const Json& json = event.at("args");
        TracedFacts facts;
        facts.tool = json.at("tool");
        facts.macroFile = json.at("macroFile");
        facts.options = optionsIn(json.at("options"));
        facts.isStrict = json.at("isStrict");
        facts.hasTimeLimit = json.at("hasTimeLimit");
        facts.suppressed = json.at("suppressed").get<std::vector<std::string>>();
        m_origin = event.at("ts");
        m_hasHeader = true;
        m_visitor.runBegan(facts);
    }

    void readName(const Json& event) {
        if (event.at("name") != "thread_name") return;
        const std::size_t track = trackOf(event);
        m_tracks[track].name = event.at("args").at("name");
        m_visitor.trackChanged(track, m_tracks[track]);
    }

    void begin(const Json& event, std::int64_t time) {
        const std::string category = event.at("cat");
        if (category == "call") return begin(startIn(event, Kind_e::Call), time);
        if (category == "scope") return begin(startIn(event, Kind_e::Scope), time);
        TracedSpan span;
        span.kind = Kind_e::Entry;
        span.track = trackOf(event);
        span.name = event.at("name");
        span.start = time;
        const Json& facts = event.at("args");
        const TracedEntry entry = {
            m_spans, category, facts.at("addOn"), facts.at("command"), facts.at("macroLine"), false, "", 0};
        passBegin(std::move(span), &m_openEntries.emplace(m_spans, entry).first->second);
    }

    void begin(const SpanEdge& edge, std::int64_t time) {
        TracedSpan span;
        span.kind = edge.kind;
        span.track = trackOf(edge.thread);
        span.name = edge.name;
        span.start = time;
        span.number = edge.number;
        span.arguments = edge.text;
        if (edge.kind == Kind_e::Scope) markAsScope(span.track);
        if (edge.kind == Kind_e::Call && !m_openEntries.empty()) ++m_openEntries.rbegin()->second.calls;
        passBegin(std::move(span), nullptr);
    }

    void passBegin(TracedSpan&& span, const TracedEntry* entry) {
        std::vector<OpenSpan>& open = m_openSpans[span.track];
        span.depth = open.size();
        open.push_back({m_spans++, std::move(span)});
        m_visitor.spanBegan(open.back().index, open.back().span, entry);
    }

    void end(const Json& event, std::int64_t time) {
        std::vector<OpenSpan>& open = m_openSpans[trackOf(event)];
        if (open.empty()) throw std::invalid_argument("an end without a start");
        TracedSpan& span = open.back().span;
        if (event.at("cat") != "cut off") {  // the span did end
            span.end = time;
            if (span.kind == Kind_e::Call) span.result = resultIn(event.at("args"));
            if (span.kind == Kind_e::Entry) endEntry(open.back().index, event.at("args"));
        }
        passEnd(open);
    }

    void endEntry(std::size_t span, const Json& facts) {
        TracedEntry& entry = m_openEntries.at(span);
        entry.addOnId = facts.at("addOn");
        entry.succeeded = facts.at("succeeded");
        entry.error = facts.at("error");
    }

    // Ends the innermost of the spans of a track.
    void passEnd(std::vector<OpenSpan>& spans) {
        const OpenSpan& open = spans.back();
        const auto entry = m_openEntries.find(open.index);
        m_visitor.spanEnded(open.index, open.span, entry == m_openEntries.end() ? nullptr : &entry->second);
        if (entry != m_openEntries.end()) m_openEntries.erase(entry);
        spans.pop_back();
    }

    void readInstant(const Json& event, std::int64_t time) {
        const Json& facts = event.at("args");
        if (event.at("cat") == "finding") {
            checkFinding(facts);
            m_visitor.findingMade({trackOf(event), time, facts.at("rule"), facts.dump()});
        } else if (event.at("cat") == "crash") {
            checkCrash(facts);
            m_visitor.crashed({facts.at("message"), facts.dump()});
        } else {
            m_outcome = {integerIn(facts.at("exitStatus")), facts.at("outcome")};
        }
    }

    // Returns the nanoseconds since the start of the run, and notes that it lasted so long.
    std::int64_t passTime(double microseconds) {
        const double nanoseconds = (microseconds - m_origin) * kNanosecondsPerMicrosecond;
        if (std::abs(nanoseconds) > kMostNanoseconds) throw std::invalid_argument("an impossible time");
        const std::int64_t time = std::llround(nanoseconds);
        m_end = std::max(m_end, time);
        return time;
    }

    std::size_t trackOf(const Json& event) { return trackOf(integerIn(event.at("tid"))); }

    std::size_t trackOf(std::int64_t id) {
        const auto [place, isNew] = m_trackIndexes.try_emplace(id, m_tracks.size());
        if (!isNew) return place->second;
        m_tracks.push_back({"thread " + std::to_string(id), false});
        m_visitor.trackChanged(place->second, m_tracks.back());
        return place->second;
    }

    void markAsScope(std::size_t track) {
        if (std::exchange(m_tracks[track].isScope, true)) return;
        m_visitor.trackChanged(track, m_tracks[track]);
    }

    TraceVisitorInterface& m_visitor;
    bool m_hasHeader = false;
    double m_origin = 0;
    std::int64_t m_end = 0;
    std::size_t m_spans = 0;
    SpanEdge m_edge;  // of the line that is added; keeps its memory for the next one
    std::optional<TracedOutcome> m_outcome;
    std::map<std::int64_t, std::size_t> m_trackIndexes;
    std::vector<TracedTrack> m_tracks;
    std::map<std::size_t, std::vector<OpenSpan>> m_openSpans;  // of each track, the outermost first
    std::map<std::size_t, TracedEntry> m_openEntries;          // by the index of the span
};

// Adds the event of a line. Returns false if the line was cut off while it was written.
bool addLine(std::string_view line, EventReader& reader, LiveLines& lines) {
    if (reader.addScanned(line)) return true;
    const Json event = eventIn(line);
    if (event.is_discarded() && reader.hasHeader() && lines.isAtEnd()) return false;
    if (event.is_discarded()) throw std::invalid_argument(kNoEvent);
    reader.add(event);
    return true;
}

void visitLines(LiveLines& lines, const std::string& path, TraceVisitorInterface& visitor) {
    EventReader reader(visitor);
    std::size_t number = 0;
    for (std::string_view line; lines.next(line);) {
        if (!line.empty() && line.back() == ',') line.remove_suffix(1);
        ++number;
        if (number == 1 && line != "[") throw TraceError(path + ": " + kNoTrace);
        if (line == "[" || line == "]") continue;
        try {
            if (!addLine(line, reader, lines)) break;
        } catch (const Json::exception&) {
            refuse(path, number, reader.hasHeader() ? kWrongPart : kNoTrace);
        } catch (const std::invalid_argument& problem) {
            refuse(path, number, problem.what());
        }
    }
    if (!reader.hasHeader()) throw TraceError(path + ": " + kNoTrace);
    reader.finish();
}

// Returns the result of `read`, which reads the input.
template <class Read>
auto reading(const std::string& name, const Read& read) {
    try {
        return read();
    } catch (const std::system_error& error) {
        throw TraceError(name + ": cannot be read: " + error.code().message());
    }
}

}  // namespace

TraceInput::TraceInput(const std::string& file)
    : m_name(isStandardInput(file) ? kStandardInputName : file),
      m_lines(reading(m_name, [&] { return LiveLines(file); })) {}

TraceInput::TraceInput(LiveLines lines, std::string name) : m_name(std::move(name)), m_lines(std::move(lines)) {}

TraceInput TraceInput::ofText(std::string text, std::string name) {
    return {LiveLines(InputLines::ofText(std::move(text))), std::move(name)};
}

char TraceInput::first() {
    return reading(m_name, [&] { return m_lines.first(); });
}

std::string TraceInput::text() {
    return reading(m_name, [&] { return m_lines.rest(); });
}

void TraceInput::visit(TraceVisitorInterface& visitor) {
    reading(m_name, [&] { visitLines(m_lines, m_name, visitor); });
}

TracedRun TraceInput::run() {
    TracedRunBuilder builder;
    visit(builder);
    return builder.take();
}

}  // namespace vexa::runner
