#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

#include "commands/check/WatchedProcess.h"
#include "commands/check/trial/CheckTest.h"
#include "commands/check/trial/Trial.h"

namespace vexa::runner {

/// The result of a test.
struct TestResult {
    const CheckTest* test = nullptr;
    Verdict verdict;
    std::chrono::milliseconds duration{};
    std::size_t refusedWrites = 0;      ///< how many changes of files the confinement refused
    std::vector<std::string> addOnIds;  ///< the ids of the add-ons that it loaded last, the checked one first
    std::string macro;                  ///< the file of the macro that reproduces the outcome; empty if there is none
    std::string reproduce;  ///< a command that reproduces the outcome; empty if the test passed or was skipped
    std::string debug;      ///< a command that shows it in a debugger; empty if there is no macro
};

/// Runs \p test in another process. If the process crashes or hangs, the verdict says so.
/// \throws std::system_error if a process cannot be started.
TestResult runTest(const CheckTest& test, const Subject& subject, const TestSetting& setting);

}  // namespace vexa::runner
