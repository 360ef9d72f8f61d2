#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace vexa::runner {

/// A command for an add-on.
struct MacroCommand {
    std::string place;    ///< `FILE:LINE`, where it was read; empty if it was not read from a file
    std::string addOnId;  ///< the add-on that runs it
    std::string text;     ///< the command, as written
};

/// What the reader does with a command of an add-on that is not loaded.
enum class UnknownId_e {
    RefusesFile,  ///< it is a problem of the file
    IsRead        ///< it is read like any other command
};

/// A macro file, read and checked.
struct MacroFile {
    std::string name;                    ///< as messages show it
    std::vector<MacroCommand> commands;  ///< in the order of the file
    std::vector<std::string> problems;   ///< one message each; empty if the file can be run

    /// `FILE:LINE`, the form that editors jump to.
    std::string place(std::size_t line) const;
};

/// The command of a line: the first word is the add-on's id, and the rest is the text. Both are empty for a blank line
/// and for a comment.
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
/// may be a pipe or a device. \param addOnIds  the loaded add-ons. \param unknownId what to do with the lines of other
/// add-ons.
MacroFile readMacroFile(const std::string& path, const std::set<std::string>& addOnIds,
                        UnknownId_e unknownId = UnknownId_e::RefusesFile);

}  // namespace vexa::runner
