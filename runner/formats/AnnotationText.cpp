#include "formats/AnnotationText.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <string_view>

#include "system/files/PathFromHere.h"

namespace vexa::runner {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kIssueIndent = 2;
constexpr std::string_view kEscapedInMessage = "%\r\n";
constexpr std::string_view kEscapedInProperty = "%\r\n:,";

std::string escaped(const std::string& text, std::string_view escapedCharacters) {
    std::string result;
    for (const char c : text) {
        std::array<char, 4> code{};
        std::snprintf(code.data(), code.size(), "%%%02X", static_cast<unsigned char>(c));
        result += escapedCharacters.find(c) == std::string_view::npos ? std::string(1, c) : code.data();
    }
    return result;
}

std::string lineOf(const ProblemPlace& place) { return std::to_string(std::max<std::size_t>(place.line, 1)); }

// Most problems are about a whole line.
std::string columnOf(const ProblemPlace& place) {
    return place.column == 1 ? "" : ",col=" + std::to_string(place.column);
}

std::string workflowCommand(const Problem& problem) {
    return std::string("::") + nameOf(problem.severity) +
           " file=" + escaped(pathFromHere(problem.place.file), kEscapedInProperty) + ",line=" + lineOf(problem.place) +
           columnOf(problem.place) + ",title=" + escaped(problem.rule, kEscapedInProperty) +
           "::" + escaped(wholeText(problem), kEscapedInMessage) + '\n';
}

Json issueObject(const Problem& problem, const std::string& fingerprint) {
    return {{"description", problem.message},
            {"check_name", problem.rule},
            {"fingerprint", fingerprint},
            {"severity", problem.severity == standin::Severity_e::Error ? "major" : "minor"},
            {"location",
             {{"path", pathFromHere(problem.place.file)},
              {"lines", {{"begin", std::max<std::size_t>(problem.place.line, 1)}}}}}};
}

}  // namespace

std::string githubText(const ProblemReport& report) {
    std::string text;
    for (const Problem& problem : report.problems) text += workflowCommand(problem);
    return text;
}

std::string gitlabText(const ProblemReport& report) {
    Json issues = Json::array();
    const std::vector<std::string> fingerprints = fingerprintsOf(report.problems);
    for (std::size_t i = 0; i != report.problems.size(); ++i) {
        issues.push_back(issueObject(report.problems[i], fingerprints[i]));
    }
    return issues.dump(kIssueIndent, ' ', false, Json::error_handler_t::replace) + '\n';
}

}  // namespace vexa::runner
