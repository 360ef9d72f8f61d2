#pragma once

#include <string>

#include "vexa/ExceptionBase.h"

namespace vexa {

/// An argument that an operation cannot accept; the message says what was expected.
class VEXAHOSTLIBS_API InvalidArgumentException : public ExceptionBase {
public:
    /// As ExceptionBase::ExceptionBase(), by default without a stack trace.
    explicit InvalidArgumentException(const std::string& message, bool captureStackTrace = false);
    InvalidArgumentException(const InvalidArgumentException&) = default;
    InvalidArgumentException& operator=(const InvalidArgumentException&) = default;
    ~InvalidArgumentException() override;
};

}  // namespace vexa
