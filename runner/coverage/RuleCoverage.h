#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "trace/TracedRun.h"
#include "vexastandin/Finding.h"

namespace vexa::runner {

/// How far a run tested a rule.
enum class Coverage_e {
    Broken,      ///< there is a finding
    Touched,     ///< the event of the rule happened, and was checked
    Untouched,   ///< the event of the rule did not happen, so the rule was not tested
    Suppressed,  ///< the user suppressed the rule
};

/// A rule and its coverage by a run.
struct RuleCoverage {
    const standin::Rule* rule = nullptr;
    Coverage_e coverage = Coverage_e::Untouched;
    std::string touchedBy;     ///< the result of whatTouches()
    std::size_t findings = 0;  ///< how many findings there are
};

/// Returns the coverage of every rule of rules(). A rule is touched if a function that it is about was called, or if
/// its event happened. The run may not have tried every way to break a touched rule.
std::vector<RuleCoverage> coverageOf(const TracedRun& run);

/// Describes for the user what touches \p rule: a list of functions, or an event. Empty for an unknown rule.
std::string whatTouches(const std::string& rule);

}  // namespace vexa::runner
