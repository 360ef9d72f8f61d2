#include "vexa/InvalidArgumentException.h"

namespace vexa {

InvalidArgumentException::InvalidArgumentException(const std::string& message, bool captureStackTrace)
    : ExceptionBase(message, captureStackTrace) {}

InvalidArgumentException::~InvalidArgumentException() = default;

}  // namespace vexa
