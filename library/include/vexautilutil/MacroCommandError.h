#pragma once

#include <string>

#include "vexa/ExceptionBase.h"
#include "vexautilutil/Export.h"

namespace vexa::vexautilutil {

/// The exception for every failure in commands and options. Its message is the complete diagnostic; there are no error
/// codes. Throw it by value and catch it by reference.
class VEXAUTILUTIL_API MacroCommandError : public ExceptionBase {
public:
    /// Copies \p message. Captures no stack trace.
    explicit MacroCommandError(const std::string& message);
    MacroCommandError(const MacroCommandError&) = default;
    ~MacroCommandError() override;
};

}  // namespace vexa::vexautilutil
