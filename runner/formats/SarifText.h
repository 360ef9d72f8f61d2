#pragma once

#include <string>

#include "formats/Problem.h"

namespace vexa::runner {

/// Returns a report as SARIF 2.1.0, in the form that code-scanning services take: each result has a rule with help, a
/// region, and a fingerprint. Files below the current folder have relative URIs, whose base is `%SRCROOT%`.
std::string sarifText(const ProblemReport& report);

}  // namespace vexa::runner
