#include "commands/Commands.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "commands/explain/ContractPage.h"
#include "options/ContractOptions.h"
#include "options/Refusals.h"
#include "terminal/Console.h"
#include "terminal/Terminal.h"
#include "terminal/WrappedText.h"
#include "text/SeverityName.h"
#include "vexastandin/Finding.h"

namespace vexa::runner {
namespace {

constexpr const char* kExplainFooter = R"(Example:
  vexa-standin explain unbalanced-lock

Exit status:
  0  all went well
  2  wrong usage, or there is no such rule)";

struct ExplainOptions {
    std::optional<std::string> rule;  // all of them without
    bool markdown = false;            // the page of all rules
};

std::string padded(std::string text, std::size_t width) {
    text.resize(std::max(width, text.size()), ' ');
    return text;
}

std::size_t outputWidth() { return textColumnsOf(STDOUT_FILENO) - 1; }

// A line a rule, which is continued below its text in a terminal. A narrow one has the text below the name.
std::string listOfRules() {
    constexpr std::size_t kLeastText = 40;
    const std::size_t width = isTerminal(STDOUT_FILENO) ? outputWidth() : std::string::npos;
    std::size_t nameWidth = 0;
    for (const standin::Rule& rule : standin::rules()) nameWidth = std::max(nameWidth, std::strlen(rule.name));
    std::string list;
    std::string_view family;
    for (const standin::Rule& rule : standin::rules()) {
        if (family != rule.family) list += (family.empty() ? "" : "\n") + std::string(rule.family) + '\n';
        family = rule.family;
        const std::string name = "  " + padded(rule.name, nameWidth) + "  ";
        const std::string start = name + padded(nameOf(rule.severity), std::strlen("warning")) + "  ";
        list += width >= start.size() + kLeastText
                    ? wrapped(rule.summary, width, start)
                    : name + nameOf(rule.severity) + '\n' + wrapped(rule.summary, width, "    ");
    }
    return list;
}

std::string explanationOf(const standin::Rule& rule) {
    return std::string(rule.name) + ", " + nameOf(rule.severity) + "\n\n" +
           wrapped(rule.summary, outputWidth(), "  Rule:  ") + wrapped(rule.why, outputWidth(), "  Why:   ") +
           wrapped(rule.hint, outputWidth(), "  Hint:  ");
}

std::string textOf(const ExplainOptions& options) {
    if (options.markdown) return contractPage();
    return options.rule ? explanationOf(*standin::findRule(*options.rule)) : listOfRules();
}

ExitStatus_e explain(const ExplainOptions& options) {
    if (options.rule && standin::findRule(*options.rule) == nullptr) {
        tell(kProgramName, noSuchRule(*options.rule));
        return ExitStatus_e::BadUsageOrInput;
    }
    print(textOf(options));
    return ExitStatus_e::AllWell;
}

}  // namespace

Command explainCommand() {
    const auto options = std::make_shared<ExplainOptions>();
    Command command{"explain", "Explain the rules of the host's contract", kExplainFooter};
    command.add(argument("RULE", "The rule to explain; without one, all rules are listed", &options->rule)
                    .suggest(ruleNames())
                    .exclude("--markdown"));
    command.add(flag({"--markdown"}, "Print the page of all rules", &options->markdown).exclude("RULE"));
    command.run = [options] { return explain(*options); };
    return command;
}

}  // namespace vexa::runner
