#pragma once

#include <string>

#include "vexa/ExceptionBase.h"
#include "vexautilutil/Export.h"

namespace vexa::vexautilutil {

/// A text input file that does not say what it should, for add-ons that would rather throw than show a dialog.
///
///     throw InvalidInstructionsException("Instruction file", "missing END");
///     // what() is "Instruction file: missing END"
class VEXAUTILUTIL_API InvalidInstructionsException : public ExceptionBase {
public:
    /// Joins the message from \p context, ": " and \p detail; either may be empty. Without a stack trace.
    InvalidInstructionsException(std::string context, std::string detail);
    InvalidInstructionsException(const InvalidInstructionsException&) = default;
    ~InvalidInstructionsException() override;
};

}  // namespace vexa::vexautilutil
