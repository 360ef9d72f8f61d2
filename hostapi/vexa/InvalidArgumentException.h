#pragma once

#include <string>

#include "vexa/ExceptionBase.h"

namespace vexa {

/// Reports an argument that an operation cannot accept. The message says what the operation expected.
class VEXAHOSTLIBS_API InvalidArgumentException : public ExceptionBase {
public:
    /// Same as ExceptionBase::ExceptionBase(). By default it captures no stack trace.
    explicit InvalidArgumentException(const std::string& message, bool captureStackTrace = false);
    InvalidArgumentException(const InvalidArgumentException&) = default;
    InvalidArgumentException& operator=(const InvalidArgumentException&) = default;
    ~InvalidArgumentException() override;
};

}  // namespace vexa
