#include "vexa/OutOfMemoryException.h"

namespace vexa {

OutOfMemoryException::OutOfMemoryException(const std::string& message, bool captureStackTrace)
    : ExceptionBase(message, captureStackTrace) {}

OutOfMemoryException::~OutOfMemoryException() = default;

}  // namespace vexa
