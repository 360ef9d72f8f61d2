#include "ExplainCommand.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Console.h"
#include "ContractPage.h"
#include "RuleNames.h"
#include "SeverityName.h"
#include "WrappedText.h"
#include "vexastandin/Finding.h"

namespace vexa::runner {
namespace {

constexpr const char* kExplainFooter = R"(Example:
  vexa-standin explain unbalanced-lock

Exit status:
  0  all went well
  2  wrong usage, or there is no such rule)";

constexpr std::size_t kWidth = 79;

struct ExplainOptions {
    std::optional<std::string> rule;  // all of them without
    bool markdown = false;            // the page of all rules
};

std::string padded(std::string text, std::size_t width) {
    text.resize(std::max(width, text.size()), ' ');
    return text;
}

std::string listOfRules() {
    std::size_t nameWidth = 0;
    for (const standin::Rule& rule : standin::rules()) nameWidth = std::max(nameWidth, std::strlen(rule.name));
    std::string list;
    std::string_view family;
    for (const standin::Rule& rule : standin::rules()) {
        if (family != rule.family) list += (family.empty() ? "" : "\n") + std::string(rule.family) + '\n';
        family = rule.family;
        list += "  " + padded(rule.name, nameWidth) + "  " + padded(nameOf(rule.severity), std::strlen("warning")) +
                "  " + rule.summary + '\n';
    }
    return list;
}

std::string explanationOf(const standin::Rule& rule) {
    return std::string(rule.name) + ", " + nameOf(rule.severity) + "\n\n" + wrapped(rule.summary, kWidth, "  Rule:  ") +
           wrapped(rule.why, kWidth, "  Why:   ") + wrapped(rule.hint, kWidth, "  Hint:  ");
}

ExitStatus_e print(const std::string& text) {
    std::fputs(text.c_str(), stdout);
    return ExitStatus_e::AllWell;
}

ExitStatus_e explain(const ExplainOptions& options) {
    if (options.markdown) return print(contractPage());
    if (!options.rule) return print(listOfRules());
    const standin::Rule* const rule = standin::findRule(*options.rule);
    if (rule != nullptr) return print(explanationOf(*rule));
    tell(kProgramName, noSuchRule(*options.rule));
    return ExitStatus_e::BadUsageOrInput;
}

}  // namespace

void addExplainCommand(CLI::App& app, Action& chosen) {
    const auto options = std::make_shared<ExplainOptions>();
    CLI::App& explainCommand = *app.add_subcommand("explain", "Explain the rules of the host's contract");
    explainCommand.footer(kExplainFooter);
    CLI::Option* const rule = explainCommand.add_option("RULE", options->rule, "The rule; all are listed without one");
    rule->type_name("");
    explainCommand.add_flag("--markdown", options->markdown, "Print the page of all rules")->excludes(rule);
    explainCommand.callback([options, &chosen] { chosen = [options] { return explain(*options); }; });
}

}  // namespace vexa::runner
