#pragma once

#include <string>

#include "vexa/ExceptionBase.h"
#include "vexautilutil/Export.h"

namespace vexa::vexautilutil {

/// Reports a mistake in a text input file. For add-ons that throw errors instead of showing a dialog.
///
///     throw InvalidInstructionsException("Instruction file", "missing END");
///     // what() is "Instruction file: missing END"
class VEXAUTILUTIL_API InvalidInstructionsException : public ExceptionBase {
public:
    /// Creates the message \p context + ": " + \p detail. Both texts may be empty. Captures no stack trace.
    InvalidInstructionsException(std::string context, std::string detail);
    InvalidInstructionsException(const InvalidInstructionsException&) = default;
    ~InvalidInstructionsException() override;
};

}  // namespace vexa::vexautilutil
