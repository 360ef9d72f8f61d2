#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace vexa::runner {

/// Reports a wrong command line, or a wrong project file. The program ends with ExitStatus_e::BadUsageOrInput. The
/// message is one line. It names the object and says what is wrong; Refusals.h has messages.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;

    std::string call;                      ///< the program and the command, for a hint about --help; parse() sets it
    std::vector<std::string> suggestions;  ///< suggestions, one line each: "rnu: did you mean run?"
};

}  // namespace vexa::runner
