#include "commands/explain/ContractPage.h"

#include <string_view>

#include "terminal/WrappedText.h"
#include "vexastandin/Finding.h"

namespace vexa::runner {
namespace {

constexpr std::size_t kWidth = 119;

constexpr const char* kIntroduction = R"(# The host's contract

<!-- Printed by `vexa-standin explain --markdown`; a test compares the two. -->

The stand-in host sees every call that an add-on makes, and checks it against the rules below. What breaks one of them
is a *finding*: it says what happened, in which command, at which of the calls, what came before, and how to mend it.

```
$ vexa-standin run sweep.macro --addon ./libstats.so --strict
sweep.macro:3: STATS: error: the command ended without VexaUtilLockFinish after VexaUtilLockStart [unbalanced-lock]
    first: call 7, VexaUtilLockStart, in "STATS MEAN ZONES = '1-3'", sweep.macro:3, thread 1
    seen:  the end of "STATS MEAN ZONES = '1-3'", sweep.macro:3, thread 1
    hint:  Hold the lock by an AddOnIdLock, which gives it back on every way out, also when an exception passes.
```

Of one rule and add-on ten findings are shown, and the others counted. Argument lists and host strings live within one
command; mutexes and sets may live until the add-on's shutdown. Nothing is killed for a finding: the run goes on.

## What to do about findings

| Option of `run`        | Project file                  | Meaning                                              |
|------------------------|-------------------------------|------------------------------------------------------|
| `--strict`             | `strict = true`               | a finding of severity error makes the exit status 3  |
| `--warnings-as-errors` | `warnings-as-errors = true`   | the same, and for a warning, too                     |
| `--suppress RULE`      | `suppress = ["RULE", "RULE"]` | breaches of these rules pass                         |
| `--timeout SECONDS`    | `timeout = 2.5`               | a command that takes longer makes the exit status 4  |
| `--no-project-file`    |                               | no project file is looked for                        |

A rule that is suppressed for nothing is told at the end. A command that takes too long ends the run: it is told with
the host call that it made last, and what was recorded up to then is written.

The project file is `vexa-standin.toml`, in the current folder or in the nearest one above it that has one. The command
line goes before it, by `--no-strict` and `--no-warnings-as-errors`, too; the rules to suppress are those of both.

With `--strict` the commands that the add-ons record, recorded to a file or not, are run again when the macro has been
run: in order, in a new session of the add-ons, with recording on. Each must be accepted, and record the same text. What
they print, and their dialogs, are not shown; the files they write are written again.

`vexa-standin explain` lists the rules, `vexa-standin explain RULE` explains one.
)";

constexpr const char* kUnchecked = R"(
## What is not checked

These mistakes the stand-in cannot see:

)";

const char* nameOf(standin::Severity_e severity) {
    return severity == standin::Severity_e::Error ? "Error" : "Warning";
}

std::string sectionOf(const standin::Rule& rule) {
    return "\n### " + std::string(rule.name) + "\n\n" +
           wrapped(std::string(nameOf(rule.severity)) + ". **" + rule.summary + "** " + rule.why, kWidth) + '\n' +
           wrapped("To mend it: " + std::string(rule.hint), kWidth);
}

}  // namespace

std::string contractPage() {
    std::string page = kIntroduction;
    std::string_view family;
    for (const standin::Rule& rule : standin::rules()) {
        if (family != rule.family) page += "\n## " + std::string(rule.family) + '\n';
        family = rule.family;
        page += sectionOf(rule);
    }
    page += kUnchecked;
    for (const char* const mistake : standin::uncheckedMistakes()) page += wrapped(mistake, kWidth, "- ");
    return page;
}

}  // namespace vexa::runner
