#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "commands/check/TestRun.h"
#include "formats/Problem.h"
#include "options/ExitStatus.h"

namespace vexa::runner {

/// The outcome of a check.
struct CheckReport {
    std::string addOn;              ///< the add-on's file
    std::uint64_t seed = 0;         ///< the seed of all random numbers
    int level = 0;                  ///< the requested level
    bool warningsAsErrors = false;  ///< true if a warning makes a test fail
    std::vector<TestResult> tests;  ///< the results, in the order of the tests
};

/// Returns the name of an outcome in messages and files, for example "timed out".
const char* nameOf(Outcome_e outcome);

/// Returns true if at least one test passed, and no test made the check fail.
bool isPassed(const CheckReport& report);

/// Returns the number of tests with each outcome: "7 passed, 1 skipped, 2 crashed".
std::string countsText(const CheckReport& report);

/// Returns the report as JSON, in the format that docs/check.md describes.
std::string jsonText(const CheckReport& report);

/// Returns the report as JUnit XML.
std::string checkJunitText(const CheckReport& report);

/// Returns the problems that made tests warn or fail, each once, and the tests that failed for another reason.
/// \param status the exit status of the check
ProblemReport problemReport(const CheckReport& report, ExitStatus_e status);

}  // namespace vexa::runner
