#pragma once

#include <stdexcept>
#include <string>

#include "commands/report/TracedRun.h"

namespace vexa::runner {

/// Why a file cannot be read as a trace. The message is one line: the file, the line if there is one, and why.
class TraceError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads a trace that an EventTrace wrote, also one that ends where the run was killed.
/// \throws TraceError
TracedRun readTrace(const std::string& file);

}  // namespace vexa::runner
