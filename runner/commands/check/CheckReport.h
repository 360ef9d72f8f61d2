#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "commands/check/TestRun.h"

namespace vexa::runner {

/// The outcome of a check.
struct CheckReport {
    std::string addOn;              ///< the add-on's file
    std::uint64_t seed = 0;         ///< of all random numbers
    int level = 0;                  ///< the requested level
    bool warningsAsErrors = false;  ///< whether a warning makes a test fail
    std::vector<TestResult> tests;  ///< in the order in which they ran
};

/// The name of an outcome in messages and files: "passed", "timed out" …
const char* nameOf(Outcome_e outcome);

/// Whether the add-on passed: at least one test passed, and no test made the check fail.
bool isPassed(const CheckReport& report);

/// The number of tests with each outcome: "7 passed, 1 skipped, 2 crashed".
std::string countsText(const CheckReport& report);

/// The report for other programs, in the project's own format, which docs/check.md describes.
std::string jsonText(const CheckReport& report);

/// The report for build servers that show the tests of JUnit.
std::string junitText(const CheckReport& report);

/// The tests that did not pass, for tools that read SARIF 2.1.0.
std::string sarifText(const CheckReport& report);

}  // namespace vexa::runner
