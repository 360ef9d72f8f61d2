#pragma once

#include <stdexcept>
#include <string>

namespace vexa::runner {

/// A project that cannot be written. The message is one line: the folder or file, and why.
class NewProjectError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What the project of a new add-on is called.
struct ProjectNames {
    std::string name;   ///< of the project, its target and its file: letters, digits, `_`, `-`, `.` and `+`
    std::string id;     ///< by which macros address the add-on
    std::string title;  ///< for people; one line
};

/// The names that suit the project in \p folder.
///
///     work/wake-probe    name wake-probe, id WAKEPROBE, title "Wake probe"
///     42                 name addon-42, id ADDON42, title "Addon 42"
///
/// \throws NewProjectError when CMake takes no target of the folder's name: it has other characters, or CMake keeps it
/// for itself, such as `test`.
ProjectNames namesFor(const std::string& folder);

/// What is wrong with an id that an add-on is to have; empty when nothing is.
std::string whyNoId(const std::string& id);

/// What is wrong with a title; empty when nothing is.
std::string whyNoTitle(const std::string& title);

/// Writes the project of a new add-on to \p folder, which is made, unless it is there and empty.
/// \throws NewProjectError when the folder has something in it, and when a file cannot be written; all is as it was
/// then.
void writeProject(const std::string& folder, const ProjectNames& names);

}  // namespace vexa::runner
