#pragma once

#include <string>

#include "vexa/ExceptionBase.h"

namespace vexa {

/// Memory ran out. A message of at most 15 characters needs none to be reported.
class VEXAHOSTLIBS_API OutOfMemoryException : public ExceptionBase {
public:
    /// As ExceptionBase::ExceptionBase(), by default without a stack trace.
    explicit OutOfMemoryException(const std::string& message, bool captureStackTrace = false);
    OutOfMemoryException(const OutOfMemoryException&) = default;
    OutOfMemoryException& operator=(const OutOfMemoryException&) = default;
    ~OutOfMemoryException() override;
};

}  // namespace vexa
