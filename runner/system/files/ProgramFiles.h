#pragma once

#include <initializer_list>
#include <string>

namespace vexa::runner {

/// Returns true if this process may start the file \p path as a program.
bool isExecutableFile(const std::string& path);

/// Returns the file that the system starts for \p name: a path, or a name that it searches in the folders of PATH.
/// \return empty if there is none.
std::string findProgram(const std::string& name);

/// Returns the first of \p places, relative to the folder of this program, where a file is; empty if there is none.
std::string fileBesideProgram(std::initializer_list<const char*> places);

}  // namespace vexa::runner
