#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

namespace vexa::tests {

using Json = nlohmann::ordered_json;

/// Returns the events of a finished trace.
/// \throws nlohmann::json::exception if \p text is not JSON.
inline Json traceEvents(const std::string& text) { return Json::parse(text); }

/// Returns the events of an unfinished trace, in which the end of the array is missing.
inline Json cutOffTraceEvents(const std::string& text) { return Json::parse(text + ']'); }

/// Returns the \p events whose member \p name is \p value, in their order.
inline std::vector<Json> eventsWhere(const Json& events, const std::string& name, const std::string& value) {
    std::vector<Json> found;
    for (const Json& event : events) {
        if (event.value(name, "") == value) found.push_back(event);
    }
    return found;
}

/// Returns the mistakes in the spans of \p events, one per line: an end without a start, a start without an end, an end
/// of another span than the last one started, a time that goes backwards on its track.
inline std::vector<std::string> nestingProblems(const Json& events) {
    std::vector<std::string> problems;
    std::map<long, std::vector<std::string>> open;
    std::map<long, double> last;
    for (const Json& event : events) {
        const std::string phase = event.at("ph");
        if (phase != "B" && phase != "E") continue;
        const long track = event.at("tid");
        const std::string name = event.at("name");
        if (event.at("ts") < last[track]) problems.push_back("back in time: " + name);
        last[track] = event.at("ts");
        std::vector<std::string>& names = open[track];
        if (phase == "B") {
            names.push_back(name);
        } else if (names.empty()) {
            problems.push_back("no beginning: " + name);
        } else {
            if (names.back() != name) problems.push_back("crossed: " + name + " ends within " + names.back());
            names.pop_back();
        }
    }
    for (const auto& [track, names] : open) {
        for (const std::string& name : names) problems.push_back("no end: " + name);
    }
    return problems;
}

}  // namespace vexa::tests
