#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace vexa::runner {

/// A command for an add-on.
struct MacroCommand {
    std::string place;    ///< `FILE:LINE`; empty if the command was not read from a file
    std::string addOnId;  ///< the add-on that runs it
    std::string text;     ///< the command, as written
};

/// How the reader treats a command of an add-on that is not loaded.
enum class UnknownId_e {
    RefusesFile,  ///< the command is a problem of the file
    IsRead        ///< the command is read like any other
};

/// The contents of a macro file.
struct MacroFile {
    std::string name;                    ///< as messages show it
    std::vector<MacroCommand> commands;  ///< the commands, in the order of the file
    std::vector<std::string> problems;   ///< one message each; empty if the file can be run

    /// Returns `FILE:LINE`, the form that editors can jump to.
    std::string place(std::size_t line) const;
};

/// Returns the command of a line: the first word is the add-on's id, and the rest is the text. Both are empty for a
/// blank line and for a comment.
MacroCommand commandOfLine(std::string_view line);

/// Reads the macro file \p path, or the standard input if \p path is `-`, and checks every line of it.
///
///     # a comment                 skipped, like a blank line
///     STATS LOAD FILE = 'a b'     the command "LOAD FILE = 'a b'" of the add-on STATS
///       STATS   LOAD              the command "LOAD"
///     STATS                       refused: no command
///     OTHER LOAD                  refused, unless OTHER is one of the add-ons
///
/// Lines end with LF or CRLF; the last one may end with the file. A byte-order mark at the start is skipped. The reader
/// refuses a line with a carriage return before its end. It refuses a line with a NUL byte and stops there. The file
/// may be a pipe or a device.
/// \param addOnIds  the ids of the loaded add-ons.
/// \param unknownId how to treat the lines of other add-ons.
MacroFile readMacroFile(const std::string& path, const std::set<std::string>& addOnIds,
                        UnknownId_e unknownId = UnknownId_e::RefusesFile);

/// Reads the text of a macro file in the same way.
/// \param name the file, as messages show it
MacroFile macroIn(std::string_view text, const std::string& name, const std::set<std::string>& addOnIds,
                  UnknownId_e unknownId = UnknownId_e::RefusesFile);

}  // namespace vexa::runner
