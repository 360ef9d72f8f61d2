#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "commands/report/TracedRun.h"
#include "vexastandin/Finding.h"

namespace vexa::runner {

/// What a run has to do with a rule.
enum class Coverage_e {
    Broken,      ///< there is a finding of it
    Touched,     ///< what the rule is about happened, and was checked
    Untouched,   ///< what the rule is about did not happen, so that nothing is known of it
    Suppressed,  ///< findings of it were not asked for
};

/// A rule, and what a run has to do with it.
struct RuleCoverage {
    const standin::Rule* rule = nullptr;
    Coverage_e coverage = Coverage_e::Untouched;
    std::string touchedBy;     ///< what touches it, for people: functions of which any does, or what has to happen
    std::size_t findings = 0;  ///< how many there are of it
};

/// Every rule of rules(). A rule is touched when a function that it is about was called, or when what it judges
/// happened; that says nothing of the ways of breaking it that were tried.
std::vector<RuleCoverage> coverageOf(const TracedRun& run);

/// What touches \p rule, for people; empty for a rule that this does not know.
std::string whatTouches(const std::string& rule);

}  // namespace vexa::runner
