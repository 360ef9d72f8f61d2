#pragma once

#include <string>

#include "formats/Problem.h"

namespace vexa::runner {

/// Returns a workflow command for each problem. A GitHub runner that reads it shows the problem beside the source:
///
///     ::error file=sweep.macro,line=3,title=unbalanced-lock::VexaUtilLockStart has no matching ...
std::string githubText(const ProblemReport& report);

/// Returns a code-quality report for GitLab: a JSON array with one object for each problem.
std::string gitlabText(const ProblemReport& report);

}  // namespace vexa::runner
