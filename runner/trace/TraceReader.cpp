#include "trace/TraceReader.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string_view>
#include <system_error>
#include <utility>

#include "system/files/MappedTail.h"
#include "system/files/StandardStreams.h"
#include "system/files/WholeFile.h"
#include "text/ShortText.h"

namespace vexa::runner {
namespace {

using Json = nlohmann::ordered_json;
using Kind_e = TracedSpan::Kind_e;

constexpr const char* kNoTrace = "this is not a trace of 'vexa-standin run --trace'";
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

// Builds the run from its events, in their order.
class RunBuilder {
public:
    // Throws an exception of the JSON library if a part of the event is missing or has the wrong type, and
    // std::invalid_argument if the event does not fit those before it.
    void add(const Json& event) {
        const std::string phase = event.at("ph");
        if (!m_hasHeader) return readHeader(event);
        if (phase == "M") return readName(event);
        const std::int64_t time = timeOf(event);
        m_run.end = std::max(m_run.end, time);
        if (phase == "B") return begin(event, time);
        if (phase == "E") return end(event, time);
        if (phase == "i") return readInstant(event, time);
        if (phase != "C") throw std::invalid_argument("an event of unknown type " + Json(shortText(phase)).dump());
        m_run.percents.emplace_back(time, integerIn(event.at("args").at("percent")));
    }

    bool hasHeader() const { return m_hasHeader; }
    TracedRun take() { return std::move(m_run); }

private:
    void readHeader(const Json& event) {
        if (event.at("cat") != "run" || event.at("name") != "run") throw std::invalid_argument(kNoTrace);
        const Json& facts = event.at("args");
        m_run.tool = facts.at("tool");
        m_run.macroFile = facts.at("macroFile");
        m_run.options = optionsIn(facts.at("options"));
        m_run.isStrict = facts.at("isStrict");
        m_run.hasTimeLimit = facts.at("hasTimeLimit");
        m_run.suppressed = facts.at("suppressed").get<std::vector<std::string>>();
        m_origin = event.at("ts");
        m_hasHeader = true;
    }

    void readName(const Json& event) {
        if (event.at("name") == "thread_name") m_run.tracks[trackOf(event)].name = event.at("args").at("name");
    }

    void begin(const Json& event, std::int64_t time) {
        TracedSpan span;
        span.track = trackOf(event);
        span.name = event.at("name");
        span.start = time;
        const std::string category = event.at("cat");
        const Json& facts = event.at("args");
        if (category == "call") {
            span.number = countIn(facts.at("number"));
            span.arguments = facts.at("arguments");
            if (!m_openEntries.empty()) ++m_run.entries[m_openEntries.back()].calls;
        } else if (category == "scope") {
            span.kind = Kind_e::Scope;
            span.arguments = facts.at("arguments");
            m_run.tracks[span.track].isScope = true;
        } else {
            span.kind = Kind_e::Entry;
            m_openEntries.push_back(m_run.entries.size());
            m_run.entries.push_back({m_run.spans.size(), category, facts.at("addOn"), facts.at("command"),
                                     facts.at("macroLine"), false, "", 0});
        }
        auto& open = m_open[span.track];
        span.depth = open.size();
        open.push_back(m_run.spans.size());
        m_run.spans.push_back(std::move(span));
    }

    void end(const Json& event, std::int64_t time) {
        auto& open = m_open[trackOf(event)];
        if (open.empty()) throw std::invalid_argument("an end without a start");
        TracedSpan& span = m_run.spans[open.back()];
        open.pop_back();
        if (event.at("cat") == "cut off") return;  // the span did not end
        span.end = time;
        if (span.kind == Kind_e::Call) {
            const Json& facts = event.at("args");
            span.result = facts.value("threw", false) ? "threw" : std::string(facts.at("result"));
        } else if (span.kind == Kind_e::Entry) {
            endEntry(event.at("args"));
        }
    }

    void endEntry(const Json& facts) {
        TracedEntry& entry = m_run.entries[m_openEntries.back()];
        m_openEntries.pop_back();
        entry.addOnId = facts.at("addOn");
        entry.succeeded = facts.at("succeeded");
        entry.error = facts.at("error");
    }

    void readInstant(const Json& event, std::int64_t time) {
        const Json& facts = event.at("args");
        if (event.at("cat") == "finding") {
            checkFinding(facts);
            m_run.findings.push_back({trackOf(event), time, facts.at("rule"), facts.dump()});
        } else {
            m_run.outcome = {integerIn(facts.at("exitStatus")), facts.at("outcome")};
        }
    }

    std::int64_t timeOf(const Json& event) const {
        const double time = event.at("ts");
        const double nanoseconds = (time - m_origin) * kNanosecondsPerMicrosecond;
        if (std::abs(nanoseconds) > kMostNanoseconds) throw std::invalid_argument("an impossible time");
        return std::llround(nanoseconds);
    }

    std::size_t trackOf(const Json& event) {
        const std::int64_t id = integerIn(event.at("tid"));
        const auto [place, isNew] = m_trackIndexes.try_emplace(id, m_run.tracks.size());
        if (isNew) m_run.tracks.push_back({"thread " + std::to_string(id), false});
        return place->second;
    }

    TracedRun m_run;
    bool m_hasHeader = false;
    double m_origin = 0;
    std::map<std::int64_t, std::size_t> m_trackIndexes;
    std::map<std::size_t, std::vector<std::size_t>> m_open;  // the open spans of each track, the outermost first
    std::vector<std::size_t> m_openEntries;
};

}  // namespace

std::string traceTextOf(const std::string& file, std::string& name) {
    name = isStandardInput(file) ? kStandardInputName : file;
    try {
        std::string text = readInput(file);
        text.resize(textLengthOf(text));  // the run and its watching process may have been killed
        return text;
    } catch (const std::system_error& error) {
        throw TraceError(name + ": cannot be read: " + error.code().message());
    }
}

TracedRun readTrace(const std::string& file) {
    std::string name;
    const std::string text = traceTextOf(file, name);
    return traceIn(text, name);
}

TracedRun traceIn(const std::string& content, const std::string& path) {
    std::istringstream text(content);
    RunBuilder builder;
    std::size_t number = 0;
    for (std::string line; std::getline(text, line);) {
        if (!line.empty() && line.back() == ',') line.pop_back();
        ++number;
        if (number == 1 && line != "[") throw TraceError(path + ": " + kNoTrace);
        if (line == "[" || line == "]") continue;
        const bool isLast = text.peek() == std::istringstream::traits_type::eof();
        try {
            const Json event = eventIn(line);
            if (event.is_discarded() && isLast && builder.hasHeader())
                break;  // the line was cut off while it was written
            if (event.is_discarded()) throw std::invalid_argument("not an event of a trace");
            builder.add(event);
        } catch (const Json::exception&) {
            refuse(path, number, builder.hasHeader() ? kWrongPart : kNoTrace);
        } catch (const std::invalid_argument& problem) {
            refuse(path, number, problem.what());
        }
    }
    if (!builder.hasHeader()) throw TraceError(path + ": " + kNoTrace);
    return builder.take();
}

}  // namespace vexa::runner
