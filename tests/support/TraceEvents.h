#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

namespace vexa::tests {

using Json = nlohmann::ordered_json;

/// The events of a trace that was finished.
/// \throws nlohmann::json::exception when \p text is no JSON.
inline Json traceEvents(const std::string& text) { return Json::parse(text); }

/// The events of a trace that was not finished: the array lacks its end.
inline Json cutOffTraceEvents(const std::string& text) { return Json::parse(text + ']'); }

/// Those of \p events whose member \p name is \p value, in their order.
inline std::vector<Json> eventsWhere(const Json& events, const std::string& name, const std::string& value) {
    std::vector<Json> found;
    for (const Json& event : events) {
        if (event.value(name, "") == value) found.push_back(event);
    }
    return found;
}

/// What is wrong with the spans of \p events, a line each: an end without its beginning, a beginning without its end,
/// an end of another span than the one begun last, a time that runs backwards on its track.
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
