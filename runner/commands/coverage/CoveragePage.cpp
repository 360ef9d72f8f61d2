#include "commands/coverage/CoveragePage.h"

#include <string_view>
#include <vector>

#include "commands/coverage/CoverageTable.h"
#include "coverage/RuleCoverage.h"
#include "text/Joined.h"
#include "text/Printable.h"
#include "vexastandin/Finding.h"

namespace vexa::runner {
namespace {

// The file of page/ as bytes: a string literal of this length is not portable.
constexpr char kPage[] = {
#include "coverage.html.inc"
};

// Names come from macros and add-ons.
std::string escaped(const std::string& text) {
    std::string html;
    for (const char c : printableLine(text)) {
        switch (c) {
            case '<': html += "&lt;"; break;
            case '>': html += "&gt;"; break;
            case '&': html += "&amp;"; break;
            case '"': html += "&quot;"; break;
            default: html += c;
        }
    }
    return html;
}

std::string row(const std::vector<std::string>& cells, bool isMissing = false) {
    std::string html = isMissing ? "<tr class=\"missing\">" : "<tr>";
    for (const std::string& cell : cells) html += "<td>" + escaped(cell) + "</td>";
    return html + "</tr>\n";
}

std::string htmlFigureRow(const std::string& name, const Share& share) {
    return row({name, std::to_string(share.seen) + " of " + std::to_string(share.all), percentText(share) + " %"});
}

std::string figureRows(const Coverage& coverage) {
    const CoverageFigures figures = figuresOf(coverage);
    return htmlFigureRow("host calls used", figures.calls) + htmlFigureRow("outcomes seen", figures.outcomes) +
           htmlFigureRow("rules tested", figures.rules) + htmlFigureRow("total", figures.total());
}

std::string commandRows(const Coverage& coverage) {
    std::string rows;
    for (const auto& [name, command] : coverage.commands) {
        std::vector<std::string> calls;
        for (const auto& [function, answers] : command.calls) {
            calls.push_back(answers.empty() ? function : function + " (" + joined(answers, ", ") + ')');
        }
        rows += row({name, joined(command.ends, ", "), joined(command.options, ", "), joined(calls, ", ")});
    }
    return rows;
}

std::string callRows(const Coverage& coverage) {
    const auto calls = callsOf(coverage);
    std::string rows;
    for (const standin::HostFunctionInfo& function : standin::hostFunctions()) {
        const auto call = calls.find(function.name);
        const bool isUsed = call != calls.end();
        const Names seen = isUsed ? call->second : Names();
        const std::string missing = missingAnswers(seen, function.result);
        rows += row({function.name, isUsed ? "used" : "not used", joined(seen, ", "), missing},
                    !isUsed || !missing.empty());
    }
    return rows;
}

std::string ruleRows(const Coverage& coverage) {
    std::string rows;
    for (const standin::Rule& rule : standin::rules()) {
        const bool isTested = coverage.rules.count(rule.name) != 0;
        rows += row({rule.name, isTested ? "tested" : "not tested", rule.summary, whatTouches(rule.name)}, !isTested);
    }
    return rows;
}

void replaceOnce(std::string& page, std::string_view placeholder, const std::string& text) {
    page.replace(page.find(placeholder), placeholder.size(), text);
}

}  // namespace

std::string coveragePage(const Coverage& coverage) {
    std::string page(kPage, sizeof kPage);
    // From the last to the first, so that a name of an add-on is not taken for a placeholder.
    replaceOnce(page, "<!-- RULES -->", ruleRows(coverage));
    replaceOnce(page, "<!-- CALLS -->", callRows(coverage));
    replaceOnce(page, "<!-- COMMANDS -->", commandRows(coverage));
    replaceOnce(page, "<!-- FIGURES -->", figureRows(coverage));
    return page;
}

}  // namespace vexa::runner
