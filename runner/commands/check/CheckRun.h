#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "options/ExitStatus.h"
#include "session/ProblemOutputs.h"
#include "session/Session.h"

namespace vexa::runner {

/// The options of a check.
struct CheckOptions {
    std::string addOn;                       ///< the file
    std::vector<std::string> macros;         ///< macro files
    std::optional<std::string> description;  ///< the description file; by default the one beside the add-on
    std::vector<std::string> only;           ///< the tests to run; if empty, all tests of the level
    int level = 2;                           ///< how thorough the check is, 1 to 3
    std::optional<std::uint64_t> seed;       ///< the seed of all random numbers
    double time = 10;                        ///< seconds for a test that could run forever
    std::optional<std::string> json;         ///< the file for the JSON report
    std::optional<std::string> junit;        ///< the file for the JUnit report
    ProblemOptions problems;                 ///< where the problems for build servers go
    std::optional<std::string> coverage;     ///< the coverage file to add to
    std::string folder = ".";                ///< the folder for macros that reproduce a failure
    SessionOptions session;                  ///< for each test; its add-ons are the other ones that the macros need
};

/// Checks an add-on, and prints the results.
ExitStatus_e checkAddOn(const CheckOptions& options);

}  // namespace vexa::runner
