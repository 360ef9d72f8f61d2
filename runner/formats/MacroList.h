#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace vexa::runner {

/// A list of macro files cannot be used. The message is one line, which starts with the list.
class MacroListError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads a list of macro files: one name per line, relative to the current folder. Skips blank lines. A name may be in
/// the list more than once.
/// \param path the list; `-` is the standard input
/// \throws MacroListError "LIST: cannot be read: REASON", "LIST: it names no macro file", or
///         "LIST:LINE: expected a file, not the standard input".
std::vector<std::string> readMacroList(const std::string& path);

/// Replaces each argument `@LIST` by the macro files of the list. The files keep the order of the arguments.
/// \throws MacroListError
std::vector<std::string> macroFilesOf(const std::vector<std::string>& arguments);

/// Returns true if \p argument has the form `@LIST`.
bool isMacroList(const std::string& argument);

}  // namespace vexa::runner
