#include "commands/explain/AttachPage.h"

#include "terminal/WrappedText.h"
#include "vexastandin/Finding.h"

namespace vexa::runner {
namespace {

constexpr std::size_t kPageWidth = 119;

constexpr const char* kPage = R"(# Checking add-ons in another host

<!-- Printed by `vexa-standin explain --attach --markdown`; a test compares the two. -->

`vexa-standin attach` starts a program that loads add-ons, for example the real host, and checks every host call of
these add-ons against [the host's contract](contract.md). You change neither the program nor the add-ons.

```
$ vexa-standin attach --strict -- ./host --batch sweep.macro
command 3: STATS: error: VexaUtilLockStart has no matching VexaUtilLockFinish in the command [unbalanced-lock]
    first: call 7, VexaUtilLockStart, in "STATS MEAN ZONES = '1-3'", command 3, thread 1
           at src/Mean.cpp:42, in MeanCommand::execute
    seen:  the end of "STATS MEAN ZONES = '1-3'", command 3, thread 1
           at src/AddOn.cpp:12, in execute
    hint:  Use an AddOnIdLock. It releases the lock on every return and on every exception.
```

The findings are those of `vexa-standin run`. The runner knows no macro file here, so it names a command by its number,
counted from 1, and its text. A failed command is shown with its message, and with
[the line of your source](source-lines.md) where it failed.

Write `--` before the program, so that the runner does not take the options of the program for its own. The program may
be a script that starts the host. The runner then watches every host that the script starts.

## Options

| Option                 | Meaning                                                                                    |
|------------------------|--------------------------------------------------------------------------------------------|
| `--strict`             | A finding with severity error makes the exit status 3.                                     |
| `--warnings-as-errors` | A finding of any severity makes the exit status 3.                                         |
| `--suppress RULE`      | Ignore findings of this rule.                                                              |
| `--stacks`             | Show the whole stacks of findings, crashes and hangs.                                      |
| `--timeout SECONDS`    | End the host if a command, or the loading or unloading of an add-on, takes longer.         |
| `--no-project-file`    | Do not read the project file `vexa-standin.toml`. Its time limit has no effect here.       |
| `--log FILE`           | Write findings and notes to a file, for a program that needs the terminal for itself.      |
| `--trace FILE`         | Write every call as [a trace event](trace.md). `vexa-standin report` makes a page of them. |
| `--trace-text FILE`    | Write every call as a line of text.                                                        |
| `--entry NAME`         | The function that the host asks add-ons for. The default is `vexaAddOn`.                   |

The exit status is that of the program, or 128 and the number of the signal that ended it. It is 3 if `--strict` is
given and an add-on broke the contract, 4 if `--timeout` ended a host, and 2 if the runner could not start the program
or write a file. A program that loads no add-on is not checked; the runner says so.

## Crashes and hangs

If a signal ends a host in which an add-on is loaded, the runner names the signal, the work of the add-ons, the line of
the add-on's source and the stack, as [after a crash in a run](crashes.md). After the time limit it shows the stacks of
all threads. To see a crash, the runner traces the host with `ptrace` from the loading of the first add-on on. If the
runner ends, the host goes on.

- A host that runs under another debugger, such as gdb or strace, has no stack here: a process has only one tracer. For
  the same reason, no debugger can attach to the host later. Start it in the debugger instead:
  `vexa-standin attach -- gdb --args ./host`.
- A host thread that receives hundreds of signals within a second, such as those of a fast timer, is no longer traced.
- A host with the leak sanitizer is not traced, because the sanitizer would fail. The message says so.

## Requirements

The program runs on x86-64 Linux and uses glibc 2.35 or later. The runner refuses to start a program that is linked
statically, that is built for another machine, that uses another C library, or that runs with other privileges (setuid,
setgid or file capabilities). It judges a script by its interpreter.

## What changes for the program

The runner loads a library, the *layer*, into the program. The loader of the system (`LD_AUDIT`) does this before the
program starts, and lets the layer see which shared objects the program loads. The layer has a C library and a C++
library of its own.

- The layer changes no output, result, `errno`, floating-point state or signal mask. Exceptions and jumps pass through
  it. Threads may call the host at the same time.
- The layer checks only calls of the host's functions. All other calls are as fast as before.
- The program and its child processes have three more environment variables, whose names start with `VEXA_LAYER_`, and
  another value of `LD_AUDIT`. The loader prints a message if a child process is a 32-bit program.
- The program has one more open file after it has loaded the first add-on. If the program closes that file, the layer
  opens it again.
- A signal handler may call the host. If it interrupts a check, it must return: a jump out of it would leave the layer
  locked.
- With `--trace` or `--trace-text`, the program waits while the runner writes the trace. If the runner ends, the program
  continues without it.
- The runner receives each signal of a host with add-ons first, and passes it on. Threads start a little later.
)";

constexpr const char* kLimits = R"(
## What is not checked

In a host that is not the stand-in, these rules are checked in part or not at all:

)";

constexpr const char* kOtherLimits = R"(
The layer does not see:

)";

}  // namespace

std::string attachLimits(std::size_t width) {
    std::string text;
    for (const standin::Rule& rule : standin::rules()) {
        if (*rule.unseen != '\0') text += std::string(rule.name) + '\n' + wrapped(rule.unseen, width, "  ") + '\n';
    }
    text += "Not seen, whatever the rule:\n";
    for (const char* const limit : standin::uncheckedInOtherHosts()) text += wrapped(limit, width, "  - ");
    return text;
}

std::string attachPage() {
    std::string page = std::string(kPage) + kLimits;
    for (const standin::Rule& rule : standin::rules()) {
        if (*rule.unseen == '\0') continue;
        page += wrapped('`' + std::string(rule.name) + "`: " + rule.unseen, kPageWidth, "- ");
    }
    page += kOtherLimits;
    for (const char* const limit : standin::uncheckedInOtherHosts()) page += wrapped(limit, kPageWidth, "- ");
    return page;
}

}  // namespace vexa::runner
