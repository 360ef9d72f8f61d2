#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "commands/check/TestRun.h"

namespace vexa::runner {

/// What came of a check.
struct CheckReport {
    std::string addOn;              ///< the add-on's file
    std::uint64_t seed = 0;         ///< of all that was random
    int level = 0;                  ///< the level that was asked for
    bool warningsAsErrors = false;  ///< whether a test that warned has not passed
    std::vector<TestResult> tests;  ///< in the order in which they ran
};

/// For people, and in files: "passed", "timed out" …
const char* nameOf(Outcome_e outcome);

/// Whether an outcome makes the check fail.
bool isBad(Outcome_e outcome, bool warningsAsErrors);

/// Whether the add-on passed: a test did, and none made the check fail.
bool isPassed(const CheckReport& report);

/// How often each outcome came: "7 passed, 1 skipped, 2 crashed".
std::string countsText(const CheckReport& report);

/// How often confinements refused to change a file, in all tests.
std::size_t refusedWrites(const CheckReport& report);

}  // namespace vexa::runner
