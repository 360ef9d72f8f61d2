#pragma once

#include <string>

#include "coverage/Coverage.h"

namespace vexa::runner {

/// Returns \p coverage as text for users: the figures, a table of the commands, and what the runs have not used.
std::string coverageTable(const Coverage& coverage);

/// Returns \p share in percent with one digit after the point, rounded down, so that 100.0 means all.
std::string percentText(const Share& share);

/// Returns the answers of a function that are not among \p seen: "null".
std::string missingAnswers(const Names& seen, standin::ResultKind_e kind);

}  // namespace vexa::runner
