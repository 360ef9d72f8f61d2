#pragma once

#include <string>

namespace vexa::runner {

/// The names in the project of a new add-on.
struct ProjectNames {
    std::string name;   ///< the project, its target and its file: letters, digits, `_`, `-`, `.` and `+`
    std::string id;     ///< the id of the add-on in macros
    std::string title;  ///< the title for users; one line
};

/// Returns the names for a project in \p folder.
///
///     work/wake-probe    name wake-probe, id WAKEPROBE, title "Wake probe"
///     42                 name addon-42, id ADDON42, title "Addon 42"
///
/// \throws OutputError if the folder's name cannot be a CMake target: it has other characters, or CMake reserves
/// it, such as `test`.
ProjectNames namesFor(const std::string& folder);

/// Returns what is wrong with the id of a new add-on; empty if it is valid.
std::string whyNoId(const std::string& id);

/// Returns what is wrong with a title; empty if it is valid.
std::string whyNoTitle(const std::string& title);

/// Whether a new project has files for editors.
enum class EditorFiles_e {
    Written,  ///< of VS Code, clangd and Vim; they also colour macro files
    LeftOut
};

/// Writes the project of a new add-on to \p folder. The folder must be new or empty.
/// \throws OutputError if the folder is not empty, or if a file cannot be written. The function then removes all files
/// and folders that it created.
void writeProject(const std::string& folder, const ProjectNames& names, EditorFiles_e editorFiles);

}  // namespace vexa::runner
