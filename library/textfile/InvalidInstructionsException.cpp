#include "vexautilutil/InvalidInstructionsException.h"

namespace vexa::vexautilutil {

InvalidInstructionsException::InvalidInstructionsException(std::string context, std::string detail)
    : ExceptionBase(context + ": " + detail, false) {}

InvalidInstructionsException::~InvalidInstructionsException() = default;

}  // namespace vexa::vexautilutil
