#pragma once

#include <string>

#include "vexa/ExceptionBase.h"
#include "vexautilutil/Export.h"

namespace vexa::vexautilutil {

/// What every failure of the macro command model is thrown as. The message is the whole diagnostic; there are no
/// codes. Throw by value, catch by reference.
class VEXAUTILUTIL_API MacroCommandError : public ExceptionBase {
public:
    /// Keeps \p message, without a stack trace.
    explicit MacroCommandError(const std::string& message);
    MacroCommandError(const MacroCommandError&) = default;
    ~MacroCommandError() override;
};

}  // namespace vexa::vexautilutil
