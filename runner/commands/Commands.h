#pragma once

#include "options/Command.h"

namespace vexa::runner {

/// `attach` runs a program that loads add-ons, and checks their calls.
Command attachCommand();

/// `check` runs the tests of checkTests() on an add-on.
Command checkCommand();

/// `compare-hosts` prints the differences between the facts of two facts files.
Command compareHostsCommand();

/// `explain` prints the rules of the host's contract, or explains one of them.
Command explainCommand();

/// `list` prints a table of add-ons in the order given: id, title, file.
Command listCommand();

/// `manual` prints the manual page and the completions of shells, which the build installs. The help does not show it.
/// \param program  the program that the manual describes; it must outlive the returned command
Command manualCommand(const Command& program);

/// `new` writes the project of a new add-on.
Command newCommand();

/// `probe` asks the stand-in host all questions of the probe, and writes the facts.
Command probeCommand();

/// `repl` runs the commands that the user types.
Command replCommand();

/// `report` makes a page for browsers from a trace.
Command reportCommand();

/// `run` runs macro files. Only add-ons print on the standard output. SIGINT stops the current command, and no other
/// command starts. The runner still writes what the add-ons recorded.
Command runCommand();

/// `style` prints a setting of a style file as add-ons get it from the library: its kind and its value.
Command styleCommand();

/// `test` compares what macros do with what they are expected to do.
Command testCommand();

}  // namespace vexa::runner
