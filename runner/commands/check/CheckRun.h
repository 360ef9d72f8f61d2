#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "options/ExitStatus.h"
#include "session/Session.h"

namespace vexa::runner {

/// The options of a check.
struct CheckOptions {
    std::string addOn;                  ///< the file
    std::vector<std::string> macros;    ///< macro files
    std::vector<std::string> only;      ///< the tests to run; all of the level when empty
    int level = 2;                      ///< how thorough to be, 1 to 3
    std::optional<std::uint64_t> seed;  ///< of all random numbers
    double time = 10;                   ///< seconds, for a test that could go on forever
    std::optional<std::string> json;    ///< the file for the report for programs
    std::optional<std::string> junit;   ///< the file for the JUnit report
    std::optional<std::string> sarif;   ///< the file for the SARIF report
    std::string folder = ".";           ///< the folder for macros that show a failure
    SessionOptions session;             ///< of each test; its add-ons are further ones, which the macros need
};

/// Checks an add-on, and prints the results.
ExitStatus_e checkAddOn(const CheckOptions& options);

}  // namespace vexa::runner
