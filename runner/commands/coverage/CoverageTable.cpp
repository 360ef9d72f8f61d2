#include "commands/coverage/CoverageTable.h"

#include <vector>

#include "coverage/RuleCoverage.h"
#include "text/Columns.h"
#include "text/Joined.h"
#include "text/Printable.h"
#include "vexastandin/Finding.h"

namespace vexa::runner {
namespace {

using Row = std::vector<std::string>;

std::string shownNames(const Names& names) { return names.empty() ? "-" : printableLine(joined(names, ", ")); }

Row figureRow(const std::string& name, const Share& share) {
    return {name, std::to_string(share.seen) + " of " + std::to_string(share.all), percentText(share) + " %"};
}

std::string figuresText(const CoverageFigures& figures) {
    return columnsOf({figureRow("host calls used", figures.calls), figureRow("outcomes seen", figures.outcomes),
                      figureRow("rules tested", figures.rules), figureRow("total", figures.total())});
}

std::string commandsText(const Coverage& coverage) {
    std::vector<Row> rows = {{"COMMAND", "CALLS", "ENDED", "OPTIONS"}};
    for (const auto& [name, command] : coverage.commands) {
        rows.push_back({printableLine(name), std::to_string(command.calls.size()), shownNames(command.ends),
                        shownNames(command.options)});
    }
    return columnsOf(rows);
}

std::string listText(const std::string& title, const std::vector<std::string>& lines) {
    if (lines.empty()) return "";
    std::string text = '\n' + title + ":\n";
    for (const std::string& line : lines) text += "  " + line + '\n';
    return text;
}

std::string missingCalls(const Coverage& coverage) {
    const auto calls = callsOf(coverage);
    std::vector<std::string> unused;
    std::vector<std::string> unseen;
    for (const standin::HostFunctionInfo& function : standin::hostFunctions()) {
        const auto call = calls.find(function.name);
        if (call == calls.end()) {
            unused.emplace_back(function.name);
        } else if (const std::string missing = missingAnswers(call->second, function.result); !missing.empty()) {
            unseen.push_back(std::string(function.name) + ": " + missing);
        }
    }
    return listText("outcomes not seen of the host calls used", unseen) + listText("host calls not used", unused);
}

std::string missingRules(const Coverage& coverage) {
    std::vector<std::string> lines;
    for (const standin::Rule& rule : standin::rules()) {
        if (coverage.rules.count(rule.name) != 0) continue;
        lines.push_back(std::string(rule.name) + ": needs " + whatTouches(rule.name));
    }
    return listText("rules not tested", lines);
}

}  // namespace

std::string percentText(const Share& share) {
    constexpr std::size_t kTenthsOfAll = 1000;
    const std::size_t tenths = share.all == 0 ? 0 : share.seen * kTenthsOfAll / share.all;
    return std::to_string(tenths / 10) + '.' + std::to_string(tenths % 10);
}

std::string missingAnswers(const Names& seen, standin::ResultKind_e kind) {
    std::vector<std::string> missing;
    for (const std::string& answer : answersOf(kind)) {
        if (seen.count(answer) == 0) missing.push_back(answer);
    }
    return joined(missing, ", ");
}

std::string coverageTable(const Coverage& coverage) {
    return figuresText(figuresOf(coverage)) + '\n' + commandsText(coverage) + missingCalls(coverage) +
           missingRules(coverage);
}

}  // namespace vexa::runner
