#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "options/ExitStatus.h"
#include "session/Session.h"

namespace vexa::runner {

/// What a check of an add-on is asked for.
struct CheckOptions {
    std::string addOn;                  ///< the file
    std::vector<std::string> macros;    ///< macro files
    std::vector<std::string> only;      ///< the tests to run; all of the level when empty
    int level = 2;                      ///< how thorough to be, 1 to 3
    std::optional<std::uint64_t> seed;  ///< of all that is random
    double time = 10;                   ///< seconds, for a test that could go on for ever
    std::optional<std::string> json;    ///< where the report for programs goes
    std::optional<std::string> junit;   ///< where the one in the form of JUnit goes
    std::optional<std::string> sarif;   ///< where the one in the form SARIF goes
    std::string folder = ".";           ///< where macros that show a failure go
    SessionOptions session;             ///< of each test; its add-ons are further ones, which the macros need
};

/// Checks an add-on as \p options say, and tells what came of it.
ExitStatus_e checkAddOn(const CheckOptions& options);

}  // namespace vexa::runner
