#pragma once

#include <stdexcept>
#include <string>

#include "options/ContractOptions.h"

namespace vexa::runner {

/// A project file that cannot be used. The message is one line: the file, and why.
class ProjectFileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The file `vexa-standin.toml` of the current folder, or of the nearest one above it that has one; empty when none
/// has.
std::string findProjectFile();

/// Reads a project file.
///
///     strict = true                   breaches of rules make a run fail
///     warnings-as-errors = true       also breaches of rules of severity warning
///     suppress = ["missing-errmsg"]   rules whose breaches pass
///     timeout = 2.5                   seconds that a command may take
///
/// Each key may be left out. What begins with # is a comment, and an array may take several lines.
/// \throws ProjectFileError
ContractOptions readProjectFile(const std::string& path);

}  // namespace vexa::runner
