#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace vexa::runner {

/// The command line, or a file of settings that goes with it, is refused. The program ends with
/// ExitStatus_e::BadUsageOrInput. The message names the object and says what is wrong with it, on one line: Refusals.h
/// has texts for it.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;

    std::string call;                      ///< the program and the command to show help for; parse() sets it
    std::vector<std::string> suggestions;  ///< what the user may have meant, a line each: "rnu: did you mean run?"
};

}  // namespace vexa::runner
