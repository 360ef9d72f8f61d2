#include "vexautilutil/MacroCommandError.h"

namespace vexa::vexautilutil {

MacroCommandError::MacroCommandError(const std::string& message) : ExceptionBase(message, false) {}

MacroCommandError::~MacroCommandError() = default;

}  // namespace vexa::vexautilutil
