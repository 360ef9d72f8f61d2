#pragma once

#include <string>

#include "vexa/ExceptionBase.h"

namespace vexa {

/// Reports that memory ran out. With a message of at most 15 characters, constructing it allocates no memory.
class VEXAHOSTLIBS_API OutOfMemoryException : public ExceptionBase {
public:
    /// Same as ExceptionBase::ExceptionBase(). By default it captures no stack trace.
    explicit OutOfMemoryException(const std::string& message, bool captureStackTrace = false);
    OutOfMemoryException(const OutOfMemoryException&) = default;
    OutOfMemoryException& operator=(const OutOfMemoryException&) = default;
    ~OutOfMemoryException() override;
};

}  // namespace vexa
