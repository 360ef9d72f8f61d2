#pragma once

#include "options/Command.h"

namespace vexa::runner {

/// `attach` runs a program that loads add-ons, and checks their calls.
Command attachCommand();

/// `check` runs the tests of checkTests() on an add-on.
Command checkCommand();

/// `compare-hosts` prints the differences between the facts of two facts files.
Command compareHostsCommand();
/// `coverage` shows how much of the host's contract runs have used.
Command coverageCommand();

/// `debug` starts gdb with a run of a macro file, which stops at a place that the user names.
Command debugCommand();
/// `debugged` is the run in that gdb. The help does not list it.
Command debuggedCommand();

/// `describe` drafts the description of an add-on's commands, from macros.
Command describeCommand();

/// `diff` compares the calls in two traces.
Command diffCommand();

/// `docs` prints a page about the commands of an add-on, made from their description.
Command docsCommand();

/// `explain` prints the rules of the host's contract, or explains one of them.
Command explainCommand();

/// `lint` finds mistakes in macro files by the descriptions of add-ons, without loading an add-on.
Command lintCommand();

/// `list` prints a table of add-ons in the order given: id, title, file.
Command listCommand();

/// `lsp` helps editors with macro files, as a language server.
Command lspCommand();

/// `manual` prints the manual page and the shell completions for the build to install. The help does not list it.
/// \param program  the program that the manual describes; it must outlive the returned command
Command manualCommand(const Command& program);

/// `new` writes the project of a new add-on.
Command newCommand();

/// `probe` asks the stand-in host all questions of the probe, and writes the facts.
Command probeCommand();

/// `random` prints a macro of random commands, made from the description of an add-on.
Command randomCommand();

/// `repl` runs the commands that the user types.
Command replCommand();

/// `report` makes an HTML page from a trace.
Command reportCommand();

/// `results` merges the results of many runs.
Command resultsCommand();

/// `run` runs macro files. Only add-ons print on the standard output. After SIGINT, the current command stops and no
/// other command starts. The runner still writes the recorded commands.
Command runCommand();

/// `schema` prints the JSON Schema of descriptions.
Command schemaCommand();

/// `style` prints the kind and the value that add-ons get from the library for a setting of a style file.
Command styleCommand();

/// `test` compares the results of macros with the expected results.
Command testCommand();

}  // namespace vexa::runner
