#include "commands/Commands.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "commands/explain/AttachPage.h"
#include "options/ContractOptions.h"
#include "options/Refusals.h"
#include "options/UsageError.h"
#include "terminal/Console.h"
#include "terminal/Terminal.h"
#include "terminal/WrappedText.h"
#include "vexastandin/Finding.h"

namespace vexa::runner {
namespace {

constexpr const char* kExplainFooter = R"(Example:
  vexa-standin explain unbalanced-lock

Exit status:
  0  all went well
  2  wrong usage, or there is no such rule)";

struct ExplainOptions {
    std::optional<std::string> rule;  // the rule to explain; empty for a list of all rules
    bool markdown = false;            // print a page of the documentation
    bool attach = false;              // list what the command attach cannot see
};

std::string padded(std::string text, std::size_t width) {
    text.resize(std::max(width, text.size()), ' ');
    return text;
}

std::size_t outputWidth() { return textColumnsOf(STDOUT_FILENO) - 1; }

// Returns one line per rule. In a terminal, long lines are wrapped; in a narrow terminal the text is below the name.
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

constexpr std::size_t kRulesPageWidth = 119;

constexpr const char* kIntroduction = R"(# The host's contract

<!-- Printed by `vexa-standin explain --markdown`; a test compares the two. -->

The host's contract is the list of rules that an add-on must keep when it uses the host's C functions. The stand-in host
checks every call of an add-on against these rules. If a call breaks a rule, the stand-in reports a *finding*. The run
continues.

```
$ vexa-standin run sweep.macro --addon ./libstats.so --strict
sweep.macro:3: STATS: error: VexaUtilLockStart has no matching VexaUtilLockFinish in the command [unbalanced-lock]
    first: call 7, VexaUtilLockStart, in "STATS MEAN ZONES = '1-3'", sweep.macro:3, thread 1
           at src/Mean.cpp:42, in MeanCommand::execute
    seen:  the end of "STATS MEAN ZONES = '1-3'", sweep.macro:3, thread 1
           at src/AddOn.cpp:12, in execute
    hint:  Use an AddOnIdLock. It releases the lock on every return and on every exception.
```

A finding shows

- the macro line and the add-on, what is wrong, and the name of the rule;
- `first`: the call that started the problem;
- `seen`: the call or the event that showed the problem;
- below both, `at`: [the line of your source](source-lines.md);
- `hint`: how to fix it.

`vexa-standin explain` lists the rules. `vexa-standin explain RULE` explains one rule. For each rule and add-on, the
runner shows the first ten findings and counts the others.

## Options

| Option of `run`        | Project file                  | Meaning                                                    |
|------------------------|-------------------------------|------------------------------------------------------------|
| `--strict`             | `strict = true`               | A finding with severity error makes the exit status 3.     |
| `--warnings-as-errors` | `warnings-as-errors = true`   | A finding of any severity makes the exit status 3.         |
| `--suppress RULE`      | `suppress = ["RULE", "RULE"]` | Ignore findings of the rule. May be given more than once.  |
| `--stacks`             |                               | Show the whole stacks of findings, crashes and hangs.      |
| `--timeout SECONDS`    | `timeout = 2.5`               | A command that takes longer makes the exit status 4.       |
| `--no-project-file`    |                               | Do not read the project file.                              |

The project file is called `vexa-standin.toml`. The runner looks for it in the current folder and then in the folders
above. Options override the project file: `--no-strict` switches off `strict = true`, and `--no-warnings-as-errors`
switches off `warnings-as-errors = true`. The suppressed rules of both places are combined. At the end of the run, the
runner names the suppressed rules that had no finding.

If a command exceeds the time limit, the runner names its last host call, writes everything that was recorded up to
then, and ends.

With `--strict`, the runner also tests the recording after the macro, even without `--record`. It loads the add-ons
again and runs every command that they recorded, in order and with recording on. Each command must succeed and record
the same text again. The runner does not show the output and the dialogs of these commands, but the commands write their
files again.
)";

constexpr const char* kUnchecked = R"(
## What is not checked

The stand-in cannot detect these errors:

)";

std::string sectionOf(const standin::Rule& rule) {
    std::string severity = nameOf(rule.severity);
    severity.front() = static_cast<char>(std::toupper(severity.front()));
    return "\n### " + std::string(rule.name) + "\n\n" +
           wrapped(severity + ". **" + rule.summary + "** " + rule.why, kRulesPageWidth) + '\n' +
           wrapped("Fix: " + std::string(rule.hint), kRulesPageWidth);
}

// Returns the page docs/contract.md.
std::string contractPage() {
    std::string page = kIntroduction;
    std::string_view family;
    for (const standin::Rule& rule : standin::rules()) {
        if (family != rule.family) page += "\n## " + std::string(rule.family) + '\n';
        family = rule.family;
        page += sectionOf(rule);
    }
    page += kUnchecked;
    for (const char* const mistake : standin::uncheckedMistakes()) page += wrapped(mistake, kRulesPageWidth, "- ");
    return page;
}

std::string textOf(const ExplainOptions& options) {
    if (options.attach) return options.markdown ? attachPage() : attachLimits(outputWidth());
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
    command.add(argument("RULE", "The rule to explain; by default all rules are listed", &options->rule)
                    .suggest(ruleNames())
                    .exclude("--markdown"));
    command.add(flag({"--attach"}, "List what 'attach' cannot see, rule by rule", &options->attach));
    command.add(flag({"--markdown"},
                     "Print a page of the documentation: the rules, or with --attach the page of 'attach'",
                     &options->markdown)
                    .exclude("RULE"));
    command.check = [options] {
        if (options->attach && options->rule) throw UsageError("--attach cannot be used with RULE");
    };
    command.run = [options] { return explain(*options); };
    return command;
}

}  // namespace vexa::runner
