#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace vexa::runner {

inline constexpr const char* kMacro = ".macro";
inline constexpr const char* kExpected = ".expected";
inline constexpr const char* kCalls = ".calls";
inline constexpr const char* kBudget = ".budget";
/// The extensions of the files beside a macro.
inline constexpr const char* kBesideMacro[] = {kExpected, kCalls, kBudget};

/// Reports a path that is neither a macro nor a folder of macros. The message is one line.
struct PathError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Returns the macros that \p paths name: macros, and folders of them, whose macros are sorted by name.
/// \throws PathError if a path is something else, or if a folder has a file to compare with and no macro for it.
std::vector<std::string> macrosOf(const std::vector<std::string>& paths);

/// Returns the file beside a macro.
std::string besideOf(const std::string& macro, const char* extension);

/// Returns true if \p file has one of the extensions kBesideMacro.
bool isBesideMacro(const std::string& file);

}  // namespace vexa::runner
