#include "formats/SarifText.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string_view>
#include <system_error>

#include "system/files/PathFromHere.h"

namespace vexa::runner {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kSarifIndent = 2;
constexpr const char* kTool = "vexa-standin";
constexpr const char* kRoot = "%SRCROOT%";

Json textObject(const std::string& text) { return {{"text", text}}; }

std::string asUri(const std::string& path) {
    constexpr std::string_view kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    std::string uri = path.compare(0, 1, "/") == 0 ? "file://" : "";
    for (const char c : path) {
        std::array<char, 4> code{};
        std::snprintf(code.data(), code.size(), "%%%02X", static_cast<unsigned char>(c));
        uri += kPlain.find(c) == std::string_view::npos ? code.data() : std::string(1, c);
    }
    return uri;
}

Json artifactLocation(const std::string& file) {
    const std::string path = pathFromHere(file);
    Json location = {{"uri", asUri(path)}};
    if (path.compare(0, 1, "/") != 0) location["uriBaseId"] = kRoot;
    return location;
}

// The bytes that continue a UTF-8 character do not count.
std::size_t characters(const std::string& line) {
    const auto count = std::count_if(line.begin(), line.end(), [](char c) { return (c & 0xC0) != 0x80; });
    return static_cast<std::size_t>(count);
}

Json physicalLocation(const ProblemPlace& place, std::size_t width) {
    Json location = {{"artifactLocation", artifactLocation(place.file)}};
    const std::size_t line = std::max<std::size_t>(place.line, 1);
    location["region"] = {{"startLine", line},
                          {"startColumn", place.column},
                          {"endLine", line},
                          {"endColumn", place.column + std::max<std::size_t>(width, 1)}};
    return location;
}

Json ruleObject(const standin::Rule& rule) {
    const std::string level = nameOf(rule.severity);
    const std::string help = std::string(rule.why) + ' ' + rule.hint;
    return {{"id", rule.name},
            {"name", rule.name},
            {"shortDescription", textObject(rule.summary)},
            {"fullDescription", textObject(rule.why)},
            {"help", {{"text", help}, {"markdown", help}}},
            {"defaultConfiguration", {{"level", level}}},
            {"properties", {{"problem.severity", level}, {"tags", Json::array({rule.family})}}}};
}

class Rules {
public:
    explicit Rules(const ProblemReport& report) : m_report(report) {}

    // Returns the index of the rule in list().
    std::size_t indexOf(const std::string& name) {
        const auto isCalled = [&](const Json& rule) { return rule.at("id") == name; };
        const auto found = std::find_if(m_list.begin(), m_list.end(), isCalled);
        if (found != m_list.end()) return static_cast<std::size_t>(found - m_list.begin());
        const standin::Rule* const rule = findRule(m_report, name);
        m_list.push_back(rule == nullptr ? Json{{"id", name}} : ruleObject(*rule));
        return m_list.size() - 1;
    }
    const Json& list() const { return m_list; }

private:
    const ProblemReport& m_report;
    Json m_list = Json::array();
};

Json resultObject(const Problem& problem, std::size_t ruleIndex, const std::string& fingerprint) {
    const Json place = {{"physicalLocation", physicalLocation(problem.place, characters(problem.place.text))}};
    Json result = {{"ruleId", problem.rule},
                   {"ruleIndex", ruleIndex},
                   {"level", nameOf(problem.severity)},
                   {"message", textObject(wholeText(problem))},
                   {"locations", Json::array({place})},
                   {"partialFingerprints", {{"primaryLocationLineHash", fingerprint}}}};
    if (!problem.debug.empty()) result["properties"] = {{"debug", problem.debug}};
    if (!problem.other) return result;
    result["relatedLocations"] = Json::array({{{"id", 1},
                                               {"physicalLocation", physicalLocation(*problem.other, 1)},
                                               {"message", textObject(problem.other->text)}}});
    return result;
}

std::string currentFolderUri() {
    std::error_code error;
    return asUri((std::filesystem::current_path(error) / "").string());
}

}  // namespace

std::string sarifText(const ProblemReport& report) {
    Rules rules(report);
    Json results = Json::array();
    const std::vector<std::string> fingerprints = fingerprintsOf(report.problems);
    for (std::size_t i = 0; i != report.problems.size(); ++i) {
        const Problem& problem = report.problems[i];
        results.push_back(resultObject(problem, rules.indexOf(problem.rule), fingerprints[i]));
    }
    const Json driver = {{"name", kTool},
                         {"version", VEXA_STANDIN_VERSION},
                         {"semanticVersion", VEXA_STANDIN_VERSION},
                         {"rules", rules.list()}};
    Json run = {
        {"tool", {{"driver", driver}}},
        {"automationDetails", {{"id", std::string(kTool) + '/' + report.command + '/'}}},
        {"invocations", Json::array({{{"executionSuccessful", report.hasRun}, {"exitCode", report.exitStatus}}})},
        {"originalUriBaseIds", {{kRoot, {{"uri", currentFolderUri()}}}}},
        {"columnKind", "unicodeCodePoints"},
        {"properties", Json::object()},
        {"results", results}};
    for (const auto& [name, value] : report.properties) run["properties"][name] = value;
    const Json text = {{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"},
                       {"version", "2.1.0"},
                       {"runs", Json::array({run})}};
    return text.dump(kSarifIndent) + '\n';
}

}  // namespace vexa::runner
