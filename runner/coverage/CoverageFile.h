#pragma once

#include <stdexcept>
#include <string>

#include "coverage/Coverage.h"

namespace vexa::runner {

// A coverage file is JSON; docs/coverage.md describes it.

/// A text or file is not a coverage file. The message is one line.
class CoverageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Returns \p coverage as the text of a coverage file. Equal coverages have equal texts.
std::string coverageText(const Coverage& coverage);

/// Reads the text of a coverage file. Ignores members that it does not know.
/// \param name the file in messages
/// \throws CoverageError
Coverage coverageIn(const std::string& text, const std::string& name);

/// Checks that addToCoverageFile() can add to a file: it does not exist, is empty, or is a coverage file.
/// \throws OutputError
void checkCoverageFile(const std::string& path);

/// Adds \p more to a coverage file, or creates the file. Several processes may do this at the same time: each one locks
/// the file's folder, reads the file, and replaces it as a whole.
/// \throws OutputError
void addToCoverageFile(const std::string& path, const Coverage& more);

}  // namespace vexa::runner
